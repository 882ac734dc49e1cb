// SPDX-License-Identifier: Apache-2.0
// Standard periods and beginnings against a model, on days that people can check, and at the ends of the
// calendar. CORE_NIGHTLY=1 asks for each day of the calendar instead of some years.
#include "tests/dates/standard_period_model.h"
#include "tests/support/rounds.h"
#include "tests/support/stopped_clock.h"

#include <core/dates.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <random>

namespace core {
namespace {

using namespace std::chrono;
using Variant = StandardPeriodVariant;
using Beginning = StandardBeginningDateVariant;
using period_model::Meaning;
using period_model::Unit;

static_assert(StandardPeriod(Variant::today) != StandardPeriod(Date(2026, 11, 22), Date(2026, 11, 22)));
static_assert(std::is_trivially_copyable_v<StandardPeriod>);

Date date_of(sys_days day) {
    return Date(static_cast<std::uint64_t>((day - sys_days(year(1) / 1 / 1)).count()) * kTicksPerDay);
}

DatePeriod whole_days(Date first, Date last) {
    return {first, last.endOfDay()};
}

/// The years that a run asks for.
std::vector<std::pair<int, int>> years() {
    if (support::is_nightly())
        return {{1, 9999}};
    return {{1, 2}, {1899, 1901}, {1999, 2001}, {2026, 2028}, {9998, 9999}};
}

/// Compares the variants of one unit with the model, each day at another time of day.
void compare(Unit unit, int firstDayOfWeek, int firstYear, int lastYear) {
    std::vector<Meaning> meanings = period_model::meanings();
    std::erase_if(meanings, [=](const Meaning& meaning) { return meaning.unit != unit; });
    ASSERT_GE(meanings.size(), 3U);
    const period_model::Beginnings beginnings(unit, firstDayOfWeek, firstYear - 2, lastYear + 3);
    const sys_days end = sys_days(year(lastYear) / 12 / 31);
    std::uint64_t time = 0;
    for (sys_days day = sys_days(year(firstYear) / 1 / 1); day <= end; day += days(1)) {
        time = (time + 123'456'789) % kTicksPerDay;
        const Date moment = Date(date_of(day).ticks() + time);
        for (const Meaning& meaning : meanings) {
            const DatePeriod got = StandardPeriod(meaning.variant).dates(moment, firstDayOfWeek);
            const DatePeriod want = period_model::expected(meaning, beginnings, day);
            if (got != want)
                FAIL() << "variant " << static_cast<int>(meaning.variant) << ", week from " << firstDayOfWeek
                       << ", " << to_utf8(moment) << ": " << to_utf8(got.begin) << " to " << to_utf8(got.end)
                       << " instead of " << to_utf8(want.begin) << " to " << to_utf8(want.end);
        }
    }
}

TEST(StandardPeriodModel, AgreesOnEveryDayInEveryWeek) {
    for (const auto& [first, last] : years()) {
        for (int firstDayOfWeek = 1; firstDayOfWeek <= 7; ++firstDayOfWeek)
            compare(Unit::week, firstDayOfWeek, first, last);
        for (const Unit unit :
             {Unit::day, Unit::tenDays, Unit::month, Unit::quarter, Unit::halfYear, Unit::year})
            compare(unit, 1, first, last);
    }
}

TEST(StandardPeriodModel, CoversAllVariantsButTheThreeThatHaveNoUnit) {
    std::map<Variant, int> seen;
    for (const Meaning& meaning : period_model::meanings())
        ++seen[meaning.variant];
    for (const Variant variant : {Variant::custom, Variant::last7Days, Variant::next7Days})
        EXPECT_EQ(seen.count(variant), 0U);
    EXPECT_EQ(seen.size() + 3, static_cast<std::size_t>(Variant::next7Days) + 1);
}

TEST(StandardPeriodModel, ABeginningIsThatOfTheWholePeriod) {
    // In both enumerations the units follow each other, each with the last, this and the next period.
    const Variant whole[] = {Variant::yesterday, Variant::lastWeek,    Variant::lastTenDays,
                             Variant::lastMonth, Variant::lastQuarter, Variant::lastHalfYear,
                             Variant::lastYear};
    std::mt19937_64 random(1);
    for (int i = 0; i < 10'000; ++i) {
        const Date day(random() % Date::kLimit);
        const int first = static_cast<int>(random() % 7) + 1;
        int beginning = static_cast<int>(Beginning::beginningOfLastDay);
        for (const Variant last : whole) {
            for (int offset = 0; offset < 3; ++offset, ++beginning) {
                const StandardPeriod period(static_cast<Variant>(static_cast<int>(last) + offset));
                ASSERT_EQ(StandardBeginningDate(static_cast<Beginning>(beginning)).date(day, first),
                          period.dates(day, first).begin)
                    << beginning << " on " << to_utf8(day);
            }
        }
        ASSERT_EQ(beginning, static_cast<int>(Beginning::beginningOfNextYear) + 1);
    }
}

TEST(StandardPeriod, MeansWhatPeopleExpect) {
    const Date day(2026, 11, 22, 13, 5, 7); // a Sunday
    const auto dates = [&](Variant variant, int firstDayOfWeek = 1) {
        return StandardPeriod(variant).dates(day, firstDayOfWeek);
    };
    EXPECT_EQ(dates(Variant::today), whole_days(Date(2026, 11, 22), Date(2026, 11, 22)));
    EXPECT_EQ(dates(Variant::thisWeek), whole_days(Date(2026, 11, 16), Date(2026, 11, 22)));
    EXPECT_EQ(dates(Variant::thisWeek, 7), whole_days(Date(2026, 11, 22), Date(2026, 11, 28)));
    EXPECT_EQ(dates(Variant::thisWeek, 0), dates(Variant::thisWeek, 1));
    EXPECT_EQ(dates(Variant::nextTenDays), whole_days(Date(2026, 12, 1), Date(2026, 12, 10)));
    EXPECT_EQ(dates(Variant::lastMonthToDate), whole_days(Date(2026, 10, 1), Date(2026, 10, 22)));
    EXPECT_EQ(dates(Variant::thisQuarterToDate), whole_days(Date(2026, 10, 1), Date(2026, 11, 22)));
    EXPECT_EQ(dates(Variant::restOfThisHalfYear), whole_days(Date(2026, 11, 22), Date(2026, 12, 31)));
    EXPECT_EQ(dates(Variant::lastYearToDate), whole_days(Date(2025, 1, 1), Date(2025, 11, 22)));
    EXPECT_EQ(dates(Variant::last7Days), whole_days(Date(2026, 11, 16), Date(2026, 11, 22)));
    EXPECT_EQ(dates(Variant::next7Days), whole_days(Date(2026, 11, 22), Date(2026, 11, 28)));

    // Where the other period is shorter, its last day corresponds.
    const Date may(2026, 5, 31);
    EXPECT_EQ(StandardPeriod(Variant::lastQuarterToDate).dates(may, 1),
              whole_days(Date(2026, 1, 1), Date(2026, 2, 28)));
    EXPECT_EQ(StandardPeriod(Variant::lastTenDaysToDate).dates(may, 1),
              whole_days(Date(2026, 5, 11), Date(2026, 5, 20)));
}

TEST(StandardPeriod, StopsAtBothEndsOfTheCalendar) {
    const Date first(1, 1, 1);
    const Date last(9999, 12, 31, 23, 59, 59);
    EXPECT_EQ(StandardPeriod(Variant::lastYear).dates(first, 1), (DatePeriod{first, first}));
    EXPECT_EQ(StandardPeriod(Variant::last7Days).dates(first, 1), whole_days(first, first));
    EXPECT_EQ(StandardPeriod(Variant::nextYear).dates(last, 1), (DatePeriod{last, last}));
    EXPECT_EQ(StandardPeriod(Variant::next7Days).dates(Date::largest(), 1),
              (DatePeriod{Date(9999, 12, 31), last}));
    EXPECT_EQ(StandardBeginningDate(Beginning::beginningOfNextDay).date(last, 1), last);
    for (const std::uint64_t ticks : {Date::kLimit, std::numeric_limits<std::uint64_t>::max()}) {
        EXPECT_EQ(StandardPeriod(Variant::thisMonth).dates(Date(ticks), 1), DatePeriod());
        EXPECT_EQ(StandardBeginningDate(Beginning::beginningOfThisYear).date(Date(ticks), 1), Date());
        EXPECT_EQ(StandardPeriod(Date(ticks), Date(ticks)).dates(first), (DatePeriod{last, last}));
        EXPECT_EQ(StandardBeginningDate(Date(ticks)).date(first), last);
    }
}

TEST(StandardPeriod, HoldsGivenDatesInWholeSeconds) {
    const Date begin(2026, 1, 2, 3, 4, 5);
    const Date end(2026, 2, 3, 4, 5, 6);
    const StandardPeriod given(begin + DateSpan(1), end + DateSpan(kTicksPerSecond - 1));
    EXPECT_EQ(given, StandardPeriod(begin, end));
    EXPECT_NE(given, StandardPeriod(begin, end + DateSpan(kTicksPerSecond)));
    EXPECT_EQ(given.variant(), Variant::custom);
    EXPECT_EQ(given.dates(Date(1, 1, 1)), (DatePeriod{begin, end}));
    EXPECT_EQ(StandardPeriod(), StandardPeriod(Variant::custom));

    const DatePeriod dates = given.dates();
    EXPECT_TRUE(dates.contains(begin) && dates.contains(end + DateSpan(kTicksPerSecond - 1)));
    EXPECT_FALSE(dates.contains(begin - DateSpan(1)) || dates.contains(end + DateSpan(kTicksPerSecond)));
    EXPECT_FALSE(StandardPeriod(end, begin).dates().contains(begin));
}

TEST(StandardPeriod, IsCountedFromTheDayAndTheWeekOfTheProcess) {
    Settings settings;
    settings.part<DateSettings>().timeZone = "Asia/Tokyo";
    settings.part<DateSettings>().firstDayOfWeek = 7;
    const host::HostProcess process(settings);
    const StoppedClock clock(sys_days(year(2026) / 11 / 21) + hours(20)); // Sunday in Tokyo
    EXPECT_EQ(StandardPeriod(Variant::today).dates(), whole_days(Date(2026, 11, 22), Date(2026, 11, 22)));
    const DatePeriod week = whole_days(Date(2026, 11, 22), Date(2026, 11, 28));
    EXPECT_EQ(StandardPeriod(Variant::thisWeek).dates(), week);
    EXPECT_EQ(StandardPeriod(Variant::thisWeek).dates(Date(2026, 11, 25)), week);
    EXPECT_EQ(StandardBeginningDate(Beginning::beginningOfThisWeek).date(), week.begin);
    EXPECT_EQ(StandardBeginningDate(Beginning::beginningOfNextWeek).date(Date(2026, 11, 21)), week.begin);
}

} // namespace
} // namespace core
