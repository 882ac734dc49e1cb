// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/dates/calendar.h>
#include <core/dates/date_span.h>
#include <core/runtime/api.h>
#include <core/runtime/types.h>

#include <compare>
#include <cstdint>
#include <string>
#include <string_view>

namespace core {

/// A date of the proleptic Gregorian calendar with a time of day and without a time zone: the ticks since
/// 0001-01-01 00:00:00. A value type, ordered by its count; nothing here throws but for want of memory.
///
/// Count 0 is the empty date, and 0001-01-01 00:00:00 as well. Counts from kLimit on are out of range: every
/// part of them reads as 0, and every period they lie in begins and ends at the empty date.
class Date {
  public:
    /// 10000-01-01 00:00:00, the first count that is out of range.
    static constexpr std::uint64_t kLimit = std::uint64_t{calendar::kDayCount} * kTicksPerDay;

    constexpr Date() noexcept = default;
    explicit constexpr Date(std::uint64_t ticks) noexcept : ticks_(ticks) {}
    /// Parts for which isMoment() is false give the empty date.
    constexpr Date(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) noexcept;

    /// Whether the parts name a moment of the years 1 ... 9999; month 13, 30 February and hour 24 do not.
    [[nodiscard]] static constexpr bool isMoment(int year, int month, int day, int hour = 0, int minute = 0,
                                                 int second = 0) noexcept;
    /// The local time of this process by the library's clock, in whole seconds.
    [[nodiscard]] static CORE_API Date getCurrentDate();
    /// The last tick in range.
    [[nodiscard]] static constexpr Date largest() noexcept { return Date(kLimit - 1); }

    [[nodiscard]] constexpr std::uint64_t ticks() const noexcept { return ticks_; }
    [[nodiscard]] constexpr bool isEmpty() const noexcept { return ticks_ == 0; }
    [[nodiscard]] constexpr bool isInRange() const noexcept { return ticks_ < kLimit; }
    friend constexpr auto operator<=>(const Date&, const Date&) = default;

    // Parts.

    constexpr void split(int& year, int& month, int& day) const noexcept;
    constexpr void split(int& year, int& month, int& day, int& hour, int& minute, int& second) const noexcept;
    [[nodiscard]] constexpr int getYear() const noexcept { return civil().year; }
    [[nodiscard]] constexpr int getMonth() const noexcept { return civil().month; }
    [[nodiscard]] constexpr int getMonthDay() const noexcept { return civil().day; }
    [[nodiscard]] constexpr int getYearDay() const noexcept; ///< from 1
    [[nodiscard]] constexpr int getQuarter() const noexcept { return (getMonth() + 2) / 3; }
    [[nodiscard]] constexpr int getWeekDay() const noexcept;  ///< 1 Monday ... 7 Sunday
    [[nodiscard]] constexpr int getYearWeek() const noexcept; ///< ISO 8601: week 1 holds the first Thursday
    [[nodiscard]] constexpr int getHour() const noexcept { return timePart(kTicksPerHour, 24); }
    [[nodiscard]] constexpr int getMinute() const noexcept { return timePart(kTicksPerMinute, 60); }
    [[nodiscard]] constexpr int getSecond() const noexcept { return timePart(kTicksPerSecond, 60); }

    // Calendar.

    [[nodiscard]] static constexpr bool isLeapYear(int year) noexcept { return calendar::is_leap_year(year); }
    [[nodiscard]] static constexpr int daysPerMonth(int year, int month) noexcept {
        return calendar::days_per_month(year, month);
    }

    // Arithmetic changes the date itself. It stops at both ends of the range: past the last tick stands the
    // largest date, before the first the empty date.

    constexpr Date& operator+=(DateSpan span) noexcept;
    constexpr Date& operator-=(DateSpan span) noexcept;
    /// Keeps the time of day; a day that the month does not have becomes its last. Out of range: no effect.
    constexpr Date& addMonth(int months) noexcept;

    friend constexpr Date operator+(Date date, DateSpan span) noexcept { return date += span; }
    friend constexpr Date operator-(Date date, DateSpan span) noexcept { return date -= span; }
    friend constexpr DateSpan operator-(Date a, Date b) noexcept {
        return DateSpan(static_cast<std::int64_t>(a.ticks_ - b.ticks_));
    }

    // Periods. An end is the last whole second of the period.

