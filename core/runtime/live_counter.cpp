// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/thread_part.h"

#include <core/runtime/live_counter.h>

#include <cxxabi.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>

namespace core {

using detail::ThreadPart;

/// The list of all counters and its lock.
struct LiveCounterAccess {
    static inline constinit LiveCounter* first = nullptr;
    static inline constinit std::int32_t last = 0;

    static std::mutex& lock() {
        static auto* const lock =
            new std::mutex; // never destroyed: objects may outlive the library's statics
        return *lock;
    }

    /// Gives the counter its place, once.
    [[gnu::noinline]] static std::int32_t join(LiveCounter& counter) noexcept {
        const std::lock_guard guard(lock());
        std::int32_t index = std::atomic_ref(counter.index_).load(std::memory_order_relaxed);
        if (index == 0) {
            counter.next_ = first;
            first = &counter;
            index = ++last;
            std::atomic_ref(counter.index_).store(index, std::memory_order_release);
        }
        return index;
    }

    static std::int32_t index(const LiveCounter& counter) noexcept {
        return std::atomic_ref(const_cast<std::int32_t&>(counter.index_)).load(std::memory_order_acquire);
    }

    static void addOutside(LiveCounter& counter, std::int32_t change) noexcept {
        std::atomic_ref(counter.outside_).fetch_add(change, std::memory_order_relaxed);
    }

    static std::int32_t count(const LiveCounter& counter) {
        struct Sum {
            std::int32_t index;
            std::int32_t count;
        } sum{index(counter), std::atomic_ref(const_cast<std::int32_t&>(counter.outside_)).load()};
        if (sum.index > 0 && sum.index < ThreadPart::kMaxCounters) {
            detail::for_each_thread_part(
                [](const ThreadPart& part, void* context) {
                    auto& total = *static_cast<Sum*>(context);
                    auto& own = const_cast<std::int32_t&>(part.live[static_cast<std::size_t>(total.index)]);
                    total.count += std::atomic_ref(own).load(std::memory_order_relaxed);
                },
                &sum);
        }
        return sum.count;
    }

    static const char* rawName(const LiveCounter& counter) { return counter.type_->name(); }
    static const LiveCounter* next(const LiveCounter& counter) { return counter.next_; }
    static LiveCounter* next(LiveCounter& counter) { return counter.next_; }
};

namespace {

struct Leaks {
    std::mutex lock;
    std::vector<const LeaksCounter*> entries;
    wstring english;
    wstring russian;
};

Leaks& leaks() {
    static auto* const registry = new Leaks; // never destroyed, as above
    return *registry;
}

std::string readable(const char* mangled) {
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> name(
        abi::__cxa_demangle(mangled, nullptr, nullptr, &status), &std::free);
    return status == 0 ? name.get() : mangled;
}

} // namespace

void LiveCounter::add(std::int32_t change) noexcept {
    std::int32_t index = LiveCounterAccess::index(*this);
    if (index == 0)
        index = LiveCounterAccess::join(*this);
    ThreadPart* const part = index < ThreadPart::kMaxCounters ? detail::thread_part() : nullptr;
    if (part == nullptr) {
        LiveCounterAccess::addOutside(*this, change);
        return;
    }
    // Only this thread writes its part, so no locked instruction is needed.
    const std::atomic_ref own(part->live[static_cast<std::size_t>(index)]);
    own.store(own.load(std::memory_order_relaxed) + change, std::memory_order_relaxed);
}

std::int32_t LiveCounter::count() const noexcept {
    return LiveCounterAccess::count(*this);
}

void detail::fold_live_counts(const ThreadPart& part) noexcept {
    const std::lock_guard guard(LiveCounterAccess::lock());
    for (LiveCounter* counter = LiveCounterAccess::first; counter != nullptr;
         counter = LiveCounterAccess::next(*counter)) {
        const std::int32_t index = LiveCounterAccess::index(*counter);
        if (index < ThreadPart::kMaxCounters)
            LiveCounterAccess::addOutside(*counter, part.live[static_cast<std::size_t>(index)]);
    }
}

LeaksCounter::LeaksCounter(const char* name, const wchar* const* names) : name_(name), names_(names) {
    Leaks& registry = leaks();
    const std::lock_guard guard(registry.lock);
    registry.entries.push_back(this);
}

LeaksCounter::~LeaksCounter() {
    Leaks& registry = leaks();
    const std::lock_guard guard(registry.lock);
    std::erase(registry.entries, this);
}

void LeaksCounter::setTerm(const wchar* english, const wchar* russian) {
    Leaks& registry = leaks();
    const std::lock_guard guard(registry.lock);
    registry.english = english != nullptr ? english : u"";
    registry.russian = russian != nullptr ? russian : u"";
}

std::vector<LiveClass> live_report() {
    std::vector<const LiveCounter*> counters;
    {
        const std::lock_guard guard(LiveCounterAccess::lock());
        for (const LiveCounter* counter = LiveCounterAccess::first; counter != nullptr;
             counter = LiveCounterAccess::next(*counter))
            counters.push_back(counter);
    }
    // A class template may be counted in more than one module: its parts are one line.
    std::map<std::string, std::int32_t> lines;
    for (const LiveCounter* counter : counters)
        lines[readable(LiveCounterAccess::rawName(*counter))] += counter->count();
    {
        Leaks& registry = leaks();
        const std::lock_guard guard(registry.lock);
        for (const LeaksCounter* entry : registry.entries)
            ++lines[entry->name()];
    }
    std::vector<LiveClass> report;
    for (const auto& [name, count] : lines) {
        if (count != 0)
            report.push_back({name, count});
    }
    return report;
}

std::pair<wstring, wstring> leaks_term() {
    Leaks& registry = leaks();
    const std::lock_guard guard(registry.lock);
    return {registry.english, registry.russian};
}

} // namespace core
