// SPDX-License-Identifier: Apache-2.0
// The calendar day by day against std::chrono, arithmetic and periods at the ends of the range.
#include <core/dates.h>

#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <random>

namespace core {
namespace {

using namespace std::chrono;

constexpr sys_days kFirstDay = sys_days(year(1) / 1 / 1);

// What the compiler can prove needs no run.
static_assert(sizeof(Date) == 8 && std::is_trivially_copyable_v<Date>);
static_assert(Date::kLimit == 3'155'378'976'000'000 && Date(10000, 1, 1).isEmpty());
static_assert(Date(2004, 3, 1, 13, 5, 7).getSecond() == 7);
static_assert(Date(1, 1, 1).getWeekDay() == 1 && Date(9999, 12, 31).getWeekDay() == 5);

Date ticks(std::uint64_t count) {
    return Date(count);
}

TEST(Date, AgreesWithChronoOnEveryDay) {
    int lastWeek = 0;
    for (std::uint32_t number = 0; number < calendar::kDayCount; ++number) {
        const sys_days day = kFirstDay + days(number);
        const year_month_day parts(day);
        const auto y = static_cast<int>(parts.year());
        const auto m = static_cast<int>(static_cast<unsigned>(parts.month()));
        const auto d = static_cast<int>(static_cast<unsigned>(parts.day()));
        const Date date = ticks(std::uint64_t{number} * kTicksPerDay + number % kTicksPerDay);

        int gotYear, gotMonth, gotDay;
        date.split(gotYear, gotMonth, gotDay);
        ASSERT_TRUE(gotYear == y && gotMonth == m && gotDay == d) << number;
        ASSERT_EQ(Date(y, m, d), date.begOfDay());
        ASSERT_EQ(date.getYearDay(), (day - sys_days(parts.year() / 1 / 1)).count() + 1);
        ASSERT_EQ(date.getWeekDay(), static_cast<int>(weekday(day).iso_encoding()));
        ASSERT_EQ(date.getQuarter(), (m - 1) / 3 + 1);
        ASSERT_EQ(Date::daysPerMonth(y, m),
                  static_cast<int>(unsigned((parts.year() / parts.month() / last).day())));
        ASSERT_EQ(Date::isLeapYear(y), parts.year().is_leap());

        // Weeks change on Mondays only: they count on, or start again in the week of the first Thursday.
        const int week = date.getYearWeek();
        if (number % 7 == 0) {
            const year_month_day thursday(day + days(3));
            const bool first = thursday.month() == January && unsigned(thursday.day()) <= 7;
            ASSERT_EQ(week, first ? 1 : lastWeek + 1) << number;
        } else {
            ASSERT_EQ(week, lastWeek);
        }
        lastWeek = week;

        ASSERT_EQ(date.begOfMonth(), Date(y, m, 1));
        ASSERT_EQ(date.begOfYear(), Date(y, 1, 1));
        ASSERT_EQ(date.endOfYear(), Date(y, 12, 31, 23, 59, 59));
        ASSERT_EQ(date.begOfQuart(), Date(y, date.getQuarter() * 3 - 2, 1));
        ASSERT_EQ(date.endOfMonth(), Date(y, m, Date::daysPerMonth(y, m), 23, 59, 59));
        const int quarterEnd = date.getQuarter() * 3;
        ASSERT_EQ(date.endOfQuart(), Date(y, quarterEnd, Date::daysPerMonth(y, quarterEnd), 23, 59, 59));
    }
}

TEST(Date, SplitsTheTimeOfEverySecond) {
    for (int second = 0; second < 86'400; ++second) {
        const auto count = static_cast<std::uint64_t>(second * kTicksPerSecond);
        const Date date =
            ticks(Date(2000, 2, 29).ticks() + count + static_cast<std::uint64_t>(second % 10'000));
        int y, mo, d, h, mi, s;
        date.split(y, mo, d, h, mi, s);
        ASSERT_TRUE(y == 2000 && mo == 2 && d == 29);
        ASSERT_EQ((h * 60 + mi) * 60 + s, second);
        ASSERT_TRUE(h == date.getHour() && mi == date.getMinute() && s == date.getSecond() && mi < 60 &&
                    s < 60);
        ASSERT_EQ(Date(y, mo, d, h, mi, s).ticks(), Date(2000, 2, 29).ticks() + count);
        ASSERT_EQ(date.begOfMinute(), Date(y, mo, d, h, mi, 0));
        ASSERT_EQ(date.endOfMinute(), Date(y, mo, d, h, mi, 59));
        ASSERT_EQ(date.begOfHour(), Date(y, mo, d, h));
        ASSERT_EQ(date.endOfHour(), Date(y, mo, d, h, 59, 59));
        ASSERT_EQ(date.endOfDay(), Date(y, mo, d, 23, 59, 59));
    }
}

TEST(Date, EveryPartAndPeriodOutOfRangeIsNothing) {
    EXPECT_EQ(Date::largest().ticks(), 3'155'378'975'999'999U);
    EXPECT_EQ(Date::largest().toXMLString(), u"9999-12-31T23:59:59");
    for (const Date date : {ticks(Date::kLimit), ticks(std::numeric_limits<std::uint64_t>::max())}) {
        EXPECT_EQ(date.toString(), u"00000000000000");
        for (const int part :
             {date.getYear(), date.getMonth(), date.getMonthDay(), date.getYearDay(), date.getQuarter(),
              date.getWeekDay(), date.getYearWeek(), date.getHour(), date.getMinute(), date.getSecond()})
            EXPECT_EQ(part, 0);
        for (const Date end :
             {date.begOfMinute(), date.endOfMinute(), date.begOfHour(), date.endOfHour(), date.begOfDay(),
              date.endOfDay(), date.begOfWeek(), date.endOfWeek(), date.begOfMonth(), date.endOfMonth(),
              date.begOfQuart(), date.endOfQuart(), date.begOfYear(), date.endOfYear()})
            EXPECT_TRUE(end.isEmpty());
        EXPECT_EQ(Date(date).addMonth(-1), date);
        EXPECT_EQ(date.toLocalTime("Asia/Tokyo"), date);
        EXPECT_EQ(date + DateSpan(0), Date::largest());
    }
    EXPECT_EQ(ticks(Date::kLimit) - DateSpan(1), Date::largest());
}

TEST(Date, ImpossiblePartsGiveTheEmptyDate) {
    const int bad[][6] = {{0, 1, 1, 1, 0, 0},     {10000, 1, 1, 0, 0, 0}, {2004, 0, 1, 0, 0, 0},
                          {2004, 13, 1, 0, 0, 0}, {2004, 1, 0, 0, 0, 0},  {2004, 1, 32, 0, 0, 0},
                          {2004, 2, 30, 0, 0, 0}, {1900, 2, 29, 0, 0, 0}, {2004, 1, 1, 24, 0, 0},
                          {2004, 1, 1, -1, 0, 0}, {2004, 1, 1, 0, 60, 0}, {2004, 1, 1, 0, 0, 60},
                          {-1, -1, -1, 0, 0, 0},  {2004, -1, 1, 0, 0, -1}};
    for (const auto& p : bad)
        EXPECT_TRUE(Date(p[0], p[1], p[2], p[3], p[4], p[5]).isEmpty()) << p[0] << '-' << p[1] << '-' << p[2];
    for (const int month : {0, 13, -5})
        EXPECT_EQ(Date::daysPerMonth(2000, month), 0);
    for (const int year : {0, -4, -400})
        EXPECT_FALSE(Date::isLeapYear(year));
    EXPECT_EQ(Date::daysPerMonth(1900, 2), 28);
    EXPECT_EQ(Date::daysPerMonth(2000, 2), 29);
}

TEST(Date, AdditionStopsAtBothEnds) {
    constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
    constexpr auto kLeast = std::numeric_limits<std::int64_t>::min();
    const DateSpan day(kTicksPerDay);
    EXPECT_EQ(Date(9999, 12, 31) + day, Date::largest());
    EXPECT_EQ(Date(9999, 12, 30) + day, Date(9999, 12, 31));
    EXPECT_TRUE((Date(1, 1, 1, 12) - day).isEmpty());
    EXPECT_EQ(ticks(Date::kLimit - 2) + DateSpan(1), Date::largest());
    EXPECT_EQ(ticks(5) + DateSpan(-5), Date());
    EXPECT_EQ(ticks(5) + DateSpan(-4), ticks(1));
    EXPECT_EQ(Date(2004, 1, 1) + DateSpan(kMost), Date::largest());
    EXPECT_EQ(Date(2004, 1, 1) - DateSpan(kLeast), Date::largest());
    EXPECT_EQ(Date(2004, 1, 1) + DateSpan(kLeast), Date());
    EXPECT_EQ(Date(2004, 1, 1) - DateSpan(kMost), Date());

    std::mt19937_64 random(1);
    for (int i = 0; i < 1000; ++i) {
        const Date a = ticks(random() % Date::kLimit);
        const Date b = ticks(random() % Date::kLimit);
        EXPECT_EQ(b + (a - b), a);
        EXPECT_EQ(a - (a - b), b);
        EXPECT_EQ(a < b, (a - b).ticks() < 0);
    }
}

TEST(Date, MonthsKeepTimeAndClampTheDay) {
    EXPECT_EQ(Date(2004, 1, 31, 5, 6, 7).addMonth(1), Date(2004, 2, 29, 5, 6, 7));
    EXPECT_EQ(Date(2003, 12, 31).addMonth(2), Date(2004, 2, 29));
    EXPECT_EQ(Date(2004, 2, 29).addMonth(-12), Date(2003, 2, 28));
    EXPECT_EQ(Date(9999, 12, 1).addMonth(1), Date::largest());
    EXPECT_EQ(Date(1, 1, 31).addMonth(-1), Date());
    EXPECT_EQ(Date(1, 1, 1).addMonth(std::numeric_limits<int>::min()), Date());
    EXPECT_EQ(Date(9999, 12, 1).addMonth(std::numeric_limits<int>::max()), Date::largest());

    std::mt19937 random(2);
    for (int i = 0; i < 10'000; ++i) {
        const Date date =
            ticks(random() % calendar::kDayCount * std::uint64_t{kTicksPerDay} + random() % kTicksPerDay);
        const int count = static_cast<int>(random() % 400) - 200;
        const year_month_day from(kFirstDay + days(date.ticks() / kTicksPerDay));
        year_month_day to = from + months(count);
        if (to.year() < year(1) || to.year() > year(9999))
            continue;
        if (!to.ok())
            to = to.year() / to.month() / last;
        const auto day = static_cast<std::uint64_t>((sys_days(to) - kFirstDay).count());
        EXPECT_EQ(Date(date).addMonth(count).ticks(), day * kTicksPerDay + date.ticks() % kTicksPerDay);
    }
}

TEST(Date, WeeksBeginOnTheChosenDay) {
    const Date wednesday(2004, 3, 3, 12);
    EXPECT_EQ(wednesday.begOfWeek(), Date(2004, 3, 1));
    EXPECT_EQ(wednesday.endOfWeek(), Date(2004, 3, 7, 23, 59, 59));
    for (int first = 1; first <= 7; ++first) {
        for (int day = 1; day <= 14; ++day) {
            const Date begin = Date(2004, 3, day, 23, 59, 59).begOfWeek(first);
            EXPECT_EQ(begin.getWeekDay(), first);
            EXPECT_LT((Date(2004, 3, day) - begin).ticks(), 7 * kTicksPerDay);
            EXPECT_LE(begin, Date(2004, 3, day));
        }
    }
    EXPECT_EQ(wednesday.begOfWeek(0), wednesday.begOfWeek(1));
    EXPECT_EQ(wednesday.begOfWeek(8), wednesday.begOfWeek(1));

    // The first day is a Monday, the last a Friday.
    EXPECT_EQ(Date(1, 1, 3).begOfWeek(7), Date());
    EXPECT_EQ(Date(1, 1, 3).begOfWeek(3), Date(1, 1, 3));
    EXPECT_EQ(Date(9999, 12, 27).endOfWeek(1), Date::largest());
    EXPECT_EQ(Date(9999, 12, 31).endOfWeek(6), Date(9999, 12, 31, 23, 59, 59));
}

} // namespace
} // namespace core