    [[nodiscard]] constexpr Date begOfMinute() const noexcept { return begOf(kTicksPerMinute); }
    [[nodiscard]] constexpr Date endOfMinute() const noexcept { return endOf(kTicksPerMinute); }
    [[nodiscard]] constexpr Date begOfHour() const noexcept { return begOf(kTicksPerHour); }
    [[nodiscard]] constexpr Date endOfHour() const noexcept { return endOf(kTicksPerHour); }
    [[nodiscard]] constexpr Date begOfDay() const noexcept { return begOf(kTicksPerDay); }
    [[nodiscard]] constexpr Date endOfDay() const noexcept { return endOf(kTicksPerDay); }
    /// A week begins on the first day of the week that the process has set, or on the one given (1
    /// Monday ... 7 Sunday, anything else counts as Monday). A week that would begin before the first
    /// day begins at the empty date.
    [[nodiscard]] CORE_API Date begOfWeek() const noexcept;
    [[nodiscard]] constexpr Date begOfWeek(int firstDayOfWeek) const noexcept;
    /// Seven days less a second after the beginning, the largest date where that is out of range.
    [[nodiscard]] CORE_API Date endOfWeek() const noexcept;
    [[nodiscard]] constexpr Date endOfWeek(int firstDayOfWeek) const noexcept;
    [[nodiscard]] constexpr Date begOfMonth() const noexcept { return begOfMonths(1); }
    [[nodiscard]] constexpr Date endOfMonth() const noexcept { return endOfMonths(1); }
    [[nodiscard]] constexpr Date begOfQuart() const noexcept { return begOfMonths(3); }
    [[nodiscard]] constexpr Date endOfQuart() const noexcept { return endOfMonths(3); }
    [[nodiscard]] constexpr Date begOfYear() const noexcept { return begOfMonths(12); }
    [[nodiscard]] constexpr Date endOfYear() const noexcept { return endOfMonths(12); }

    /// \name Time zones
    /// A zone has the name that it would have in the variable TZ: a file of the system's zones
    /// ("Europe/Berlin", looked for in TZDIR where that is set), an absolute path of such a file, or a rule as
    /// in "CET-1CEST,M3.5.0,M10.5.0/3"; what the system has no file for is looked up in ICU's data. The empty
    /// name means the system's zone: TZ, else /etc/localtime. Zones are read once a process.
    /// The empty date and dates out of range stay as they are. All throw TimeZoneException for a name that is
    /// no zone.
    /// @{

    /// This universal time on the clocks of the process's zone.
    [[nodiscard]] CORE_API Date toLocalTime() const;
    /// This universal time on the clocks of `zone`.
    [[nodiscard]] CORE_API Date toLocalTime(const std::string& zone) const;
    /// The universal time at which the clocks of the process's zone show this date. A local time that a
    /// change of clocks skips is read by the offset before the change; one that occurs twice means its first
    /// occurrence.
    [[nodiscard]] CORE_API Date toUniversalTime() const;
    /// The same by the clocks of `zone`.
    [[nodiscard]] CORE_API Date toUniversalTime(const std::string& zone) const;
    /// Does nothing but throw for a name that is no zone: a program that checks its zone when it starts does
    /// not fail later.
    static CORE_API void checkTimeZone(const std::string& zone);
    /// @}

    // Text: fourteen digits, 20040301130507, and the XML form, 2004-03-01T13:05:07.
    // A reader skips white space in front, stores through `end` where it stopped, and gives the empty date,
    // with `end` at the start of the text, when no date in its form stands there.

    static constexpr std::size_t kTextLength = 14;
    static constexpr std::size_t kXMLTextLength = 19;
    [[nodiscard]] CORE_API wstring toString() const;
    [[nodiscard]] CORE_API wstring toXMLString() const;
    /// Write exactly kTextLength or kXMLTextLength characters, no terminator, and
    /// return the position after them.
    CORE_API wchar* toString(wchar* out) const noexcept;
    CORE_API char* toString(char* out) const noexcept;
    CORE_API wchar* toXMLString(wchar* out) const noexcept;
    CORE_API char* toXMLString(char* out) const noexcept;
    [[nodiscard]] static CORE_API Date fromString(wstring_view text, const wchar** end = nullptr) noexcept;
    [[nodiscard]] static CORE_API Date fromString(std::string_view text, const char** end = nullptr) noexcept;
    [[nodiscard]] static CORE_API Date fromXMLString(wstring_view text, const wchar** end = nullptr) noexcept;
    [[nodiscard]] static CORE_API Date fromXMLString(std::string_view text,
                                                     const char** end = nullptr) noexcept;

    /// The fourteen digits on a stream. A failed write sets the stream's bad bit.
    CORE_API wostream& toStream(wostream& stream) const;
    /// Skips white space and reads fourteen digits. False, with this date unchanged and the stream at the
    /// first character that does not fit, when they are not there or name no date.
    [[nodiscard]] CORE_API bool fromStream(wistream& stream);

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
