// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/dates/calendar.h>
#include <core/runtime/api.h>
#include <core/runtime/types.h>

#include <compare>
#include <cstdint>
#include <string>
#include <string_view>

namespace core {

/// The ticks of a second: dates and spans count ticks of 1/10 000 of a second.
inline constexpr std::int64_t kTicksPerSecond = 10'000;
/// The ticks of a minute.
inline constexpr std::int64_t kTicksPerMinute = 60 * kTicksPerSecond;
/// The ticks of an hour.
inline constexpr std::int64_t kTicksPerHour = 60 * kTicksPerMinute;
/// The ticks of a day.
inline constexpr std::int64_t kTicksPerDay = 24 * kTicksPerHour;

/// The signed distance between two dates, in ticks: `DateSpan(3 * kTicksPerDay)`. A value type.
class DateSpan {
  public:
    /// Makes an empty span.
    constexpr DateSpan() noexcept = default;
    /// Makes a span of so many ticks.
    explicit constexpr DateSpan(std::int64_t ticks) noexcept : ticks_(ticks) {}

    /// Returns the number of ticks.
    [[nodiscard]] constexpr std::int64_t ticks() const noexcept { return ticks_; }
    friend constexpr auto operator<=>(const DateSpan&, const DateSpan&) = default;

  private:
    std::int64_t ticks_ = 0;
};

/// A date of the proleptic Gregorian calendar with a time of day and without a time zone: the ticks since
/// 0001-01-01 00:00:00. A value type, ordered by its count. Only what says so throws.
///
/// Count 0 is the empty date, and 0001-01-01 00:00:00 as well. Counts from kLimit on are out of range: every
/// part of them reads as 0, and every period they lie in begins and ends at the empty date.
class Date {
  public:
    /// 10000-01-01 00:00:00, the first count that is out of range.
    static constexpr std::uint64_t kLimit = std::uint64_t{calendar::kDayCount} * kTicksPerDay;

    /// Makes the empty date.
    constexpr Date() noexcept = default;
    /// Makes the date of that count.
    explicit constexpr Date(std::uint64_t ticks) noexcept : ticks_(ticks) {}
    /// Makes the date of these parts; parts for which isMoment() is false give the empty date.
    constexpr Date(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) noexcept;

    /// Returns whether the parts name a moment of the years 1 ... 9999; month 13, 30 February and hour 24 do
    /// not.
    [[nodiscard]] static constexpr bool isMoment(int year, int month, int day, int hour = 0, int minute = 0,
                                                 int second = 0) noexcept;
    /// Returns the time of the library's clock in the process's zone, in whole seconds. Throws as
    /// toLocalTime() does.
    [[nodiscard]] static CORE_API Date getCurrentDate();
    /// Returns the last tick in range.
    [[nodiscard]] static constexpr Date largest() noexcept { return Date(kLimit - 1); }

    /// Returns the ticks since 0001-01-01 00:00:00.
    [[nodiscard]] constexpr std::uint64_t ticks() const noexcept { return ticks_; }
    /// Returns whether this is the empty date.
    [[nodiscard]] constexpr bool isEmpty() const noexcept { return ticks_ == 0; }
    /// Returns whether the date lies in the years 1 ... 9999.
    [[nodiscard]] constexpr bool isInRange() const noexcept { return ticks_ < kLimit; }
    friend constexpr auto operator<=>(const Date&, const Date&) = default;

    /// \name Parts
    /// Each is 0 for a date that is out of range.
    /// @{

    /// Sets the year 1 ... 9999, the month 1 ... 12 and the day of the month 1 ... 31.
    constexpr void split(int& year, int& month, int& day) const noexcept;
    /// Sets these and the hour 0 ... 23, the minute and the second 0 ... 59.
    constexpr void split(int& year, int& month, int& day, int& hour, int& minute, int& second) const noexcept;
    /// Returns the year, 1 ... 9999.
    [[nodiscard]] constexpr int getYear() const noexcept { return civil().year; }
    /// Returns the month, 1 ... 12.
    [[nodiscard]] constexpr int getMonth() const noexcept { return civil().month; }
    /// Returns the day of the month, 1 ... 31.
    [[nodiscard]] constexpr int getMonthDay() const noexcept { return civil().day; }
    /// Returns the day of the year, 1 ... 366.
    [[nodiscard]] constexpr int getYearDay() const noexcept;
    /// Returns the quarter of the year, 1 ... 4.
    [[nodiscard]] constexpr int getQuarter() const noexcept { return (getMonth() + 2) / 3; }
    /// Returns the day of the week, 1 Monday ... 7 Sunday.
    [[nodiscard]] constexpr int getWeekDay() const noexcept;
    /// Returns the week of the year, 1 ... 53, by ISO 8601: week 1 holds the first Thursday.
    [[nodiscard]] constexpr int getYearWeek() const noexcept;
    /// Returns the hour, 0 ... 23.
    [[nodiscard]] constexpr int getHour() const noexcept { return timePart(kTicksPerHour, 24); }
    /// Returns the minute, 0 ... 59.
    [[nodiscard]] constexpr int getMinute() const noexcept { return timePart(kTicksPerMinute, 60); }
    /// Returns the second, 0 ... 59.
    [[nodiscard]] constexpr int getSecond() const noexcept { return timePart(kTicksPerSecond, 60); }
    /// @}

