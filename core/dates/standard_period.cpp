// SPDX-License-Identifier: Apache-2.0
#include "core/dates/standard_table.h"

#include <core/dates/settings.h>
#include <core/dates/standard_period.h>
#include <core/runtime/settings.h>

#include <algorithm>
#include <cstdint>

namespace core {
namespace {

using enum PeriodUnit;
using enum PeriodPart;

constexpr std::int64_t kMonthsPerYear = 12;
constexpr std::int64_t kMonthCount = 9999 * kMonthsPerYear;
constexpr std::int64_t kTensPerMonth = 3;

/// Days and months are counted from 0001-01-01. Periods outside the calendar lie at its ends and are empty.
struct DayRange {
    std::int64_t first;
    std::int64_t last; ///< the day behind the range
};

/// A day with its month, counted from January of the year 1.
struct MonthDay {
    std::int64_t month;
    int day; ///< 1 ... 31
};

MonthDay month_day(std::int64_t day) noexcept {
    const calendar::Day parts = calendar::split_day(static_cast<std::uint32_t>(day));
    return {(parts.year - 1) * kMonthsPerYear + parts.month - 1, parts.day};
}

/// The first day of a month.
std::int64_t first_day(std::int64_t month) noexcept {
    if (month < 0)
        return 0;
    if (month >= kMonthCount)
        return calendar::kDayCount;
    return calendar::day_number(static_cast<int>(month / kMonthsPerYear) + 1,
                                static_cast<int>(month % kMonthsPerYear) + 1, 1);
}

/// The first day of a third of a month, counted as months are.
std::int64_t first_of_ten(std::int64_t third) noexcept {
    return third < 0 ? 0 : first_day(third / kTensPerMonth) + third % kTensPerMonth * 10;
}

/// The day in a month that corresponds to one of another month: the same number, or the last day of a shorter
/// month.
std::int64_t corresponding_day(std::int64_t month, int day) noexcept {
    if (month < 0)
        return -1;
    return std::min(first_day(month) + day, first_day(month + 1)) - 1;
}

/// Some periods of a unit, `offset` behind that of a day, and the day in it that corresponds.
struct Found {
    DayRange range;
    std::int64_t corresponding;
};

Found months(std::int64_t day, std::int64_t count, std::int64_t offset) noexcept {
    const MonthDay parts = month_day(day);
    const std::int64_t first = parts.month - parts.month % count + offset * count;
    return {{first_day(first), first_day(first + count)},
            corresponding_day(parts.month + offset * count, parts.day)};
}

Found ten_days(std::int64_t day, std::int64_t offset) noexcept {
    const MonthDay parts = month_day(day);
    const std::int64_t third = std::min<std::int64_t>((parts.day - 1) / 10, kTensPerMonth - 1);
    const std::int64_t current = parts.month * kTensPerMonth + third;
    const DayRange range{first_of_ten(current + offset), first_of_ten(current + offset + 1)};
    return {range, std::min(range.first + day - first_of_ten(current), range.last - 1)};
}

/// Days in a row, the first of them `back` days before the day, moved by their number.
Found days(std::int64_t day, std::int64_t count, std::int64_t back, std::int64_t offset) noexcept {
    const std::int64_t first = day - back + offset * count;
    return {{first, first + count}, day + offset * count};
}

Found find(PeriodUnit unit, std::int64_t offset, std::int64_t day, int firstDayOfWeek) noexcept {
    switch (unit) {
    case week: {
        const int first = firstDayOfWeek >= 1 && firstDayOfWeek <= 7 ? firstDayOfWeek : 1;
        return days(day, 7, (calendar::week_day(static_cast<std::uint32_t>(day)) - first + 7) % 7, offset);
    }
    case tenDays:
        return ten_days(day, offset);
    case month:
        return months(day, 1, offset);
    case quarter:
        return months(day, 3, offset);
    case halfYear:
        return months(day, 6, offset);
    case year:
        return months(day, kMonthsPerYear, offset);
    case sevenDays: // with the day at their end, or at their beginning
        return offset < 0 ? Found{{day - 6, day + 1}, day} : Found{{day, day + 7}, day};
    default:
        return days(day, 1, 0, offset);
    }
}

DayRange range_of(const PeriodRule& rule, std::int64_t day, int firstDayOfWeek) noexcept {
    const Found found = find(rule.unit, static_cast<std::int64_t>(rule.offset), day, firstDayOfWeek);
    switch (rule.part) {
    case toDate:
        return {found.range.first, found.corresponding + 1};
    case rest:
        return {day, found.range.last};
    default:
        return found.range;
    }
}

/// A count of ticks as a date, in whole seconds of the calendar.
Date within_calendar(std::int64_t ticks) noexcept {
    constexpr auto kLastSecond = static_cast<std::int64_t>(Date::kLimit) - kTicksPerSecond;
    return Date(static_cast<std::uint64_t>(std::clamp<std::int64_t>(ticks, 0, kLastSecond)));
}

template <class E>
DatePeriod dates_of(E variant, Date day, int firstDayOfWeek) noexcept {
    if (!day.isInRange())
        return {};
    const PeriodRule& rule = variants_of(variant)[static_cast<std::size_t>(variant)].rule;
    const DayRange range =
        range_of(rule, static_cast<std::int64_t>(day.ticks() / kTicksPerDay), firstDayOfWeek);
    return {within_calendar(range.first * kTicksPerDay),
            within_calendar(range.last * kTicksPerDay - kTicksPerSecond)};
}

int first_day_of_week() noexcept {
    return current_settings().part<DateSettings>().firstDayOfWeek;
}

} // namespace

DatePeriod StandardPeriod::dates(Date day, int firstDayOfWeek) const noexcept {
    return variant_ == StandardPeriodVariant::custom ? given_ : dates_of(variant_, day, firstDayOfWeek);
}

DatePeriod StandardPeriod::dates(Date day) const noexcept {
    return dates(day, first_day_of_week());
}

DatePeriod StandardPeriod::dates() const {
    return variant_ == StandardPeriodVariant::custom ? given_ : dates(Date::getCurrentDate());
}

Date StandardBeginningDate::date(Date day, int firstDayOfWeek) const noexcept {
    return variant_ == StandardBeginningDateVariant::custom ? given_
                                                            : dates_of(variant_, day, firstDayOfWeek).begin;
}

Date StandardBeginningDate::date(Date day) const noexcept {
    return date(day, first_day_of_week());
}

Date StandardBeginningDate::date() const {
    return variant_ == StandardBeginningDateVariant::custom ? given_ : date(Date::getCurrentDate());
}

} // namespace core
