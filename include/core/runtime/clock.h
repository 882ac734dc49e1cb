// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>

#include <chrono>

namespace core {

/// The library's one source of time: what now is, and waiting. A program or a test can
/// put its own in its place.
class CORE_API Clock {
  public:
    virtual ~Clock();
    [[nodiscard]] virtual std::chrono::system_clock::time_point now() noexcept = 0;
    virtual void sleep(std::chrono::milliseconds time) = 0;
};

/// The clock in use: the system's, unless replaced.
[[nodiscard]] CORE_API Clock& current_clock() noexcept;
/// Puts `clock` (not owned; null restores the system's) in place and returns the one
/// before, null for the system's.
CORE_API Clock* replace_clock(Clock* clock) noexcept;

} // namespace core