    /// \name Calendar
    /// @{

    /// Returns whether the year has 366 days; false for years before 1.
    [[nodiscard]] static constexpr bool isLeapYear(int year) noexcept { return calendar::is_leap_year(year); }
    /// Returns the number of days of a month, 0 for a month outside 1 ... 12.
    [[nodiscard]] static constexpr int daysPerMonth(int year, int month) noexcept {
        return calendar::days_per_month(year, month);
    }
    /// @}

    /// \name Arithmetic
    /// It changes the date itself, and stops at both ends of the range: past the last tick stands the largest
    /// date, before the first the empty date.
    /// @{

    /// Moves the date by a span.
    constexpr Date& operator+=(DateSpan span) noexcept;
    /// Moves the date back by a span.
    constexpr Date& operator-=(DateSpan span) noexcept;
    /// Moves the date by months and keeps the time of day; a day that the month does not have becomes its
    /// last. A date out of range stays as it is.
    constexpr Date& addMonth(int months) noexcept;

    friend constexpr Date operator+(Date date, DateSpan span) noexcept { return date += span; }
    friend constexpr Date operator-(Date date, DateSpan span) noexcept { return date -= span; }
    friend constexpr DateSpan operator-(Date a, Date b) noexcept {
        return DateSpan(static_cast<std::int64_t>(a.ticks_ - b.ticks_));
    }
    /// @}

    /// \name Periods
    /// The periods in which the date lies. An end is the last whole second of the period.
    /// @{

    /// Returns the first second of the minute.
    [[nodiscard]] constexpr Date begOfMinute() const noexcept { return begOf(kTicksPerMinute); }
    /// Returns the last second of the minute.
    [[nodiscard]] constexpr Date endOfMinute() const noexcept { return endOf(kTicksPerMinute); }
    /// Returns the first second of the hour.
    [[nodiscard]] constexpr Date begOfHour() const noexcept { return begOf(kTicksPerHour); }
    /// Returns the last second of the hour.
    [[nodiscard]] constexpr Date endOfHour() const noexcept { return endOf(kTicksPerHour); }
    /// Returns the first second of the day.
    [[nodiscard]] constexpr Date begOfDay() const noexcept { return begOf(kTicksPerDay); }
    /// Returns the last second of the day.
    [[nodiscard]] constexpr Date endOfDay() const noexcept { return endOf(kTicksPerDay); }
    /// Returns the first second of the week, which begins on the day that the process has set. A week that
    /// would begin before the first day begins at the empty date.
    [[nodiscard]] CORE_API Date begOfWeek() const noexcept;
    /// Returns the first second of the week that begins on `firstDayOfWeek`, 1 Monday ... 7 Sunday; anything
    /// else counts as Monday.
    [[nodiscard]] constexpr Date begOfWeek(int firstDayOfWeek) const noexcept;
    /// Returns the moment seven days less a second after begOfWeek(), the largest date where that is out of
    /// range.
    [[nodiscard]] CORE_API Date endOfWeek() const noexcept;
    /// Returns the same for a week that begins on `firstDayOfWeek`.
    [[nodiscard]] constexpr Date endOfWeek(int firstDayOfWeek) const noexcept;
    /// Returns the first second of the month.
    [[nodiscard]] constexpr Date begOfMonth() const noexcept { return begOfMonths(1); }
    /// Returns the last second of the month.
    [[nodiscard]] constexpr Date endOfMonth() const noexcept { return endOfMonths(1); }
    /// Returns the first second of the quarter.
    [[nodiscard]] constexpr Date begOfQuart() const noexcept { return begOfMonths(3); }
    /// Returns the last second of the quarter.
    [[nodiscard]] constexpr Date endOfQuart() const noexcept { return endOfMonths(3); }
    /// Returns the first second of the year.
    [[nodiscard]] constexpr Date begOfYear() const noexcept { return begOfMonths(12); }
    /// Returns the last second of the year.
    [[nodiscard]] constexpr Date endOfYear() const noexcept { return endOfMonths(12); }
    /// @}

    /// \name Time zones
    /// A zone has the name that it would have in the variable TZ: a file of the system's zones
    /// ("Europe/Berlin", looked for in TZDIR where that is set), an absolute path of such a file, or a rule
    /// as in "CET-1CEST,M3.5.0,M10.5.0/3"; what the system has no file for is looked up in ICU's data. The
    /// empty name means the system's zone: TZ, else /etc/localtime. Zones are read once a process. The empty
    /// date and dates out of range stay as they are. All throw TimeZoneException for an unknown name.
    /// @{

