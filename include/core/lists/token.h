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
/// Writers write one token and return the stream; a stream that does not take it is marked bad.
/// Readers skip white space, read one token and return whether it was there. When it was not, the stream
/// stands at the first character that did not fit. They neither throw nor touch the stream's state, except
/// for `float`; but what a stream's buffer throws passes through.
namespace core {

/// The integers of brace lists: every built-in type that stands for a number.
template <class T>
concept ListInteger = TextInteger<T> && sizeof(T) <= sizeof(std::uint64_t);

/// Codes of characters: neither text nor numbers, so nothing writes them.
template <class T>
concept CharacterCode = std::integral<T> && !std::same_as<T, bool> && !ListInteger<T>;

template <class T>
concept ListFloat = std::same_as<T, float> || std::same_as<T, double> || std::same_as<T, long double>;

namespace detail {

/// Plain `char` is a signed number on every platform.
template <ListInteger T>
using ListNumber = std::conditional_t<std::same_as<T, char>, signed char, T>;

CORE_API wostream& put_integer(wostream& out, bool negative, std::uint64_t magnitude);
CORE_API bool get_integer(wistream& in, bool withSign, std::uint64_t& value);

} // namespace detail

// Structure

CORE_API wostream& put_begin_of_list(wostream& out);
CORE_API wostream& put_end_of_list(wostream& out);
CORE_API wostream& put_comma(wostream& out);
CORE_API wostream& put_new_line(wostream& out);

/// Consumes white space.
CORE_API void skip_spaces(wistream& in);
/// Skip white space, then tell whether that character comes next, which stays.
[[nodiscard]] CORE_API bool is_begin_of_list(wistream& in);
[[nodiscard]] CORE_API bool is_end_of_list(wistream& in);
[[nodiscard]] CORE_API bool is_comma(wistream& in);
/// The same, but consume that character.
CORE_API bool get_begin_of_list(wistream& in);
CORE_API bool get_end_of_list(wistream& in);
CORE_API bool get_comma(wistream& in);

// Writing

template <std::same_as<bool> T>
wostream& to_stream(wostream& out, T value) {
    return detail::put_integer(out, false, value ? 1 : 0);
}
template <ListInteger T>
wostream& to_stream(wostream& out, T value) {
    const auto number = static_cast<detail::ListNumber<T>>(value);
    const bool negative = detail::is_negative(number);
    const auto bits = static_cast<std::uint64_t>(number);
    return detail::put_integer(out, negative, negative ? 0 - bits : bits);
}
/// Sixteen significant digits without trailing zeros; below 1 and with zeros before the point in the form
/// "1.2e2". Infinities and NaN set the fail bit and write nothing.
CORE_API wostream& to_stream(wostream& out, double value);
inline wostream& to_stream(wostream& out, float value) {
    return to_stream(out, static_cast<double>(value));
}
inline wostream& to_stream(wostream& out, long double value) {
    return to_stream(out, static_cast<double>(value));
}
/// 36 lowercase characters, no braces.
CORE_API wostream& to_stream(wostream& out, const GUID& id);
/// In quotes; quotes inside doubled, surrogates escaped.
CORE_API wostream& to_stream(wostream& out, wstring_view text);
/// The same, up to the null unit; a null pointer is the empty string.
CORE_API wostream& to_stream(wostream& out, const wchar* text);
/// At most `length` units, fewer when a null unit stands among them.
CORE_API wostream& to_stream(wostream& out, const wchar* text, std::uint32_t length);
inline wostream& to_stream(wostream& out, const wstring& text) {
    return to_stream(out, wstring_view(text));
}

// Reading

/// One character, "0" or "1".
CORE_API bool from_stream(wistream& in, bool& value);
/// Decimal digits of any script, for signed types behind an optional sign. What does not fit wraps.
template <ListInteger T>
bool from_stream(wistream& in, T& value) {
    std::uint64_t bits = 0;
    const bool read = detail::get_integer(in, std::is_signed_v<detail::ListNumber<T>>, bits);
    value = static_cast<T>(bits);
    return read;
}
/// Up to 31 characters. White space in front is a failure: the caller skips it.
CORE_API bool from_stream(wistream& in, double& value);
/// As the stream's own extraction would: a sign of either kind, and any length. A failure sets the fail bit.
CORE_API bool from_stream(wistream& in, float& value);
/// 36 characters of either case, no braces; a failure gives the null id.
CORE_API bool from_stream(wistream& in, GUID& id);
/// A quoted string; a failure gives the empty one.
CORE_API bool from_stream(wistream& in, wstring& text);
/// The same into a buffer of `size` units, the last of which is the terminator's; a failure, a string that is
/// too long among them, leaves an empty string there.
CORE_API bool from_stream(wistream& in, wchar* buffer, std::uint32_t size);

// Characters of strings

/// Whether a unit may stand in the text as it is. Surrogates may not.
[[nodiscard]] constexpr bool is_allowed_char(wchar unit) noexcept {
    return unit < 0xD800 || unit > 0xDFFF;
}
/// Writes the four lowercase hexadecimal digits of a unit, no terminator.
CORE_API void escape_char(wchar unit, wchar* out) noexcept;
/// The unit that four hexadecimal digits stand for. `in` points to four units; when one of them is no digit,
/// the unit is any.
[[nodiscard]] CORE_API wchar unescape_char(const wchar* in) noexcept;

} // namespace core
