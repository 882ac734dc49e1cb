// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/dates/date.h>
#include <core/runtime/clock.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <limits>

/// Times of files are universal time, so that a file may travel between time zones. Date::toLocalTime() shows
/// them.
namespace core {

/// The date from which systems count: 1970-01-01 00:00:00.
inline constexpr Date kUnixEpoch{1970, 1, 1};

/// Returns the date of a moment, exact to a tick; the empty date for moments before the year 1.
[[nodiscard]] constexpr Date universal_date(std::chrono::system_clock::time_point time) noexcept {
    using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, kTicksPerSecond>>;
    return kUnixEpoch + DateSpan(std::chrono::floor<Ticks>(time.time_since_epoch()).count());
}

/// Returns the date of `seconds` since 1970 and `nanoseconds` behind it, cut to a tick; the empty date before
/// the year 1, the last date past the year 9999.
[[nodiscard]] constexpr Date unix_date(std::int64_t seconds, std::int64_t nanoseconds = 0) noexcept {
    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max() / kTicksPerSecond - 1;
    constexpr std::int64_t kNanosecondsPerTick = 1'000'000'000 / kTicksPerSecond;
    return kUnixEpoch +
           DateSpan(std::clamp(seconds, -kMost, kMost) * kTicksPerSecond + nanoseconds / kNanosecondsPerTick);
}

/// Returns the present moment by the library's clock.
[[nodiscard]] inline Date universal_now() noexcept {
    return universal_date(current_clock().now());
}

} // namespace core
