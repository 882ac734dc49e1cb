// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/dates/standard_variants.h>
#include <core/strings/term.h>

#include <cstddef>
#include <cstdint>

/// The variants of standard periods as data: what each means, and what people call it.
namespace core {

/// How long a period is.
enum class PeriodUnit : std::uint8_t { given, day, week, tenDays, month, quarter, halfYear, year, sevenDays };
/// Where it lies, seen from the period in which the day lies. Seven days end or begin with the day.
enum class PeriodOffset : std::int8_t { last = -1, current = 0, next = 1 };
/// How much of it is meant: up to the day that corresponds, or from the day on.
enum class PeriodPart : std::uint8_t { whole, toDate, rest };

/// What a variant means.
struct PeriodRule {
    PeriodUnit unit = PeriodUnit::given; ///< `given`: dates that the value itself holds
    PeriodOffset offset = PeriodOffset::current;
    PeriodPart part = PeriodPart::whole;
    bool operator==(const PeriodRule&) const = default;
};

/// A variant of `E`. Its place in the table is its number.
template <class E>
struct StandardVariant {
    E variant;
    PeriodRule rule;
    NamePair names;           ///< what scripts write
    const char* presentation; ///< message id of what the user reads
};

namespace standard_table {

using enum PeriodUnit;
using enum PeriodOffset;
using enum PeriodPart;
using Period = StandardPeriodVariant;
using Beginning = StandardBeginningDateVariant;

template <class E>
constexpr StandardVariant<E> row(E variant, PeriodRule rule, NamePair names, const char* presentation) {
    return {variant, rule, names, presentation};
}

inline constexpr StandardVariant<Period> kPeriods[] = {
    row(Period::custom, {}, {u"Custom", u"Произвольный"}, "IDS_STANDARD_PERIOD_CUSTOM"),
    row(Period::yesterday, {day, last, whole}, {u"Yesterday", u"Вчера"}, "IDS_STANDARD_PERIOD_YESTERDAY"),
    row(Period::today, {day, current, whole}, {u"Today", u"Сегодня"}, "IDS_STANDARD_PERIOD_TODAY"),
    row(Period::tomorrow, {day, next, whole}, {u"Tomorrow", u"Завтра"}, "IDS_STANDARD_PERIOD_TOMORROW"),
    row(Period::lastWeek, {week, last, whole}, {u"LastWeek", u"ПрошлаяНеделя"},
        "IDS_STANDARD_PERIOD_LAST_WEEK"),
    row(Period::thisWeek, {week, current, whole}, {u"ThisWeek", u"ЭтаНеделя"},
        "IDS_STANDARD_PERIOD_THIS_WEEK"),
    row(Period::nextWeek, {week, next, whole}, {u"NextWeek", u"СледующаяНеделя"},
        "IDS_STANDARD_PERIOD_NEXT_WEEK"),
    row(Period::lastWeekToDate, {week, last, toDate}, {u"LastWeekToDate", u"ПрошлаяНеделяДоДаты"},
        "IDS_STANDARD_PERIOD_LAST_WEEK_TO_DATE"),
    row(Period::thisWeekToDate, {week, current, toDate}, {u"ThisWeekToDate", u"СНачалаЭтойНедели"},
        "IDS_STANDARD_PERIOD_THIS_WEEK_TO_DATE"),
    row(Period::nextWeekToDate, {week, next, toDate}, {u"NextWeekToDate", u"СледующаяНеделяДоДаты"},
        "IDS_STANDARD_PERIOD_NEXT_WEEK_TO_DATE"),
    row(Period::restOfThisWeek, {week, current, rest}, {u"RestOfThisWeek", u"ОстатокЭтойНедели"},
        "IDS_STANDARD_PERIOD_REST_OF_THIS_WEEK"),
    row(Period::lastTenDays, {tenDays, last, whole}, {u"LastTenDays", u"ПрошлаяДекада"},
        "IDS_STANDARD_PERIOD_LAST_TEN_DAYS"),
    row(Period::thisTenDays, {tenDays, current, whole}, {u"ThisTenDays", u"ЭтаДекада"},
        "IDS_STANDARD_PERIOD_THIS_TEN_DAYS"),
    row(Period::nextTenDays, {tenDays, next, whole}, {u"NextTenDays", u"СледующаяДекада"},
        "IDS_STANDARD_PERIOD_NEXT_TEN_DAYS"),
    row(Period::lastTenDaysToDate, {tenDays, last, toDate}, {u"LastTenDaysToDate", u"ПрошлаяДекадаДоДаты"},
        "IDS_STANDARD_PERIOD_LAST_TEN_DAYS_TO_DATE"),
    row(Period::thisTenDaysToDate, {tenDays, current, toDate}, {u"ThisTenDaysToDate", u"СНачалаЭтойДекады"},
        "IDS_STANDARD_PERIOD_THIS_TEN_DAYS_TO_DATE"),
    row(Period::nextTenDaysToDate, {tenDays, next, toDate}, {u"NextTenDaysToDate", u"СледующаяДекадаДоДаты"},
        "IDS_STANDARD_PERIOD_NEXT_TEN_DAYS_TO_DATE"),
    row(Period::restOfThisTenDays, {tenDays, current, rest}, {u"RestOfThisTenDays", u"ОстатокЭтойДекады"},
        "IDS_STANDARD_PERIOD_REST_OF_THIS_TEN_DAYS"),
    row(Period::lastMonth, {month, last, whole}, {u"LastMonth", u"ПрошлыйМесяц"},
        "IDS_STANDARD_PERIOD_LAST_MONTH"),
    row(Period::thisMonth, {month, current, whole}, {u"ThisMonth", u"ЭтотМесяц"},
        "IDS_STANDARD_PERIOD_THIS_MONTH"),
    row(Period::nextMonth, {month, next, whole}, {u"NextMonth", u"СледующийМесяц"},
        "IDS_STANDARD_PERIOD_NEXT_MONTH"),
    row(Period::lastMonthToDate, {month, last, toDate}, {u"LastMonthToDate", u"ПрошлыйМесяцДоДаты"},
        "IDS_STANDARD_PERIOD_LAST_MONTH_TO_DATE"),
    row(Period::thisMonthToDate, {month, current, toDate}, {u"ThisMonthToDate", u"СНачалаЭтогоМесяца"},
        "IDS_STANDARD_PERIOD_THIS_MONTH_TO_DATE"),
    row(Period::nextMonthToDate, {month, next, toDate}, {u"NextMonthToDate", u"СледующийМесяцДоДаты"},
        "IDS_STANDARD_PERIOD_NEXT_MONTH_TO_DATE"),
    row(Period::restOfThisMonth, {month, current, rest}, {u"RestOfThisMonth", u"ОстатокЭтогоМесяца"},
        "IDS_STANDARD_PERIOD_REST_OF_THIS_MONTH"),
    row(Period::lastQuarter, {quarter, last, whole}, {u"LastQuarter", u"ПрошлыйКвартал"},
        "IDS_STANDARD_PERIOD_LAST_QUARTER"),
    row(Period::thisQuarter, {quarter, current, whole}, {u"ThisQuarter", u"ЭтотКвартал"},
        "IDS_STANDARD_PERIOD_THIS_QUARTER"),
    row(Period::nextQuarter, {quarter, next, whole}, {u"NextQuarter", u"СледующийКвартал"},
        "IDS_STANDARD_PERIOD_NEXT_QUARTER"),
    row(Period::lastQuarterToDate, {quarter, last, toDate}, {u"LastQuarterToDate", u"ПрошлыйКварталДоДаты"},
        "IDS_STANDARD_PERIOD_LAST_QUARTER_TO_DATE"),
    row(Period::thisQuarterToDate, {quarter, current, toDate},
        {u"ThisQuarterToDate", u"СНачалаЭтогоКвартала"}, "IDS_STANDARD_PERIOD_THIS_QUARTER_TO_DATE"),
    row(Period::nextQuarterToDate, {quarter, next, toDate}, {u"NextQuarterToDate", u"СледующийКварталДоДаты"},
        "IDS_STANDARD_PERIOD_NEXT_QUARTER_TO_DATE"),
    row(Period::restOfThisQuarter, {quarter, current, rest}, {u"RestOfThisQuarter", u"ОстатокЭтогоКвартала"},
        "IDS_STANDARD_PERIOD_REST_OF_THIS_QUARTER"),
    row(Period::lastHalfYear, {halfYear, last, whole}, {u"LastHalfYear", u"ПрошлоеПолугодие"},
        "IDS_STANDARD_PERIOD_LAST_HALF_YEAR"),
    row(Period::thisHalfYear, {halfYear, current, whole}, {u"ThisHalfYear", u"ЭтоПолугодие"},
        "IDS_STANDARD_PERIOD_THIS_HALF_YEAR"),
    row(Period::nextHalfYear, {halfYear, next, whole}, {u"NextHalfYear", u"СледующееПолугодие"},
        "IDS_STANDARD_PERIOD_NEXT_HALF_YEAR"),
    row(Period::lastHalfYearToDate, {halfYear, last, toDate},
        {u"LastHalfYearToDate", u"ПрошлоеПолугодиеДоДаты"}, "IDS_STANDARD_PERIOD_LAST_HALF_YEAR_TO_DATE"),
    row(Period::thisHalfYearToDate, {halfYear, current, toDate},
        {u"ThisHalfYearToDate", u"СНачалаЭтогоПолугодия"}, "IDS_STANDARD_PERIOD_THIS_HALF_YEAR_TO_DATE"),
    row(Period::nextHalfYearToDate, {halfYear, next, toDate},
        {u"NextHalfYearToDate", u"СледующееПолугодиеДоДаты"}, "IDS_STANDARD_PERIOD_NEXT_HALF_YEAR_TO_DATE"),
    row(Period::restOfThisHalfYear, {halfYear, current, rest},
        {u"RestOfThisHalfYear", u"ОстатокЭтогоПолугодия"}, "IDS_STANDARD_PERIOD_REST_OF_THIS_HALF_YEAR"),
    row(Period::lastYear, {year, last, whole}, {u"LastYear", u"ПрошлыйГод"}, "IDS_STANDARD_PERIOD_LAST_YEAR"),
    row(Period::thisYear, {year, current, whole}, {u"ThisYear", u"ЭтотГод"}, "IDS_STANDARD_PERIOD_THIS_YEAR"),
    row(Period::nextYear, {year, next, whole}, {u"NextYear", u"СледующийГод"},
        "IDS_STANDARD_PERIOD_NEXT_YEAR"),
    row(Period::lastYearToDate, {year, last, toDate}, {u"LastYearToDate", u"ПрошлыйГодДоДаты"},
        "IDS_STANDARD_PERIOD_LAST_YEAR_TO_DATE"),
    row(Period::thisYearToDate, {year, current, toDate}, {u"ThisYearToDate", u"СНачалаЭтогоГода"},
        "IDS_STANDARD_PERIOD_THIS_YEAR_TO_DATE"),
    row(Period::nextYearToDate, {year, next, toDate}, {u"NextYearToDate", u"СледующийГодДоДаты"},
        "IDS_STANDARD_PERIOD_NEXT_YEAR_TO_DATE"),
    row(Period::restOfThisYear, {year, current, rest}, {u"RestOfThisYear", u"ОстатокЭтогоГода"},
        "IDS_STANDARD_PERIOD_REST_OF_THIS_YEAR"),
    row(Period::last7Days, {sevenDays, last, whole}, {u"Last7Days", u"Последние7Дней"},
        "IDS_STANDARD_PERIOD_LAST_7_DAYS"),
    row(Period::next7Days, {sevenDays, next, whole}, {u"Next7Days", u"Следующие7Дней"},
        "IDS_STANDARD_PERIOD_NEXT_7_DAYS"),
};

inline constexpr StandardVariant<Beginning> kBeginnings[] = {
    row(Beginning::custom, {}, {u"Custom", u"Произвольная"}, "IDS_STANDARD_BEGINNING_CUSTOM"),
    row(Beginning::beginningOfLastDay, {day, last}, {u"BeginningOfLastDay", u"НачалоПрошлогоДня"},
        "IDS_STANDARD_BEGINNING_LAST_DAY"),
    row(Beginning::beginningOfThisDay, {day, current}, {u"BeginningOfThisDay", u"НачалоЭтогоДня"},
        "IDS_STANDARD_BEGINNING_THIS_DAY"),
    row(Beginning::beginningOfNextDay, {day, next}, {u"BeginningOfNextDay", u"НачалоСледующегоДня"},
        "IDS_STANDARD_BEGINNING_NEXT_DAY"),
    row(Beginning::beginningOfLastWeek, {week, last}, {u"BeginningOfLastWeek", u"НачалоПрошлойНедели"},
        "IDS_STANDARD_BEGINNING_LAST_WEEK"),
    row(Beginning::beginningOfThisWeek, {week, current}, {u"BeginningOfThisWeek", u"НачалоЭтойНедели"},
        "IDS_STANDARD_BEGINNING_THIS_WEEK"),
    row(Beginning::beginningOfNextWeek, {week, next}, {u"BeginningOfNextWeek", u"НачалоСледующейНедели"},
        "IDS_STANDARD_BEGINNING_NEXT_WEEK"),
    row(Beginning::beginningOfLastTenDays, {tenDays, last},
        {u"BeginningOfLastTenDays", u"НачалоПрошлойДекады"}, "IDS_STANDARD_BEGINNING_LAST_TEN_DAYS"),
    row(Beginning::beginningOfThisTenDays, {tenDays, current},
        {u"BeginningOfThisTenDays", u"НачалоЭтойДекады"}, "IDS_STANDARD_BEGINNING_THIS_TEN_DAYS"),
    row(Beginning::beginningOfNextTenDays, {tenDays, next},
        {u"BeginningOfNextTenDays", u"НачалоСледующейДекады"}, "IDS_STANDARD_BEGINNING_NEXT_TEN_DAYS"),
    row(Beginning::beginningOfLastMonth, {month, last}, {u"BeginningOfLastMonth", u"НачалоПрошлогоМесяца"},
        "IDS_STANDARD_BEGINNING_LAST_MONTH"),
    row(Beginning::beginningOfThisMonth, {month, current}, {u"BeginningOfThisMonth", u"НачалоЭтогоМесяца"},
        "IDS_STANDARD_BEGINNING_THIS_MONTH"),
    row(Beginning::beginningOfNextMonth, {month, next}, {u"BeginningOfNextMonth", u"НачалоСледующегоМесяца"},
        "IDS_STANDARD_BEGINNING_NEXT_MONTH"),
    row(Beginning::beginningOfLastQuarter, {quarter, last},
        {u"BeginningOfLastQuarter", u"НачалоПрошлогоКвартала"}, "IDS_STANDARD_BEGINNING_LAST_QUARTER"),
    row(Beginning::beginningOfThisQuarter, {quarter, current},
        {u"BeginningOfThisQuarter", u"НачалоЭтогоКвартала"}, "IDS_STANDARD_BEGINNING_THIS_QUARTER"),
    row(Beginning::beginningOfNextQuarter, {quarter, next},
        {u"BeginningOfNextQuarter", u"НачалоСледующегоКвартала"}, "IDS_STANDARD_BEGINNING_NEXT_QUARTER"),
    row(Beginning::beginningOfLastHalfYear, {halfYear, last},
        {u"BeginningOfLastHalfYear", u"НачалоПрошлогоПолугодия"}, "IDS_STANDARD_BEGINNING_LAST_HALF_YEAR"),
    row(Beginning::beginningOfThisHalfYear, {halfYear, current},
        {u"BeginningOfThisHalfYear", u"НачалоЭтогоПолугодия"}, "IDS_STANDARD_BEGINNING_THIS_HALF_YEAR"),
    row(Beginning::beginningOfNextHalfYear, {halfYear, next},
        {u"BeginningOfNextHalfYear", u"НачалоСледующегоПолугодия"}, "IDS_STANDARD_BEGINNING_NEXT_HALF_YEAR"),
    row(Beginning::beginningOfLastYear, {year, last}, {u"BeginningOfLastYear", u"НачалоПрошлогоГода"},
        "IDS_STANDARD_BEGINNING_LAST_YEAR"),
    row(Beginning::beginningOfThisYear, {year, current}, {u"BeginningOfThisYear", u"НачалоЭтогоГода"},
        "IDS_STANDARD_BEGINNING_THIS_YEAR"),
    row(Beginning::beginningOfNextYear, {year, next}, {u"BeginningOfNextYear", u"НачалоСледующегоГода"},
        "IDS_STANDARD_BEGINNING_NEXT_YEAR"),
};

/// Whether each variant stands at the place of its number, and no two of them mean the same.
template <class E, std::size_t count>
constexpr bool is_table(const StandardVariant<E> (&table)[count]) noexcept {
    for (std::size_t i = 0; i < count; ++i) {
        if (static_cast<std::size_t>(table[i].variant) != i)
            return false;
        for (std::size_t k = 0; k < i; ++k)
            if (table[k].rule == table[i].rule)
                return false;
    }
    return true;
}
/// How many variants of a table have a unit.
template <class E, std::size_t count>
constexpr std::size_t rows_of(const StandardVariant<E> (&table)[count], PeriodUnit unit) noexcept {
    std::size_t rows = 0;
    for (const StandardVariant<E>& row : table)
        rows += row.rule.unit == unit ? 1U : 0U;
    return rows;
}
/// Whether the units from the week to the year have the same variants each, as many as there are ways to
/// choose one.
template <class E, std::size_t count>
constexpr bool is_complete(const StandardVariant<E> (&table)[count], std::size_t ways) noexcept {
    for (auto unit = week; unit <= year; unit = static_cast<PeriodUnit>(static_cast<int>(unit) + 1))
        if (rows_of(table, unit) != ways)
            return false;
    return rows_of(table, day) == 3 && rows_of(table, given) == 1;
}
static_assert(is_table(kPeriods) && is_complete(kPeriods, 7) && rows_of(kPeriods, sevenDays) == 2);
static_assert(is_table(kBeginnings) && is_complete(kBeginnings, 3) && rows_of(kBeginnings, sevenDays) == 0);

} // namespace standard_table

/// Returns the variants of periods, by their numbers.
[[nodiscard]] constexpr const auto& variants_of(StandardPeriodVariant) noexcept {
    return standard_table::kPeriods;
}
/// Returns the variants of beginnings, by their numbers.
[[nodiscard]] constexpr const auto& variants_of(StandardBeginningDateVariant) noexcept {
    return standard_table::kBeginnings;
}

} // namespace core
