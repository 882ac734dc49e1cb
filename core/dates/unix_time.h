// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/dates/calendar.h>

#include <cstdint>

/// Days and seconds counted from 1970, as zone files and the system count them.
namespace core {

inline constexpr std::int64_t kSecondsPerDay = 86'400;
inline constexpr std::int64_t kUnixDay = calendar::day_number(1970, 1, 1);

/// The day of a date of the year 1 and later, which must exist.
[[nodiscard]] constexpr std::int64_t unix_day(int year, int month, int day) noexcept {
    return std::int64_t{calendar::day_number(year, month, day)} - kUnixDay;
}

/// The year of a moment in seconds since 1970; moments outside the years 1 ... 9999 count to the nearest of
/// them.
[[nodiscard]] constexpr int year_of(std::int64_t moment) noexcept {
    constexpr std::int64_t first = unix_day(1, 1, 1) * kSecondsPerDay;
    constexpr std::int64_t end = unix_day(10'000, 1, 1) * kSecondsPerDay;
    const std::int64_t within = moment < first ? first : moment >= end ? end - 1 : moment;
    return calendar::split_day(static_cast<std::uint32_t>((within - first) / kSecondsPerDay)).year;
}

} // namespace core
