// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/runtime/memory/thread_part.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>

namespace core {
class StopScope;
} // namespace core

namespace core::detail {

struct ThreadState;

/// When a wait ends; nothing is never.
using Deadline = std::optional<std::chrono::steady_clock::time_point>;

/// The deadline of a time-out. The sum of now and one that means "for ever" would not fit the clock, nor
/// would one below zero.
Deadline deadline_after(std::chrono::milliseconds timeout);

/// Where a thread sleeps. Records are kept for ever and used again, so that a thread can be woken without
/// knowing whether it still runs. A wake that comes too late makes a later sleep shorter, and each sleeper
/// looks again whether it may go on.
class ThreadRecord {
  public:
    /// Ends the present sleep of the thread, or the next one.
    void wake() noexcept;
    /// Sleeps until it is woken; false when the deadline passed first.
    bool sleepUntil(const Deadline& deadline);
    /// Whether the thread, or what it does, was asked to stop, and may be told so now: not while an exception
    /// is on its way, because what destructors throw would end the program.
    [[nodiscard]] bool dies() const noexcept;

    ThreadState* state = nullptr;     // of a thread that was started here; set and read by the thread itself
    const StopScope* stops = nullptr; // the innermost one; of the thread itself, too

  private:
    friend ThreadRecord& own_record();
    friend struct RecordOwner;

    std::mutex lock_;
    std::condition_variable woken_;
    bool awake_ = false;
    ThreadRecord* next_ = nullptr; // among the unused ones
};

/// The record of the calling thread; made, or taken from an ended thread, by the first call. Throws
/// std::bad_alloc.
[[nodiscard]] ThreadRecord& own_record();
/// The state of the calling thread, null for one that was not started here.
[[nodiscard]] ThreadState* own_state() noexcept;
/// ThreadRecord::dies() of the calling thread.
[[nodiscard]] bool dies() noexcept;

/// A number of the calling thread that no other living thread has, and which is not 0.
[[nodiscard]] inline std::uintptr_t thread_number() noexcept {
    return reinterpret_cast<std::uintptr_t>(&own_part);
}

} // namespace core::detail
