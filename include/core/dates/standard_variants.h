// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The variants of standard periods and of their beginnings. The numbers are stored and never change.
namespace core {

/// Which period is meant, seen from a given day, as a rule today. Ten days are the 1st to the 10th of a
/// month, the 11th to the 20th, and the 21st to its end; half-years begin in January and July.
enum class StandardPeriodVariant : int {
    custom = 0,              ///< two dates that are given
    yesterday = 1,           ///< the day before the given one
    today = 2,               ///< the given day
    tomorrow = 3,            ///< the day behind the given one
    lastWeek = 4,            ///< the week before that of the day
    thisWeek = 5,            ///< the week in which the day lies
    nextWeek = 6,            ///< the week behind that of the day
    lastWeekToDate = 7,      ///< the last week, up to the day that corresponds
    thisWeekToDate = 8,      ///< from the beginning of this week up to the day
    nextWeekToDate = 9,      ///< the next week, up to the day that corresponds
    restOfThisWeek = 10,     ///< from the day up to the end of this week
    lastTenDays = 11,        ///< the ten days before that of the day
    thisTenDays = 12,        ///< the ten days in which the day lies
    nextTenDays = 13,        ///< the ten days behind that of the day
    lastTenDaysToDate = 14,  ///< the last ten days, up to the day that corresponds
    thisTenDaysToDate = 15,  ///< from the beginning of these ten days up to the day
    nextTenDaysToDate = 16,  ///< the next ten days, up to the day that corresponds
    restOfThisTenDays = 17,  ///< from the day up to the end of these ten days
    lastMonth = 18,          ///< the month before that of the day
    thisMonth = 19,          ///< the month in which the day lies
    nextMonth = 20,          ///< the month behind that of the day
    lastMonthToDate = 21,    ///< the last month, up to the day that corresponds
    thisMonthToDate = 22,    ///< from the beginning of this month up to the day
    nextMonthToDate = 23,    ///< the next month, up to the day that corresponds
    restOfThisMonth = 24,    ///< from the day up to the end of this month
    lastQuarter = 25,        ///< the quarter before that of the day
    thisQuarter = 26,        ///< the quarter in which the day lies
    nextQuarter = 27,        ///< the quarter behind that of the day
    lastQuarterToDate = 28,  ///< the last quarter, up to the day that corresponds
    thisQuarterToDate = 29,  ///< from the beginning of this quarter up to the day
    nextQuarterToDate = 30,  ///< the next quarter, up to the day that corresponds
    restOfThisQuarter = 31,  ///< from the day up to the end of this quarter
    lastHalfYear = 32,       ///< the half-year before that of the day
    thisHalfYear = 33,       ///< the half-year in which the day lies
    nextHalfYear = 34,       ///< the half-year behind that of the day
    lastHalfYearToDate = 35, ///< the last half-year, up to the day that corresponds
    thisHalfYearToDate = 36, ///< from the beginning of this half-year up to the day
    nextHalfYearToDate = 37, ///< the next half-year, up to the day that corresponds
    restOfThisHalfYear = 38, ///< from the day up to the end of this half-year
    lastYear = 39,           ///< the year before that of the day
    thisYear = 40,           ///< the year in which the day lies
    nextYear = 41,           ///< the year behind that of the day
    lastYearToDate = 42,     ///< the last year, up to the day that corresponds
    thisYearToDate = 43,     ///< from the beginning of this year up to the day
    nextYearToDate = 44,     ///< the next year, up to the day that corresponds
    restOfThisYear = 45,     ///< from the day up to the end of this year
    last7Days = 46,          ///< seven days, of which the given one is the last
    next7Days = 47,          ///< seven days, of which the given one is the first
};

/// Which date is meant, seen from a given day, as a rule today: the first second of a period.
enum class StandardBeginningDateVariant : int {
    custom = 0,                   ///< a date that is given
    beginningOfLastDay = 1,       ///< the beginning of the last day
    beginningOfThisDay = 2,       ///< the beginning of this day
    beginningOfNextDay = 3,       ///< the beginning of the next day
    beginningOfLastWeek = 4,      ///< the beginning of the last week
    beginningOfThisWeek = 5,      ///< the beginning of this week
    beginningOfNextWeek = 6,      ///< the beginning of the next week
    beginningOfLastTenDays = 7,   ///< the beginning of the last ten days
    beginningOfThisTenDays = 8,   ///< the beginning of these ten days
    beginningOfNextTenDays = 9,   ///< the beginning of the next ten days
    beginningOfLastMonth = 10,    ///< the beginning of the last month
    beginningOfThisMonth = 11,    ///< the beginning of this month
    beginningOfNextMonth = 12,    ///< the beginning of the next month
    beginningOfLastQuarter = 13,  ///< the beginning of the last quarter
    beginningOfThisQuarter = 14,  ///< the beginning of this quarter
    beginningOfNextQuarter = 15,  ///< the beginning of the next quarter
    beginningOfLastHalfYear = 16, ///< the beginning of the last half-year
    beginningOfThisHalfYear = 17, ///< the beginning of this half-year
    beginningOfNextHalfYear = 18, ///< the beginning of the next half-year
    beginningOfLastYear = 19,     ///< the beginning of the last year
    beginningOfThisYear = 20,     ///< the beginning of this year
    beginningOfNextYear = 21,     ///< the beginning of the next year
};

} // namespace core
