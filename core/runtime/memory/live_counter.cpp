// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/immortal.h"
#include "core/runtime/memory/counted_block.h"
#include "core/runtime/memory/counter_records.h"

#include <core/runtime/live_counter.h>
#include <core/runtime/utf8.h>

#include <cxxabi.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <optional>

namespace core {

using detail::counter_record;
using detail::CounterRecord;
using detail::ThreadPart;

namespace {

constexpr std::int32_t kChunk = ThreadPart::kMaxCounters;
constexpr std::int32_t kChunks = 128; // hundreds of classes are many

constinit CounterRecord first_records[kChunk];
constinit std::atomic<CounterRecord*> chunks[kChunks] = {first_records};

// The records' own, under their lock.
constinit std::int32_t records_end = 1; // behind the last index that was ever used
constinit std::int32_t free_records = 0;

std::mutex& records_lock() {
    static detail::Immortal<std::mutex> lock; // objects may outlive the library's statics
    return *lock;
}

/// The index of a free record, 0 without memory. Under the lock.
std::int32_t take_record() noexcept {
    if (free_records > 0) {
        for (std::int32_t index = 1; index < records_end; ++index) {
            if (counter_record(index).name == nullptr) {
                --free_records;
                return index;
            }
        }
    }
    if (records_end == kChunk * kChunks)
        return 0;
    std::atomic<CounterRecord*>& chunk = chunks[records_end / kChunk];
    if (chunk.load(std::memory_order_relaxed) == nullptr) {
        auto* const made = new (std::nothrow) CounterRecord[kChunk];
        if (made == nullptr)
            return 0;
        chunk.store(made, std::memory_order_release);
    }
    return records_end++;
}

/// A copy that `free` takes back; null without memory.
char* copied_name(const std::type_info* type, const wchar* name) noexcept {
    try {
        return ::strdup(type != nullptr ? type->name() : to_utf8(name).c_str());
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

/// How many objects a record counts over all threads; not under its lock.
std::int32_t sum_of(std::int32_t index) {
    struct Sum {
        std::int32_t index;
        std::int32_t count;
    } sum{index, 0};
    // Under one lock: a thread that ends in between would move its part to what is outside, after that was
    // read.
    detail::read_thread_parts(
        [](ThreadPart* part, void* context) {
            auto& total = *static_cast<Sum*>(context);
            total.count = std::atomic_ref(counter_record(total.index).outside).load();
            for (; part != nullptr && total.index < ThreadPart::kMaxCounters; part = part->next)
                total.count += std::atomic_ref(part->live[static_cast<std::size_t>(total.index)])
                                   .load(std::memory_order_relaxed);
        },
        &sum);
    return sum.count;
}

std::string readable(const char* mangled) {
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> name(
        abi::__cxa_demangle(mangled, nullptr, nullptr, &status), &std::free);
    return status == 0 ? name.get() : mangled;
}

/// The living objects of a module, or of all when it is null, by name. A class template may be counted in
/// more than one module: its records are one line.
std::map<std::string, std::int32_t> lines_of(const ModuleAnchor* module) {
    struct Line {
        std::int32_t index;
        std::string name;
    };
    std::vector<Line> found;
    {
        const std::lock_guard guard(records_lock());
        for (std::int32_t index = 1; index < records_end; ++index) {
            const CounterRecord& record = counter_record(index);
            if (record.name != nullptr && (module == nullptr || record.module == module))
                found.push_back({index, record.name});
        }
    }
    std::map<std::string, std::int32_t> lines;
    for (const Line& line : found)
        lines[readable(line.name.c_str())] += sum_of(line.index);
    return lines;
}

std::vector<LiveClass> report_of(const std::map<std::string, std::int32_t>& lines) {
    std::vector<LiveClass> report;
    for (const auto& [name, count] : lines) {
        if (count != 0)
            report.push_back({name, count});
    }
    return report;
}

} // namespace

CounterRecord& detail::counter_record(std::int32_t index) noexcept {
    return chunks[index / kChunk].load(std::memory_order_acquire)[index % kChunk];
}

std::int32_t LiveCounterAccess::join(LiveCounter& counter) noexcept {
    const std::lock_guard guard(records_lock());
    if (const std::int32_t index = indexOrNone(counter); index != 0)
        return index;
    char* const name = copied_name(counter.type_, counter.name_);
    const std::int32_t index = name != nullptr ? take_record() : 0;
    if (index == 0) { // the objects are counted without a name
        std::free(name);
        return 0;
    }
    counter_record(index).assign(name, counter.module_, &counter);
    std::atomic_ref(counter.index_).store(index, std::memory_order_release);
    return index;
}

void LiveCounterAccess::addOutside(std::int32_t index, std::int32_t change) noexcept {
    std::atomic_ref(counter_record(index).outside).fetch_add(change, std::memory_order_relaxed);
}

void LiveCounter::add(std::int32_t change) noexcept {
    LiveCounterAccess::add(*this, change, detail::thread_part());
}

std::int32_t LiveCounter::count() const noexcept {
    const std::int32_t index = LiveCounterAccess::indexOrNone(*this);
    return index != 0 ? sum_of(index) : 0;
}

void detail::fold_live_counts(const ThreadPart& part) noexcept {
    const std::lock_guard guard(records_lock());
    for (std::int32_t index = 0; index < std::min(records_end, ThreadPart::kMaxCounters); ++index)
        LiveCounterAccess::addOutside(index, part.live[static_cast<std::size_t>(index)]);
}

void detail::forget_live_counters(const ModuleAnchor& module, bool gone) noexcept {
    // Objects may have been made on one thread and destroyed on another: each thread's part goes back to
    // zero, so that the index can be given out again. A thread that ends now folds its part before or behind
    // that.
    detail::read_thread_parts(
        [](ThreadPart* part, void* context) {
            const std::lock_guard guard(records_lock());
            for (; part != nullptr; part = part->next) {
                for (std::int32_t index = 1; index < std::min(records_end, ThreadPart::kMaxCounters);
                     ++index) {
                    if (counter_record(index).module == context)
                        std::atomic_ref(part->live[static_cast<std::size_t>(index)]).store(0);
                }
            }
        },
        const_cast<ModuleAnchor*>(&module));
    const std::lock_guard guard(records_lock());
    for (std::int32_t index = 1; index < records_end; ++index) {
        CounterRecord& record = counter_record(index);
        if (record.module != &module)
            continue;
        if (!gone)
            LiveCounterAccess::leave(*record.counter);
        std::free(record.name);
        record.assign(nullptr, nullptr, nullptr);
        ++free_records;
    }
}

namespace {

struct Leaks {
    std::mutex lock;
    std::vector<const LeaksCounter*> entries;
    std::optional<std::pair<wstring, wstring>> term; // a text alone is not a constant under every compiler
};

Leaks& leaks() noexcept {
    static detail::Immortal<Leaks> registry; // entries end in any order
    return *registry;
}

} // namespace

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
    auto lines = lines_of(nullptr);
    {
        Leaks& registry = leaks();
        const std::lock_guard guard(registry.lock);
        for (const LeaksCounter* entry : registry.entries)
            ++lines[entry->name()];
    }
    return report_of(lines);
}

std::vector<LiveClass> live_report(const ModuleAnchor& module) {
    return report_of(lines_of(&module));
}

std::pair<wstring, wstring> leaks_term() {
    Leaks& registry = leaks();
    const std::lock_guard guard(registry.lock);
    return registry.term.value_or(std::pair<wstring, wstring>{});
}

} // namespace core
