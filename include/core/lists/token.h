// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/guid.h>
#include <core/runtime/types.h>
#include <core/strings/integer_text.h>

#include <concepts>
#include <cstdint>
#include <istream>
#include <ostream>
#include <type_traits>

/// Single tokens of brace-list text on streams.
///
/// Writers write one token and return the stream; a stream that does not take it becomes bad.
/// Readers skip white space, read one token and return whether it was there. When it was not, the stream
/// stands at the first unit that did not fit. They neither throw nor touch the stream's state, except
/// for `float`. What a stream's buffer throws passes through.
namespace core {

/// The integers of brace lists: every built-in type that stands for a number.
template <class T>
concept ListInteger = TextInteger<T> && sizeof(T) <= sizeof(std::uint64_t);

/// Codes of characters: neither text nor numbers, so nothing writes them.
template <class T>
concept CharacterCode = std::integral<T> && !std::same_as<T, bool> && !ListInteger<T>;

/// The floating-point types of brace lists.
template <class T>
concept ListFloat = std::same_as<T, float> || std::same_as<T, double> || std::same_as<T, long double>;

namespace detail {

/// The type whose value is written for a `T`: plain `char` is a signed number on every platform.
template <ListInteger T>
using ListNumber = std::conditional_t<std::same_as<T, char>, signed char, T>;

/// Writes an integer by its sign and magnitude.
CORE_API wostream& put_integer(wostream& out, bool negative, std::uint64_t magnitude);
/// Reads an integer as its low 64 bits; 0 if none exists.
CORE_API bool get_integer(wistream& in, bool withSign, std::uint64_t& value);

} // namespace detail

// Structure

/// Writes "{".
CORE_API wostream& put_begin_of_list(wostream& out);
/// Writes "}".
CORE_API wostream& put_end_of_list(wostream& out);
/// Writes ",".
CORE_API wostream& put_comma(wostream& out);
/// Writes a line feed.
CORE_API wostream& put_new_line(wostream& out);

/// Consumes white space.
CORE_API void skip_spaces(wistream& in);
/// Skips white space and returns whether "{" comes next, which stays.
[[nodiscard]] CORE_API bool is_begin_of_list(wistream& in);
/// Skips white space and returns whether "}" comes next, which stays.
[[nodiscard]] CORE_API bool is_end_of_list(wistream& in);
/// Skips white space and returns whether "," comes next, which stays.
[[nodiscard]] CORE_API bool is_comma(wistream& in);
/// Skips white space and consumes "{" if it comes next; returns whether it did.
CORE_API bool get_begin_of_list(wistream& in);
/// Skips white space and consumes "}" if it comes next; returns whether it did.
CORE_API bool get_end_of_list(wistream& in);
/// Skips white space and consumes "," if it comes next; returns whether it did.
CORE_API bool get_comma(wistream& in);

// Writing

/// Writes a Boolean, "1" or "0".
template <std::same_as<bool> T>
wostream& to_stream(wostream& out, T value) {
    return detail::put_integer(out, false, value ? 1 : 0);
}
/// Writes an integer in decimal digits.
template <ListInteger T>
wostream& to_stream(wostream& out, T value) {
    const auto number = static_cast<detail::ListNumber<T>>(value);
    const bool negative = detail::is_negative(number);
    const auto bits = static_cast<std::uint64_t>(number);
    return detail::put_integer(out, negative, negative ? 0 - bits : bits);
}
/// Writes up to sixteen significant digits without trailing zeros; below 1 and with zeros before the point in
/// the form "1.2e2". Infinities and NaN set the fail bit and write nothing.
CORE_API wostream& to_stream(wostream& out, double value);
/// Writes the `double` of the same value.
inline wostream& to_stream(wostream& out, float value) {
    return to_stream(out, static_cast<double>(value));
}
/// Writes the nearest `double`.
inline wostream& to_stream(wostream& out, long double value) {
    return to_stream(out, static_cast<double>(value));
}
/// Writes 36 lowercase units, no braces.
CORE_API wostream& to_stream(wostream& out, const GUID& id);
/// Writes a string in quotes; quotes inside are doubled, surrogates and U+FFFF escaped.
CORE_API wostream& to_stream(wostream& out, wstring_view text);
/// Writes a string that ends before its null unit. A null pointer is the empty string.
CORE_API wostream& to_stream(wostream& out, const wchar* text);
/// Writes at most `length` units as a string, fewer when a null unit stands among them.
CORE_API wostream& to_stream(wostream& out, const wchar* text, std::uint32_t length);
/// Writes a string in quotes.
inline wostream& to_stream(wostream& out, const wstring& text) {
    return to_stream(out, wstring_view(text));
}
/// Writes what stands between the quotes of a string, or a piece of it, for tools that write strings in
/// pieces.
CORE_API wostream& put_characters(wostream& out, wstring_view text);

// Reading

/// Reads one unit, "0" or "1".
CORE_API bool from_stream(wistream& in, bool& value);
/// Reads decimal digits of any script, for signed types behind an optional sign. What does not fit wraps.
template <ListInteger T>
bool from_stream(wistream& in, T& value) {
    std::uint64_t bits = 0;
    const bool read = detail::get_integer(in, std::is_signed_v<detail::ListNumber<T>>, bits);
    value = static_cast<T>(bits);
    return read;
}
/// Reads up to 31 units. White space in front is a failure: the caller skips it.
CORE_API bool from_stream(wistream& in, double& value);
/// Reads as the stream's own extraction would: a sign of either kind, and any length. A failure sets the fail
/// bit.
CORE_API bool from_stream(wistream& in, float& value);
/// Reads 36 units with digits of either case, no braces. A failure gives the null id.
CORE_API bool from_stream(wistream& in, GUID& id);
/// Reads a string in quotes. A failure gives the empty string.
CORE_API bool from_stream(wistream& in, wstring& text);
/// Reads a string into a buffer of `size` units, one of which is the terminator's. A failure, a longer string
/// among them, leaves an empty string there.
CORE_API bool from_stream(wistream& in, wchar* buffer, std::uint32_t size);

// Characters of strings

/// Returns whether a unit is not a surrogate. Written text has none; strings escape them.
[[nodiscard]] constexpr bool is_allowed_char(wchar unit) noexcept {
    return unit < 0xD800 || unit > 0xDFFF;
}
/// Writes the four lowercase hexadecimal digits of a unit to `out`, without a terminator.
CORE_API void escape_char(wchar unit, wchar* out) noexcept;
/// Returns the unit that the four hexadecimal digits at `in` stand for; any unit when one of them is
/// another character.
[[nodiscard]] CORE_API wchar unescape_char(const wchar* in) noexcept;

} // namespace core
