// SPDX-License-Identifier: Apache-2.0
#include "core/locales/date_layout.h"

#include <core/strings/char_class.h>

namespace core {
namespace {

/// Takes exactly `count` digits; -1 when they do not stand there.
int take_digits(wstring_view& rest, std::size_t count) noexcept {
    if (rest.size() < count)
        return -1;
    int number = 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (!is_ascii_digit(rest[i]))
            return -1;
        number = number * 10 + (rest[i] - u'0');
    }
    rest.remove_prefix(count);
    return number;
}

bool take_one_of(wstring_view& rest, wstring_view units) noexcept {
    if (rest.empty() || units.find(rest.front()) == wstring_view::npos)
        return false;
    rest.remove_prefix(1);
    return true;
}

bool take_day(wstring_view& rest, Date& date) noexcept {
    const int year = take_digits(rest, 4);
    const bool hasMonth = year >= 0 && take_one_of(rest, u"-");
    const int month = hasMonth ? take_digits(rest, 2) : -1;
    const bool hasDay = month >= 0 && take_one_of(rest, u"-");
    const int day = hasDay ? take_digits(rest, 2) : -1;
    if (day < 0 || !Date::isMoment(year, month, day))
        return false;
    date = Date(year, month, day);
    return rest.empty() || !is_ascii_digit(rest.front());
}

/// The digits behind the point; what a date cannot hold is cut off.
std::int64_t take_fraction(wstring_view& rest) noexcept {
    std::int64_t ticks = 0;
    for (std::int64_t unit = kTicksPerSecond / 10; !rest.empty() && is_ascii_digit(rest.front());
         unit /= 10) {
        ticks += (rest.front() - u'0') * unit;
        rest.remove_prefix(1);
    }
    return ticks;
}

/// Adds a time of day to `date`.
bool take_time(wstring_view& rest, Date& date) noexcept {
    const int hour = take_digits(rest, 2);
    const int minute = hour >= 0 && take_one_of(rest, u":") ? take_digits(rest, 2) : -1;
    if (minute < 0 || !Date::isMoment(1, 1, 1, hour, minute))
        return false;
    std::int64_t ticks = hour * kTicksPerHour + minute * kTicksPerMinute;
    wstring_view seconds = rest;
    if (take_one_of(seconds, u":")) {
        const int second = take_digits(seconds, 2);
        if (second < 0 || second > 59)
            return false;
        rest = seconds;
        ticks += second * kTicksPerSecond;
        if (rest.size() > 1 && is_ascii_digit(rest[1]) && take_one_of(rest, u".,"))
            ticks += take_fraction(rest);
    }
    date += DateSpan(ticks);
    return rest.empty() || !is_ascii_digit(rest.front());
}

/// Takes "Z", "+01:00", "+0100" or "+01", where one stands, and makes the time one of the process's zone.
bool take_zone(wstring_view& rest, Date& date) {
    if (take_one_of(rest, u"Zz")) {
        date = date.toLocalTime();
        return true;
    }
    wstring_view left = rest;
    const bool west = take_one_of(left, u"-\u2212");
    if (!west && !take_one_of(left, u"+"))
        return true;
    const int hours = take_digits(left, 2);
    const bool colon = take_one_of(left, u":");
    int minutes = take_digits(left, 2);
    if (minutes < 0 && !colon)
        minutes = 0;
    if (hours < 0 || hours > 23 || minutes < 0 || minutes > 59)
        return false;
    const DateSpan offset(hours * kTicksPerHour + minutes * kTicksPerMinute);
    const Date universal = west ? date + offset : date - offset;
    // At the ends of the calendar no such moment exists.
    if ((west ? universal - offset : universal + offset) != date)
        return false;
    date = universal.toLocalTime();
    rest = left;
    return true;
}

} // namespace

bool take_iso(wstring_view& rest, Date& date, DatePattern pattern) {
    wstring_view left = rest;
    Date read;
    if (pattern == DatePattern::time) {
        if (!take_time(left, read))
            return false;
    } else if (!take_day(left, read)) {
        return false;
    }
    wstring_view time = left;
    Date moment = read;
    if (pattern == DatePattern::dateTime && take_one_of(time, u"Tt ") && take_time(time, moment) &&
        take_zone(time, moment)) {
        left = time;
        read = moment;
    }
    rest = left;
    date = read;
    return true;
}

} // namespace core
