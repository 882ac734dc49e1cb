// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/dates/date.h>

/// The constexpr bodies of Date, apart from its interface.
namespace core {

constexpr bool Date::isMoment(int year, int month, int day, int hour, int minute, int second) noexcept {
    const auto within = [](int part, int count) { return part >= 0 && part < count; };
    return year >= 1 && year <= 9999 && day >= 1 && day <= calendar::days_per_month(year, month) &&
           within(hour, 24) && within(minute, 60) && within(second, 60);
}

constexpr Date::Date(int year, int month, int day, int hour, int minute, int second) noexcept {
    if (!isMoment(year, month, day, hour, minute, second))
        return;
    const int seconds = (hour * 60 + minute) * 60 + second;
    ticks_ = startOf(year, month, day) + static_cast<std::uint64_t>(seconds) * kTicksPerSecond;
}

constexpr void Date::split(int& year, int& month, int& day) const noexcept {
    const calendar::Day parts = civil();
    year = parts.year;
    month = parts.month;
    day = parts.day;
}

constexpr void Date::split(int& year, int& month, int& day, int& hour, int& minute,
                           int& second) const noexcept {
    split(year, month, day);
    const int time = isInRange() ? static_cast<int>(tickOfDay() / kTicksPerSecond) : 0;
    hour = time / 3600;
    minute = time / 60 % 60;
    second = time % 60;
}

constexpr int Date::getYearDay() const noexcept {
    return isInRange() ? static_cast<int>(dayNumber() - calendar::day_number(getYear(), 1, 1)) + 1 : 0;
}

constexpr int Date::getWeekDay() const noexcept {
    return isInRange() ? calendar::week_day(dayNumber()) : 0;
}

constexpr int Date::getYearWeek() const noexcept {
    if (!isInRange())
        return 0;
    // A week belongs to the year of its Thursday; the range begins with a Monday and ends with a Friday, so
    // the Thursday of every week in it is in range too.
    const std::uint32_t thursday = dayNumber() - dayNumber() % 7 + 3;
    const int year = calendar::split_day(thursday).year;
    return static_cast<int>((thursday - calendar::day_number(year, 1, 1)) / 7) + 1;
}

constexpr Date& Date::add(std::uint64_t ticks) noexcept {
    *this = isInRange() && ticks < kLimit - ticks_ ? Date(ticks_ + ticks) : largest();
    return *this;
}

constexpr Date& Date::subtract(std::uint64_t ticks) noexcept {
    ticks_ = ticks < ticks_ ? ticks_ - ticks : 0;
    return *this;
}

constexpr Date& Date::operator+=(DateSpan span) noexcept {
    // The magnitude is taken in unsigned arithmetic: the most negative span has one too.
    const auto ticks = static_cast<std::uint64_t>(span.ticks());
    return span.ticks() >= 0 ? add(ticks) : subtract(0 - ticks);
}

constexpr Date& Date::operator-=(DateSpan span) noexcept {
    const auto ticks = static_cast<std::uint64_t>(span.ticks());
    return span.ticks() >= 0 ? subtract(ticks) : add(0 - ticks);
}

constexpr Date& Date::addMonth(int months) noexcept {
    if (!isInRange())
        return *this;
    const calendar::Day from = civil();
    const std::int64_t target = std::int64_t{from.year - 1} * 12 + from.month - 1 + months;
    if (target < 0)
        return *this = Date();
    if (target >= std::int64_t{9999} * 12)
        return *this = largest();
    const int year = static_cast<int>(target / 12) + 1;
    const int month = static_cast<int>(target % 12) + 1;
    const int last = calendar::days_per_month(year, month);
    ticks_ = startOf(year, month, from.day < last ? from.day : last) + tickOfDay();
    return *this;
}

constexpr Date Date::begOfMonths(int count) const noexcept {
    if (!isInRange())
        return Date();
    const calendar::Day parts = civil();
    return Date(startOf(parts.year, parts.month - (parts.month - 1) % count, 1));
}

constexpr Date Date::endOfMonths(int count) const noexcept {
    if (!isInRange())
        return Date();
    const calendar::Day parts = civil();
    const int next = parts.month - (parts.month - 1) % count + count;
    const std::uint64_t limit = next > 12 ? startOf(parts.year + 1, 1, 1) : startOf(parts.year, next, 1);
    return Date(limit - kTicksPerSecond);
}

constexpr Date Date::begOfWeek(int firstDayOfWeek) const noexcept {
    if (!isInRange())
        return Date();
    const int first = firstDayOfWeek >= 1 && firstDayOfWeek <= 7 ? firstDayOfWeek : 1;
    const auto back = static_cast<std::uint32_t>(getWeekDay() - first + 7) % 7;
    return back <= dayNumber() ? Date((dayNumber() - back) * std::uint64_t{kTicksPerDay}) : Date();
}

constexpr Date Date::endOfWeek(int firstDayOfWeek) const noexcept {
    return isInRange() ? begOfWeek(firstDayOfWeek) + DateSpan(7 * kTicksPerDay - kTicksPerSecond) : Date();
}

} // namespace core