    /// Returns what the clocks of the process's zone show at this universal time.
    [[nodiscard]] CORE_API Date toLocalTime() const;
    /// Returns what the clocks of `zone` show at this universal time.
    [[nodiscard]] CORE_API Date toLocalTime(const std::string& zone) const;
    /// Returns the universal time at which the clocks of the process's zone show this date. A local time that
    /// a change of clocks skips is read by the offset before the change; one that occurs twice means its
    /// first occurrence.
    [[nodiscard]] CORE_API Date toUniversalTime() const;
    /// Returns the universal time at which the clocks of `zone` show this date, by the same rules.
    [[nodiscard]] CORE_API Date toUniversalTime(const std::string& zone) const;
    /// Throws TimeZoneException when no zone has this name; does nothing else. A program that checks its zone
    /// when it starts does not fail later.
    static CORE_API void checkTimeZone(const std::string& zone);
    /// @}

    /// \name Text
    /// Fourteen digits, 20040301130507, and the XML form, 2004-03-01T13:05:07. A reader skips white space in
    /// front, stores through `end`, when not null, the position where it stopped, and gives the empty date,
    /// with `end` at the start of the text, when no date in its form stands there.
    /// @{

    /// The characters of the fourteen digits.
    static constexpr std::size_t kTextLength = 14;
    /// The characters of the XML form.
    static constexpr std::size_t kXMLTextLength = 19;
    /// Returns the fourteen digits. Throws std::bad_alloc.
    [[nodiscard]] CORE_API wstring toString() const;
    /// Returns the XML form. Throws std::bad_alloc.
    [[nodiscard]] CORE_API wstring toXMLString() const;
    /// Writes kTextLength code units without a terminator and returns the position behind them.
    CORE_API wchar* toString(wchar* out) const noexcept;
    /// Writes kTextLength characters without a terminator and returns the position behind them.
    CORE_API char* toString(char* out) const noexcept;
    /// Writes kXMLTextLength code units without a terminator and returns the position behind them.
    CORE_API wchar* toXMLString(wchar* out) const noexcept;
    /// Writes kXMLTextLength characters without a terminator and returns the position behind them.
    CORE_API char* toXMLString(char* out) const noexcept;
    /// Reads the fourteen digits.
    [[nodiscard]] static CORE_API Date fromString(wstring_view text, const wchar** end = nullptr) noexcept;
    /// Reads the fourteen digits from bytes.
    [[nodiscard]] static CORE_API Date fromString(std::string_view text, const char** end = nullptr) noexcept;
    /// Reads the XML form.
    [[nodiscard]] static CORE_API Date fromXMLString(wstring_view text, const wchar** end = nullptr) noexcept;
    /// Reads the XML form from bytes.
    [[nodiscard]] static CORE_API Date fromXMLString(std::string_view text,
                                                     const char** end = nullptr) noexcept;

    /// Writes the fourteen digits to a stream and returns it. A failed write sets the stream's bad bit.
    CORE_API wostream& toStream(wostream& stream) const;
    /// Skips white space and reads fourteen digits. False, with this date unchanged and the stream at the
    /// first character that does not fit, when they are not there or name no date.
    [[nodiscard]] CORE_API bool fromStream(wistream& stream);
    /// @}

  private:
    [[nodiscard]] constexpr std::uint32_t dayNumber() const noexcept {
        return static_cast<std::uint32_t>(ticks_ / kTicksPerDay);
    }
    [[nodiscard]] constexpr std::uint32_t tickOfDay() const noexcept {
        return static_cast<std::uint32_t>(ticks_ % kTicksPerDay);
    }
    [[nodiscard]] constexpr calendar::Day civil() const noexcept {
        return isInRange() ? calendar::split_day(dayNumber()) : calendar::Day{};
    }
    [[nodiscard]] static constexpr std::uint64_t startOf(int year, int month, int day) noexcept {
        return calendar::day_number(year, month, day) * std::uint64_t{kTicksPerDay};
    }
    [[nodiscard]] constexpr int timePart(std::int64_t unit, std::uint32_t count) const noexcept {
        return isInRange() ? static_cast<int>(tickOfDay() / static_cast<std::uint32_t>(unit) % count) : 0;
    }
    [[nodiscard]] constexpr Date begOf(std::uint64_t unit) const noexcept {
        return isInRange() ? Date(ticks_ - ticks_ % unit) : Date();
    }
    [[nodiscard]] constexpr Date endOf(std::uint64_t unit) const noexcept {
        return isInRange() ? Date(ticks_ - ticks_ % unit + unit - kTicksPerSecond) : Date();
    }
    [[nodiscard]] constexpr Date begOfMonths(int count) const noexcept;
    [[nodiscard]] constexpr Date endOfMonths(int count) const noexcept;
    constexpr Date& add(std::uint64_t ticks) noexcept;
    constexpr Date& subtract(std::uint64_t ticks) noexcept;

    std::uint64_t ticks_ = 0;
};

} // namespace core

#include <core/dates/date_inline.h>
