// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/numbers/numeric.h>
#include <core/runtime/api.h>
#include <core/runtime/locale.h>
#include <core/runtime/types.h>

#include <memory>

namespace core {

struct NumericLayout; ///< private to the library

/// Numbers as text for a user. What is written reads back, up to the digits that the format rounds off, and
/// nothing else is read: "1.234,5" is a number in German and none in Russian.
///
/// The plain form has all digits, "." before the fraction, "-" in front, no grouping. A format string, in
/// which each item stands once, under its English or its Russian name, may hold
///   locale=key       the locale whose digits, separators, groups and signs are used
///   fraction=N       the digits after the point, rounded in the process's mode: "2" exactly two, "..2" at
///                    most, "2.." at least, "1..3"; up to 1000
///   digits=N         the digits that count, in the same way; in place of fraction
///   whole=N          the least digits before the point, filled with zeros
///   point=text       what stands before the fraction
///   group=text       what stands between groups; empty: no groups
///   grouping=N,M     the digits of the last group and of the others; "3" both, "0" no groups
///   sign=form        before, behind or brackets
///   scale=S          a power of ten by which the number is divided ("1000": thousands), or "percent"
///   zero=text        the text of zero, and of what rounds to it; not that of another number
///   negative=text    the text of negative numbers, with "#" where the digits stand; without "#" such a
///                    number does not read back
///   empty=text       the text where there is no value
/// as in "locale=de; fraction=2". docs/formats.md shows each. A value type; one object may be used by many
/// threads.
class NumericFormat {
  public:
    /// Makes the plain form.
    NumericFormat() noexcept = default;
    /// Makes the format of a format string, which is plain in what the string leaves out. Throws
    /// CtorException for a string that is malformed or makes no sense, and std::bad_alloc.
    CORE_API explicit NumericFormat(wstring_view format);
    /// Makes the format of a format string as people of `locale` write, where the string names no other.
    /// Throws CtorException for a string that is malformed or makes no sense, LocaleException for a locale
    /// without numbers, and std::bad_alloc.
    CORE_API NumericFormat(wstring_view format, const Locale& locale);

    /// Replaces `text`, whose capacity is used, by the number. Throws std::bad_alloc.
    CORE_API void format(const Numeric& number, wstring& text) const;
    /// Returns the text of the number. Throws std::bad_alloc.
    [[nodiscard]] CORE_API wstring format(const Numeric& number) const;

    /// Reads as much of `text` as this format could have written, white space in front allowed, and stores
    /// through `end` where it stopped. Groups may be left out; a blank between them may be a plain, a
    /// no-break or a narrow one; digits and minus may be those of ASCII. False, with `number` unchanged and
    /// `end` at the start of the text, when no number stands there. Throws std::bad_alloc.
    [[nodiscard]] CORE_API bool parse(wstring_view text, Numeric& number, const wchar** end = nullptr) const;

  private:
    std::shared_ptr<const NumericLayout> layout_; // null: the plain form
};

/// Returns the format that the settings of the calling thread's process ask for. It is borrowed, for this
/// thread, until it asks again under other settings. Throws CtorException for a malformed format
/// string in the settings.
[[nodiscard]] CORE_API const NumericFormat& default_numeric_format();

} // namespace core
