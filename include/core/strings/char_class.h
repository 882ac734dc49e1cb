// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/types.h>

/// Classes of single code units, as Unicode has them. A surrogate belongs to none. A `char` above 0x7F is a
/// part of a character and belongs to none either. All functions are safe on any thread.
namespace core {

/// Tells whether `c` is white space of ASCII, the separators 0x1C to 0x1F included.
[[nodiscard]] constexpr bool is_space(char c) noexcept {
    return c == ' ' || (c >= '\t' && c <= '\r') || (c >= '\x1C' && c <= '\x1F');
}
/// Tells whether `c` is a letter of ASCII.
[[nodiscard]] constexpr bool is_alpha(char c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
/// Tells whether `c` is a decimal digit of ASCII.
[[nodiscard]] constexpr bool is_digit(char c) noexcept {
    return c >= '0' && c <= '9';
}
/// Tells whether `c` is a letter or a decimal digit of ASCII.
[[nodiscard]] constexpr bool is_alnum(char c) noexcept {
    return is_alpha(c) || is_digit(c);
}
/// Returns the value of a decimal digit of ASCII, 0 to 9; -1 for anything else.
[[nodiscard]] constexpr int digit(char c) noexcept {
    return is_digit(c) ? c - '0' : -1;
}

namespace detail {
CORE_API bool is_wide_space(wchar c) noexcept;
CORE_API bool is_wide_alpha(wchar c) noexcept;
CORE_API bool is_wide_alnum(wchar c) noexcept;
CORE_API int wide_digit(wchar c) noexcept;
constexpr bool is_ascii(wchar c) noexcept {
    return c < 0x80;
}
} // namespace detail

/// Tells whether `c` is white space.
[[nodiscard]] inline bool is_space(wchar c) noexcept {
    return detail::is_ascii(c) ? is_space(static_cast<char>(c)) : detail::is_wide_space(c);
}
/// Tells whether `c` is a letter of any alphabet.
[[nodiscard]] inline bool is_alpha(wchar c) noexcept {
    return detail::is_ascii(c) ? is_alpha(static_cast<char>(c)) : detail::is_wide_alpha(c);
}
/// Tells whether `c` is a letter of any alphabet or a decimal digit of any script.
[[nodiscard]] inline bool is_alnum(wchar c) noexcept {
    return detail::is_ascii(c) ? is_alnum(static_cast<char>(c)) : detail::is_wide_alnum(c);
}
/// Tells whether `c` is one of the digits 0 to 9 of ASCII.
[[nodiscard]] constexpr bool is_ascii_digit(wchar c) noexcept {
    return c >= u'0' && c <= u'9';
}
/// Returns the value of a decimal digit of any script, 0 to 9; -1 for anything else.
[[nodiscard]] inline int digit(wchar c) noexcept {
    return detail::is_ascii(c) ? digit(static_cast<char>(c)) : detail::wide_digit(c);
}
/// Tells whether `c` is a decimal digit of any script.
[[nodiscard]] inline bool is_digit(wchar c) noexcept {
    return digit(c) >= 0;
}

} // namespace core
