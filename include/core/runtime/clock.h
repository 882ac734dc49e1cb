// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>

#include <chrono>

namespace core {

/// The library's one source of time. A program or a test can put its own in its place. Threads: any.
class CORE_API Clock {
  public:
    virtual ~Clock();
    /// Returns the present time.
    [[nodiscard]] virtual std::chrono::system_clock::time_point now() noexcept = 0;
    /// Waits for at least `time`, not at all when that is zero or less.
    virtual void sleep(std::chrono::milliseconds time) = 0;
};

/// Returns the clock in use, borrowed: the system's, unless it was replaced.
[[nodiscard]] CORE_API Clock& current_clock() noexcept;
/// Makes `clock` the clock in use; null restores the system's. It is not owned and must live until it is
/// replaced. Returns the clock before, null for the system's.
CORE_API Clock* replace_clock(Clock* clock) noexcept;

} // namespace core
