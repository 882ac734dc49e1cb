// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/dates/standard_period.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <vector>

/// Standard periods as people count them: the days on which periods begin are written down in a row, and
/// those before and behind are looked up in it. Months later are those of std::chrono.
namespace period_model {

using namespace std::chrono;
using Variant = core::StandardPeriodVariant;

enum class Unit { day, week, tenDays, month, quarter, halfYear, year };
enum class Part { whole, toDate, rest };

/// What a variant should mean.
struct Meaning {
    Variant variant;
    Unit unit;
    int offset;
    Part part = Part::whole;
};

/// The variants of the units from the week on, by the names that they have.
inline std::vector<Meaning> meanings() {
    using enum core::StandardPeriodVariant;
    struct Names {
        Unit unit;
        Variant whole[3], toDate[3], rest;
    };
    const Names rows[] = {
        {Unit::week,
         {lastWeek, thisWeek, nextWeek},
         {lastWeekToDate, thisWeekToDate, nextWeekToDate},
         restOfThisWeek},
        {Unit::tenDays,
         {lastTenDays, thisTenDays, nextTenDays},
         {lastTenDaysToDate, thisTenDaysToDate, nextTenDaysToDate},
         restOfThisTenDays},
        {Unit::month,
         {lastMonth, thisMonth, nextMonth},
         {lastMonthToDate, thisMonthToDate, nextMonthToDate},
         restOfThisMonth},
        {Unit::quarter,
         {lastQuarter, thisQuarter, nextQuarter},
         {lastQuarterToDate, thisQuarterToDate, nextQuarterToDate},
         restOfThisQuarter},
        {Unit::halfYear,
         {lastHalfYear, thisHalfYear, nextHalfYear},
         {lastHalfYearToDate, thisHalfYearToDate, nextHalfYearToDate},
         restOfThisHalfYear},
        {Unit::year,
         {lastYear, thisYear, nextYear},
         {lastYearToDate, thisYearToDate, nextYearToDate},
         restOfThisYear},
    };
    std::vector<Meaning> all = {{yesterday, Unit::day, -1}, {today, Unit::day, 0}, {tomorrow, Unit::day, 1}};
    for (const Names& row : rows) {
        for (const int offset : {-1, 0, 1}) {
            all.push_back({row.whole[offset + 1], row.unit, offset});
            all.push_back({row.toDate[offset + 1], row.unit, offset, Part::toDate});
        }
        all.push_back({row.rest, row.unit, 0, Part::rest});
    }
    return all;
}

/// Days from the first to the last one.
struct Days {
    sys_days first;
    sys_days last;
};

/// The days on which the periods of a unit begin, over some years.
class Beginnings {
  public:
    Beginnings(Unit unit, int firstDayOfWeek, int firstYear, int lastYear)
        : unit_(unit), origin_(year(firstYear) / 1 / 1) {
        const sys_days end = sys_days(year(lastYear) / 12 / 31);
        for (sys_days at = origin_; at <= end; at += days(1)) {
            if (at == origin_ || begins(at, firstDayOfWeek))
                begins_.push_back(at);
            periods_.push_back(static_cast<std::uint32_t>(begins_.size() - 1));
        }
    }

    /// The period that lies `offset` periods behind that of a day. It must lie in the years, as the next one.
    [[nodiscard]] Days period(sys_days day, int offset) const {
        const std::size_t place = periods_[static_cast<std::size_t>((day - origin_).count())];
        const std::size_t found = place + static_cast<std::size_t>(offset + 1) - 1;
        return {begins_[found], begins_[found + 1] - days(1)};
    }
    /// The day that corresponds to a day in the period that lies `offset` periods behind.
    [[nodiscard]] sys_days corresponding(sys_days day, int offset) const {
        if (unit_ == Unit::week)
            return day + days(7 * offset);
        if (unit_ == Unit::tenDays)
            return std::min(period(day, offset).first + (day - period(day, 0).first),
                            period(day, offset).last);
        const int count = unit_ == Unit::month      ? 1
                          : unit_ == Unit::quarter  ? 3
                          : unit_ == Unit::halfYear ? 6
                                                    : 12;
        const year_month_day there = year_month_day(day) + months(count * offset);
        return there.ok() ? sys_days(there) : sys_days(there.year() / there.month() / last);
    }

  private:
    [[nodiscard]] bool begins(sys_days at, int firstDayOfWeek) const {
        const year_month_day date(at);
        const unsigned day = unsigned(date.day());
        const unsigned month = unsigned(date.month());
        switch (unit_) {
        case Unit::day:
            return true;
        case Unit::week:
            return static_cast<int>(weekday(at).iso_encoding()) == firstDayOfWeek;
        case Unit::tenDays:
            return day == 1 || day == 11 || day == 21;
        case Unit::month:
            return day == 1;
        case Unit::quarter:
            return day == 1 && (month == 1 || month == 4 || month == 7 || month == 10);
        case Unit::halfYear:
            return day == 1 && (month == 1 || month == 7);
        case Unit::year:
            return day == 1 && month == 1;
        }
        return false;
    }

    Unit unit_;
    sys_days origin_;
    std::vector<sys_days> begins_;
    std::vector<std::uint32_t> periods_; ///< for each day, the place of its period in begins_
};

/// Days as the two ends of a period, which stop at those of the calendar.
inline core::DatePeriod ends(Days range) {
    const sys_days first = sys_days(year(1) / 1 / 1);
    const auto date = [&](sys_seconds moment) {
        const core::Date lastSecond(9999, 12, 31, 23, 59, 59);
        const std::int64_t seconds = (moment - first).count();
        if (seconds < 0)
            return core::Date();
        return std::min(core::Date(static_cast<std::uint64_t>(seconds) * core::kTicksPerSecond), lastSecond);
    };
    return {date(range.first), date(range.last + days(1) - seconds(1))};
}

/// What a variant means on a day.
inline core::DatePeriod expected(const Meaning& meaning, const Beginnings& beginnings, sys_days day) {
    const Days whole = beginnings.period(day, meaning.offset);
    if (meaning.part == Part::toDate)
        return ends({whole.first, beginnings.corresponding(day, meaning.offset)});
    return ends(meaning.part == Part::rest ? Days{day, whole.last} : whole);
}

} // namespace period_model
