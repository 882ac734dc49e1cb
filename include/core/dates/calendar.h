// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

/// The proleptic Gregorian calendar as pure arithmetic: days counted from 0001-01-01 (day 0) to 9999-12-31,
/// and the year, month and day of each. No tables and no loops.
///
/// Both directions count years from 1 March, so that the leap day is the last day of a year, and replace
/// divisions by a multiplication whose upper half is the quotient and whose lower half yields the remainder
/// (Neri and Schneider, "Euclidean affine functions and their application to calendar algorithms").
namespace core::calendar {

/// The days of the years 1 to 9999.
inline constexpr std::uint32_t kDayCount = 3'652'059;

/// The days from 0000-03-01, where the shifted years begin, to 0001-01-01.
inline constexpr std::uint32_t kDaysToFirstJanuary = 306;

/// A day of the calendar.
struct Day {
    int year = 0;  ///< 1 ... 9999
    int month = 0; ///< 1 ... 12
    int day = 0;   ///< 1 ... 31
};

/// Returns whether the year has 366 days; years before year 1 never do.
[[nodiscard]] constexpr bool is_leap_year(int year) noexcept {
    // A multiple of 100 is one of 400 exactly when 16 divides it.
    return year >= 1 && (year % 100 != 0 ? year % 4 == 0 : year % 16 == 0);
}

/// Returns the days of a month; 0 for a month outside 1 ... 12.
[[nodiscard]] constexpr int days_per_month(int year, int month) noexcept {
    if (month < 1 || month > 12)
        return 0;
    if (month == 2)
        return is_leap_year(year) ? 29 : 28;
    return 30 | (month ^ (month >> 3)); // lengths alternate, and once more from August on
}

/// Returns the year, month and day of a day number below kDayCount.
[[nodiscard]] constexpr Day split_day(std::uint32_t day) noexcept {
    const std::uint32_t quarters = 4 * (day + kDaysToFirstJanuary) + 3;
    const std::uint32_t century = quarters / 146'097;

    constexpr std::uint32_t kYearScale = 2'939'745; // 2^32 / 1461, rounded up
    const std::uint64_t scaled = std::uint64_t{kYearScale} * ((quarters % 146'097) | 3);
    const auto yearOfCentury = static_cast<std::uint32_t>(scaled >> 32);
    const std::uint32_t dayOfYear = static_cast<std::uint32_t>(scaled) / kYearScale / 4;

    const std::uint32_t months = 2141 * dayOfYear + 197'913;
    const std::uint32_t afterNewYear = dayOfYear >= kDaysToFirstJanuary ? 1 : 0;
    return {static_cast<int>(100 * century + yearOfCentury + afterNewYear),
            static_cast<int>((months >> 16) - 12 * afterNewYear),
            static_cast<int>((months & 0xFFFF) / 2141 + 1)};
}

/// Returns the number of a day that exists, of the year 1 or a later one. 0001-01-01 gives 0.
[[nodiscard]] constexpr std::uint32_t day_number(int year, int month, int day) noexcept {
    const std::uint32_t beforeMarch = month <= 2 ? 1 : 0;
    const std::uint32_t years = static_cast<std::uint32_t>(year) - beforeMarch;
    const std::uint32_t months = static_cast<std::uint32_t>(month) + 12 * beforeMarch;
    const std::uint32_t century = years / 100;
    return 1461 * years / 4 - century + century / 4 + (979 * months - 2919) / 32 +
           static_cast<std::uint32_t>(day) - 1 - kDaysToFirstJanuary;
}

/// Returns the day of the week of a day number, 1 Monday ... 7 Sunday.
[[nodiscard]] constexpr int week_day(std::uint32_t day) noexcept {
    return static_cast<int>(day % 7) + 1;
}

} // namespace core::calendar
