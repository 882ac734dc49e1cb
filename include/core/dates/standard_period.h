// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/dates/date.h>
#include <core/dates/standard_variants.h>

#include <algorithm>

/// Periods that are counted from a day, as "this month" or "last year to the same date", and the beginnings
/// of such periods. What is kept is the variant; the dates follow from it and from the day:
///
///     const StandardPeriod period(StandardPeriodVariant::thisMonth);
///     const DatePeriod november = period.dates(Date(2026, 11, 22));   // 1 to 30 November, 23:59:59
///
/// Dates stop at the ends of the calendar: a period that would begin before the year 1 begins at the empty
/// date, one that would end behind the year 9999 ends at its last second. A day out of range gives empty
/// dates.
namespace core {

/// The two ends of a period. A value type.
struct DatePeriod {
    Date begin; ///< the first second
    Date end;   ///< the last whole second; before `begin` in a period that holds no date

    /// Returns whether a date lies in the period. The parts of the last second do.
    [[nodiscard]] constexpr bool contains(Date date) const noexcept {
        return begin <= date && date <= lastTick();
    }
    /// Returns the last moment of the period: the end of its last second.
    [[nodiscard]] constexpr Date lastTick() const noexcept {
        return Date(end.ticks() - end.ticks() % kTicksPerSecond + kTicksPerSecond - 1);
    }
    bool operator==(const DatePeriod&) const = default;
};

namespace detail {

/// A date in whole seconds within the calendar.
[[nodiscard]] constexpr Date whole_second(Date date) noexcept {
    const std::uint64_t ticks = std::min(date.ticks(), Date::kLimit - 1);
    return Date(ticks - ticks % kTicksPerSecond);
}

} // namespace detail

/// A period by its variant, or between two given dates. A value type; two are equal when their variants are
/// equal, and with given dates the dates too: "today" is not equal to the dates that it stands for.
class StandardPeriod {
  public:
    /// Makes the period of two given dates that are empty.
    constexpr StandardPeriod() noexcept = default;
    /// Makes the period of a variant; `custom` is the period of two empty dates. The number must be one of
    /// the enumeration.
    constexpr StandardPeriod(StandardPeriodVariant variant) noexcept : variant_(variant) {}
    /// Makes the period of two given dates, both in whole seconds: parts of a second are cut off, and dates
    /// behind the year 9999 become its last second. An end before the beginning makes a period without dates.
    constexpr StandardPeriod(Date begin, Date end) noexcept
        : given_{detail::whole_second(begin), detail::whole_second(end)} {}

    /// Returns the variant; `custom` where the dates are given.
    [[nodiscard]] constexpr StandardPeriodVariant variant() const noexcept { return variant_; }
    /// Returns the dates as they are today, by the library's clock, in the process's zone and weeks. Throws
    /// TimeZoneException for a zone in the settings that is not known; never where the dates are given.
    [[nodiscard]] CORE_API DatePeriod dates() const;
    /// Returns the dates as seen from a day, in the weeks of the process.
    [[nodiscard]] CORE_API DatePeriod dates(Date day) const noexcept;
    /// Returns the dates as seen from a day, with weeks that begin on `firstDayOfWeek`, 1 Monday ... 7
    /// Sunday; anything else counts as Monday.
    [[nodiscard]] CORE_API DatePeriod dates(Date day, int firstDayOfWeek) const noexcept;
    bool operator==(const StandardPeriod&) const = default;

  private:
    StandardPeriodVariant variant_ = StandardPeriodVariant::custom;
    DatePeriod given_; // empty for all other variants
};

/// The beginning of a period by its variant, or a given date. A value type, equal as a StandardPeriod is.
class StandardBeginningDate {
  public:
    /// Makes a given date that is empty.
    constexpr StandardBeginningDate() noexcept = default;
    /// Makes the beginning of a variant; `custom` is the empty date. The number must be one of the
    /// enumeration.
    constexpr StandardBeginningDate(StandardBeginningDateVariant variant) noexcept : variant_(variant) {}
    /// Makes a given date, in whole seconds as those of a StandardPeriod.
    explicit constexpr StandardBeginningDate(Date given) noexcept : given_(detail::whole_second(given)) {}

    /// Returns the variant; `custom` where the date is given.
    [[nodiscard]] constexpr StandardBeginningDateVariant variant() const noexcept { return variant_; }
    /// Returns the date as it is today, by the library's clock, in the process's zone and weeks. Throws
    /// TimeZoneException for a zone in the settings that is not known; never where the date is given.
    [[nodiscard]] CORE_API Date date() const;
    /// Returns the date as seen from a day, in the weeks of the process.
    [[nodiscard]] CORE_API Date date(Date day) const noexcept;
    /// Returns the date as seen from a day, with weeks that begin on `firstDayOfWeek`, 1 Monday ... 7 Sunday;
    /// anything else counts as Monday.
    [[nodiscard]] CORE_API Date date(Date day, int firstDayOfWeek) const noexcept;
    bool operator==(const StandardBeginningDate&) const = default;

  private:
    StandardBeginningDateVariant variant_ = StandardBeginningDateVariant::custom;
    Date given_; // empty for all other variants
};

} // namespace core
