// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/dates/date.h>
#include <core/runtime/api.h>
#include <core/runtime/locale.h>
#include <core/runtime/types.h>

namespace core {

/// The standard patterns, by their numbers.
enum class DatePattern : int { date = 1, time = 2, dateTime = 4 };

/// Dates as text for a user: 2004-03-01 13:05:07, in a Russian locale 01.03.2004 13:05:07. What is written
/// reads back, up to the parts that a pattern leaves out.
///
/// A format string may hold a pattern for each of
///   date=pattern   time=pattern   datetime=pattern   (left out: the date, a blank and the time)
/// as in "date=dd.MM.yyyy; time=HH:mm". In a pattern yyyy, MM, dd, HH, mm and ss stand for the parts with
/// leading zeros, M, d, H, m and s for those without, each at most once; everything else stands for itself. A
/// value type; one object may be used by many threads.
class DateFormat {
  public:
    /// CtorException for a malformed format string.
    CORE_API explicit DateFormat(wstring_view format = {}, const Locale& locale = Locale());

    /// Replaces `text`, whose capacity is used. A date out of range has only zeros.
    CORE_API void format(Date date, wstring& text, DatePattern pattern = DatePattern::dateTime) const;
    [[nodiscard]] CORE_API wstring format(Date date, DatePattern pattern = DatePattern::dateTime) const;

    /// Reads a date in a pattern, white space in front allowed, and stores through `end` where it
    /// stopped. A part but the year may have one digit or two; a part that the pattern leaves out is
    /// that of the empty date. False, with `date` unchanged and `end` at the start of the text, when no
    /// date of that pattern stands there.
    [[nodiscard]] CORE_API bool parse(wstring_view text, Date& date, const wchar** end = nullptr,
                                      DatePattern pattern = DatePattern::dateTime) const;

  private:
    [[nodiscard]] const wstring& pattern(DatePattern number) const noexcept;

    wstring date_;
    wstring time_;
    wstring dateTime_;
};

/// The format that the settings of the calling thread's process ask for. The reference is for
/// this thread and holds until it asks again under other settings. CtorException for a malformed
/// format string in the settings.
[[nodiscard]] CORE_API const DateFormat& default_date_format();

} // namespace core
