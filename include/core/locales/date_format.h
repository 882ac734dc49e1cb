// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/dates/date.h>
#include <core/runtime/api.h>
#include <core/runtime/locale.h>
#include <core/runtime/types.h>

#include <cstddef>
#include <vector>

namespace core {

/// The standard patterns, by their numbers.
enum class DatePattern : int {
    date = 1,    ///< the day
    time = 2,    ///< the time of day
    dateTime = 4 ///< both
};

/// Dates as text for a user: 2004-03-01 13:05:07, in a Russian locale 01.03.2004 13:05:07. What is written
/// reads back, up to the parts that a pattern leaves out.
///
/// A format string may hold a pattern for each of
///   date=pattern   time=pattern   datetime=pattern   (left out: the date, a blank and the time)
/// as in "date=dd.MM.yyyy; time=HH:mm". In a pattern yyyy, MM, dd, HH, mm and ss stand for the parts with
/// leading zeros, M, d, H, m and s for those without, each at most once. Text stands between apostrophes, two
/// of which are one apostrophe of the text; characters other than Latin letters may stand alone:
/// "date=d.M.yyyy 'at' H:mm". All other Latin letters are refused, so that they can get a meaning later. A
/// pattern has at least one part. A value type; one object may be used by many threads.
class DateFormat {
  public:
    /// Makes the format of a format string, with the patterns of `locale` where it gives none. Throws
    /// CtorException for a malformed string.
    CORE_API explicit DateFormat(wstring_view format = {}, const Locale& locale = Locale());

    /// Replaces `text`, whose capacity is used, by the date in a pattern. A date out of range has only zeros.
    /// Throws std::bad_alloc alone.
    CORE_API void format(Date date, wstring& text, DatePattern pattern = DatePattern::dateTime) const;
    /// Returns the text that the other overload writes.
    [[nodiscard]] CORE_API wstring format(Date date, DatePattern pattern = DatePattern::dateTime) const;

    /// Reads a date in a pattern, white space in front allowed, and stores through `end` where it
    /// stopped. A part other than the year may have one digit or two; a part that the pattern leaves out is
    /// that of the empty date. False, with `date` unchanged and `end` at the start of the text, when no
    /// date of that pattern stands there.
    [[nodiscard]] CORE_API bool parse(wstring_view text, Date& date, const wchar** end = nullptr,
                                      DatePattern pattern = DatePattern::dateTime) const;

  private:
    /// A part of a date, by its index and its least number of digits, or a text.
    struct Piece {
        std::size_t part;
        std::size_t width; ///< 0: a text
        wstring text;
    };
    using Pattern = std::vector<Piece>;

    [[nodiscard]] static Pattern compile(wstring_view pattern);
    [[nodiscard]] static bool take(wstring_view& rest, const Pattern& pattern, int* parts) noexcept;
    [[nodiscard]] const Pattern& pattern(DatePattern number) const noexcept;

    Pattern date_;
    Pattern time_;
    Pattern dateTime_;
};

/// Returns the format that the settings of the calling thread's process ask for. It is borrowed, for this
/// thread, until it asks again under other settings. Throws CtorException for a malformed format
/// string in the settings.
[[nodiscard]] CORE_API const DateFormat& default_date_format();

} // namespace core
