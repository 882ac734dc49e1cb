// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/threads/thread_record.h"

#include "core/runtime/immortal.h"
#include "core/runtime/threads/thread_state.h"

#include <core/runtime/threads/stop_scope.h>

#include <algorithm>
#include <exception>

namespace core::detail {
namespace {

struct UnusedRecords {
    std::mutex lock;
    ThreadRecord* first = nullptr;
};

UnusedRecords& unused_records() noexcept {
    static Immortal<UnusedRecords> records; // threads may end after the library's statics
    return *records;
}

constinit thread_local ThreadRecord* own = nullptr;

} // namespace

/// Gives the record of a thread back when the thread ends. What waits later still, in the destructors of
/// other thread-local objects, takes another one and keeps it.
struct RecordOwner {
    ~RecordOwner() {
        ThreadRecord* const record = std::exchange(own, nullptr);
        record->state = nullptr;
        UnusedRecords& unused = unused_records();
        const std::lock_guard guard(unused.lock);
        record->next_ = std::exchange(unused.first, record);
    }
};

ThreadRecord& own_record() {
    if (own != nullptr)
        return *own;
    UnusedRecords& unused = unused_records();
    {
        const std::lock_guard guard(unused.lock);
        if (unused.first != nullptr)
            own = std::exchange(unused.first, unused.first->next_);
    }
    if (own == nullptr)
        own = new ThreadRecord;
    thread_local RecordOwner owner; // constructed here, destroyed with the thread
    static_cast<void>(owner);
    return *own;
}

ThreadState* own_state() noexcept {
    return own != nullptr ? own->state : nullptr;
}

bool dies() noexcept {
    return own != nullptr && own->dies();
}

void ThreadRecord::wake() noexcept {
    {
        const std::lock_guard guard(lock_);
        awake_ = true;
    }
    woken_.notify_one();
}

bool ThreadRecord::sleepUntil(const Deadline& deadline) {
    std::unique_lock guard(lock_);
    const auto woken = [this] { return awake_; };
    if (deadline) {
        if (!woken_.wait_until(guard, *deadline, woken))
            return false;
    } else {
        woken_.wait(guard, woken);
    }
    awake_ = false;
    return true;
}

bool ThreadRecord::dies() const noexcept {
    const bool asked = (state != nullptr && state->stop.load(std::memory_order_acquire)) ||
                       (stops != nullptr && stops->requested());
    return asked && std::uncaught_exceptions() == 0;
}

Deadline deadline_after(std::chrono::milliseconds timeout) {
    constexpr std::chrono::milliseconds kForEver = std::chrono::hours(24 * 365 * 100);
    if (timeout >= kForEver)
        return std::nullopt;
    return std::chrono::steady_clock::now() + std::max(timeout, std::chrono::milliseconds::zero());
}

} // namespace core::detail
