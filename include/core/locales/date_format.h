// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/dates/date.h>
#include <core/runtime/api.h>
#include <core/runtime/locale.h>
#include <core/runtime/types.h>

#include <memory>

namespace core {

struct DateLayout; ///< private to the library

/// The standard patterns, by their numbers.
enum class DatePattern : int {
    asked = 0,   ///< the one that the format string has: the day, the time, or both where it has both or none
    date = 1,    ///< the day
    time = 2,    ///< the time of day
    dateTime = 4 ///< both
};

/// Dates as text for a user, by the proleptic Gregorian calendar in every locale. What is written reads back,
/// up to the parts that a pattern leaves out. A text whose parts contradict each other, as a wrong day of the
/// week, is not read.
///
/// A format string, in which each item stands once, under its English or its Russian name, may hold
///   locale=key         the locale of names, digits and forms
///   date=pattern       a pattern, or short, medium, long or full: a form of the locale's own
///   time=pattern       the same for the time of day; long and full are medium, since a date has no zone
///   datetime=pattern   the same for both (left out: the date and the time)
///   empty=text         the text of the empty date
/// as in "date=dd.MM.yyyy; time=HH:mm" or "locale=ru; date='d MMMM yyyy'".
///
/// In a pattern y or yyyy is the year with four digits, yy with two (69 is 1969, 68 is 2068); M, MM, MMM,
/// MMMM, MMMMM the month as a number, with two digits, abbreviated, in full, as one letter, and L… the same
/// as it stands alone (in Russian the nominative); d, dd the day; D, DDD the day of the year; E, EEEE, EEEEE,
/// EEEEEE the day of the week, c… the same as it stands alone; Q, QQ, QQQ, QQQQ the quarter, q… alone; w, ww
/// the ISO week and Y, YYYY its year; H, HH the hour 0 to 23, k 1 to 24, h 1 to 12, K 0 to 11; a the half of
/// the day, B its part; m, mm the minute; s, ss the second; S to SSSS the fraction of the second; G the era.
/// Each part stands once. Text stands between apostrophes, two of which are one apostrophe of the text;
/// characters other than Latin letters may stand alone: "date=d.M.yyyy 'at' H:mm". docs/formats.md shows
/// each.
///
/// A value type; one object may be used by many threads.
class DateFormat {
  public:
    /// Makes the format of a format string; where it says nothing, dates are 2004-03-01 13:05:07 and names
    /// English. Throws CtorException for a string that is malformed or makes no sense.
    CORE_API explicit DateFormat(wstring_view format = {});
    /// Makes the format of a format string as people of `locale` write, where the string names no other
    /// locale: the medium forms, and nothing for the empty date. Throws CtorException for a string that is
    /// malformed or makes no sense, and LocaleException for a locale without dates.
    CORE_API DateFormat(wstring_view format, const Locale& locale);
    /// Makes the format of a format string where it says nothing as the text of a Date value has it, which
    /// means one date everywhere: 2004-03-01 13:05:07, in a Russian locale 01.03.2004 13:05:07. Throws
    /// CtorException for a string that is malformed or makes no sense.
    [[nodiscard]] CORE_API static DateFormat ofValues(wstring_view format, const Locale& locale);

    /// Replaces `text`, whose capacity is used, by the date in a pattern. A date out of range has only zeros
    /// and no names. Throws std::bad_alloc alone.
    CORE_API void format(Date date, wstring& text, DatePattern pattern = DatePattern::dateTime) const;
    /// Returns the text that the other overload writes.
    [[nodiscard]] CORE_API wstring format(Date date, DatePattern pattern = DatePattern::dateTime) const;

    /// Reads a date in a pattern, white space in front allowed, and stores through `end` where it stopped. A
    /// number of two digits may have one; a part that the pattern leaves out is that of the empty date. Read
    /// as well is ISO 8601 (2004-03-01, 2004-03-01T13:05:07.5+01:00, whose time becomes that of the process's
    /// zone), and with DatePattern::asked, where the format string has no pattern, every form of the locale.
    /// What reads most of the text counts. False, with `date` unchanged and `end` at the start of the text,
    /// when no date stands there.
    [[nodiscard]] CORE_API bool parse(wstring_view text, Date& date, const wchar** end = nullptr,
                                      DatePattern pattern = DatePattern::dateTime) const;

  private:
    std::shared_ptr<const DateLayout> layout_; // never null
};

/// Returns the format that the settings of the calling thread's process ask for: that of the texts of dates,
/// 2004-03-01 13:05:07, in a Russian locale 01.03.2004 13:05:07. It is borrowed, for this thread, until it
/// asks again under other settings. Throws CtorException for a malformed format string in the settings.
[[nodiscard]] CORE_API const DateFormat& default_date_format();

} // namespace core
