// SPDX-License-Identifier: Apache-2.0
// Standard periods in conditions beside the same conditions with dates, with an index and without one.
#include "tests/support/stopped_clock.h"
#include "tests/tables/table_fixture.h"

#include <core/dates/settings.h>
#include <core/objects/standard_periods.h>
#include <core/tables/filter.h>

#include <random>

namespace {

using namespace script;

/// On 22 November 2026.
class StandardDates : public TableTest {
  protected:
    StandardDates() { process_.settings().part<DateSettings>().timeZone = "UTC"; }

    /// 3000 moments around that day, some of them not filled.
    static GenericValue table() {
        const GenericValue made = make(u"ValueTable");
        call(property(made, u"Columns"), u"Add", {u"Day", description(u"Date")});
        std::mt19937_64 random(1);
        for (int i = 0; i < 3000; ++i) {
            const GenericValue row = call(made, u"Add");
            const std::uint64_t days = random() % 1200;
            const Date day = Date(2025, 3, 1) + DateSpan(static_cast<std::int64_t>(days) * kTicksPerDay);
            const std::uint64_t parts = random() % 4;
            if (random() % 10 != 0)
                call(row, u"Set",
                     {0, parts == 0   ? day
                         : parts == 1 ? day.endOfDay()
                         : parts == 2 ? day.endOfDay() + DateSpan(kTicksPerSecond - 1)
                                      : day + DateSpan(1)});
        }
        return made;
    }
    static std::vector<std::size_t> found(const Value& table, const Filter& filter) {
        return find_rows(*table.query<IValueTable>(), filter);
    }
    static Filter between(const StandardPeriod& period, wstring_view word = u"Between") {
        const DatePeriod dates = period.dates();
        return Filter(u"Day " + wstring(word) + u" &A And &B",
                      {{u"A", dates.begin}, {u"B", dates.lastTick()}});
    }

    StoppedClock clock_{std::chrono::sys_days(std::chrono::year(2026) / 11 / 22) + std::chrono::hours(13)};
};

TEST_F(StandardDates, InAPeriodIsBetweenItsDates) {
    const GenericValue rows = table();
    for (const bool indexed : {false, true}) {
        if (indexed)
            call(property(rows, u"Indexes"), u"Add", {u"Day"});
        std::size_t matches = 0;
        for (int i = 0; i <= static_cast<int>(StandardPeriodVariant::next7Days); ++i) {
            const StandardPeriod period(static_cast<StandardPeriodVariant>(i));
            const auto want = found(rows, between(period));
            matches += want.size();
            EXPECT_EQ(found(rows, Filter(u"Day In &P", {{u"P", to_value(period)}})), want) << i;
            EXPECT_EQ(found(rows, from_value<Filter>(make(u"Filter", {u"Day", to_value(period)}))), want);
            EXPECT_EQ(found(rows, Filter(u"Day Not In (&P)", {{u"P", to_value(period)}})),
                      found(rows, between(period, u"Not Between")));
        }
        EXPECT_GT(matches, 3000U);
    }
}

TEST_F(StandardDates, PeriodsStandInListsBesideOtherValues) {
    const GenericValue rows = table();
    const StandardPeriod october(StandardPeriodVariant::lastMonth);
    const StandardPeriod december(StandardPeriodVariant::nextMonth);
    const ExpressionParameters parameters = {{u"O", to_value(october)}, {u"D", to_value(december)}};
    const Filter both = between(october) || between(december);
    EXPECT_EQ(found(rows, Filter(u"Day In (&O, &D)", parameters)), found(rows, both));
    EXPECT_EQ(found(rows, Filter(u"Day Not In (&O, &D)", parameters)), found(rows, !both));
    EXPECT_EQ(found(rows, Filter(u"Day In (&O, '20261124', Undefined)", parameters)),
              found(rows, between(october) || Filter(u"Day In ('20261124', Undefined)")));
    EXPECT_EQ(found(rows, Filter(u"Not (Day In (&O, &D)) And Year(Day) = 2026", parameters)),
              found(rows, !both && Filter(u"Year(Day) = 2026")));
}

TEST_F(StandardDates, ABeginningDateIsADate) {
    const GenericValue rows = table();
    const Value year = to_value(StandardBeginningDate(StandardBeginningDateVariant::beginningOfThisYear));
    EXPECT_EQ(found(rows, Filter(u"Day >= &Y", {{u"Y", year}})), found(rows, Filter(u"Day >= '20260101'")));
}

TEST_F(StandardDates, AStoredFilterAsksForTheDatesOfItsDay) {
    const GenericValue rows = table();
    const StandardPeriod today(StandardPeriodVariant::today);
    const GenericValue filter = make(u"Filter", {u"Day", to_value(today)});
    const GenericValue again = GenericValue::fromString(text(filter));
    EXPECT_TRUE(again.equals(filter));
    const StoppedClock later(std::chrono::sys_days(std::chrono::year(2026) / 12 / 24));
    EXPECT_EQ(found(rows, from_value<Filter>(again)), found(rows, between(today)));
}

TEST_F(StandardDates, OnlyDatesLieInAPeriod) {
    const GenericValue rows = table_of(u"Name", {{u"North"}});
    const Value today = to_value(StandardPeriod(StandardPeriodVariant::today));
    EXPECT_THROW(found(rows, Filter(u"Name In &P", {{u"P", today}})), ExpressionException);
    EXPECT_THROW(found(rows, Filter(u"Name = &P", {{u"P", today}})), ExpressionException);
}

} // namespace
