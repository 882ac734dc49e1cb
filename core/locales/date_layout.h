// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/locales/date_symbols.h"
#include "core/locales/digit_units.h"

#include <core/dates/date.h>
#include <core/locales/date_format.h>

#include <memory>
#include <optional>
#include <vector>

namespace core {

/// A piece of a pattern of dates: a text, or a part of a date as a number or a name.
struct DatePiece {
    wchar letter = 0;           ///< 0: a text
    std::size_t width = 0;      ///< how often the letter stands there
    bool exact = false;         ///< a digit follows, so that no digit may be missing
    wstring text;               ///< of letter 0
    std::vector<wstring> names; ///< empty: a number
    std::size_t offset = 0;     ///< of the letter in the pattern
};

/// A pattern of dates, made ready to write and to read.
struct DatePieces {
    std::vector<DatePiece> pieces;
    DigitUnits digits;

    /// Compiles the pattern of a format string. CtorException with the place of what makes no sense.
    [[nodiscard]] static DatePieces compile(wstring_view pattern, const Locale& locale);
    /// Compiles a pattern of the locale's own, whose letters and their order make sense.
    [[nodiscard]] static DatePieces compile(const LocalePattern& pattern, const Locale& locale);

    void append(const DatePieces& other);
    void append(wstring_view text);
    /// Writes a date behind `text`.
    void write(Date date, wstring& text) const;
    /// Takes a date off the front of `rest`. False, with `date` unchanged, when none of this pattern stands
    /// there or its parts contradict each other.
    [[nodiscard]] bool read(wstring_view& rest, Date& date) const;
};

/// A format string of dates.
struct DateLayout {
    DatePieces date;
    DatePieces time;
    DatePieces dateTime;
    DatePattern asked = DatePattern::dateTime; ///< what the format string has patterns for
    std::vector<DatePieces> others;            ///< what else is read where it has none
    std::optional<wstring> empty;              ///< the text of the empty date; none: as any other
};

/// What a format string has where it says nothing.
enum class DateDefaults {
    iso,    ///< 2004-03-01 13:05:07
    values, ///< that, or 01.03.2004 13:05:07 in a Russian locale
    users   ///< as people of the locale write
};

/// The layout of a format string. CtorException for a string that is malformed or makes no sense.
[[nodiscard]] std::shared_ptr<const DateLayout> date_layout(wstring_view format, const Locale& locale,
                                                            DateDefaults defaults);

/// Takes a date or a time of ISO 8601 off the front of `rest`: 2024-02-29, 2024-02-29T13:05:07.5+01:00,
/// 13:05. A time with a zone becomes that of the process's zone. False when none stands there.
[[nodiscard]] bool take_iso(wstring_view& rest, Date& date, DatePattern pattern);

} // namespace core
