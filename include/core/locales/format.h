// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/dates/date.h>
#include <core/numbers/numeric.h>
#include <core/runtime/api.h>
#include <core/runtime/types.h>

#include <optional>

/// Texts for users by a format string, and back. Where the string names no locale, that of the calling
/// thread's process counts. Each thread keeps the formats that it used last. All functions throw
/// CtorException for a format string that is malformed or makes no sense, and LocaleException for a locale
/// of the process that has no numbers or dates.
namespace core {

/// Returns the text of a number (NumericFormat says which items a format string may have).
[[nodiscard]] CORE_API wstring format_number(const Numeric& number, wstring_view format = {});
/// Returns the text of a date (DateFormat says which items a format string may have). A string with a pattern
/// of the day alone gives the day alone, one with a pattern of the time the time.
[[nodiscard]] CORE_API wstring format_date(Date date, wstring_view format = {});
/// Returns the word for a Boolean (BoolFormat says which items a format string may have).
[[nodiscard]] CORE_API wstring format_bool(bool value, wstring_view format = {});
/// Returns the text where there is no value, the item `empty` of the format string of any kind of value; an
/// empty text where it has none.
[[nodiscard]] CORE_API wstring format_nothing(wstring_view format);

/// Returns the number that a whole text is, white space around it allowed; none for any other text.
[[nodiscard]] CORE_API std::optional<Numeric> parse_number(wstring_view text, wstring_view format = {});
/// Returns the date that a whole text is, white space around it allowed; none for any other text. Without a
/// pattern in the format string every form of the locale is read, and ISO 8601 always.
[[nodiscard]] CORE_API std::optional<Date> parse_date(wstring_view text, wstring_view format = {});

} // namespace core
