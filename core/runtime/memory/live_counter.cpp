// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/immortal.h"
#include "core/runtime/memory/counted_block.h"

#include <core/runtime/live_counter.h>

#include <cxxabi.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>
#include <optional>

namespace core {

using detail::ThreadPart;

namespace {

/// All counters that have an index, newest first.
constinit LiveCounter* first_counter = nullptr;
constinit std::int32_t last_index = 0;

std::mutex& counters_lock() {
    static constinit detail::Immortal<std::mutex> lock; // objects may outlive the library's statics
    return *lock;
}

} // namespace

std::int32_t LiveCounterAccess::join(LiveCounter& counter) noexcept {
    const std::lock_guard guard(counters_lock());
    std::int32_t index = std::atomic_ref(counter.index_).load(std::memory_order_relaxed);
    if (index == 0) {
        counter.next_ = first_counter;
        first_counter = &counter;
        index = ++last_index;
        std::atomic_ref(counter.index_).store(index, std::memory_order_release);
    }
    return index;
}

std::int32_t LiveCounterAccess::count(LiveCounter& counter) {
    struct Sum {
        LiveCounter& counter;
        std::int32_t index;
        std::int32_t count;
    } sum{counter, index(counter), 0};
    // Under one lock: a thread that ends in between would move its part to what is outside, after that was
    // read.
    detail::read_thread_parts(
        [](ThreadPart* part, void* context) {
            auto& total = *static_cast<Sum*>(context);
            total.count = std::atomic_ref(total.counter.outside_).load();
            for (; part != nullptr && total.index < ThreadPart::kMaxCounters; part = part->next)
                total.count += std::atomic_ref(part->live[static_cast<std::size_t>(total.index)])
                                   .load(std::memory_order_relaxed);
        },
        &sum);
    return sum.count;
}

void LiveCounterAccess::foldPart(LiveCounter& counter, const ThreadPart& part) noexcept {
    if (const std::int32_t at = index(counter); at < ThreadPart::kMaxCounters)
        std::atomic_ref(counter.outside_).fetch_add(part.live[static_cast<std::size_t>(at)]);
}

namespace {

struct Leaks {
    std::mutex lock;
    std::vector<const LeaksCounter*> entries;
    std::optional<std::pair<wstring, wstring>> term; // a text alone is not a constant under every compiler
};

Leaks& leaks() noexcept {
    static constinit detail::Immortal<Leaks> registry; // entries end in any order
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
    LiveCounterAccess::add(*this, change, detail::thread_part());
}

std::int32_t LiveCounter::count() const noexcept {
    return LiveCounterAccess::count(const_cast<LiveCounter&>(*this)); // read with atomic operations only
}

void detail::fold_live_counts(const ThreadPart& part) noexcept {
    const std::lock_guard guard(counters_lock());
    for (LiveCounter* counter = first_counter; counter != nullptr;
         counter = LiveCounterAccess::next(*counter))
        LiveCounterAccess::foldPart(*counter, part);
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
    registry.term.emplace(english != nullptr ? english : u"", russian != nullptr ? russian : u"");
}

std::vector<LiveClass> live_report() {
    std::vector<const LiveCounter*> counters;
    {
        const std::lock_guard guard(counters_lock());
        for (const LiveCounter* counter = first_counter; counter != nullptr;
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
    return registry.term.value_or(std::pair<wstring, wstring>{});
}

} // namespace core
