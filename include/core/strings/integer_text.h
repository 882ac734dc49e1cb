// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/strings/code_unit.h>

#include <concepts>
#include <cstdint>
#include <optional>
#include <type_traits>

/// Integers of every built-in type to text and back, in a radix from 2 to 36.
namespace core {

/// A built-in integer type; `bool` and the types of characters do not count as such.
template <class T>
concept TextInteger = std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, wchar_t> &&
                      !std::same_as<T, char8_t> && !std::same_as<T, char16_t> && !std::same_as<T, char32_t>;

namespace detail {
struct Integer {
    bool negative = false;
    std::uint64_t magnitude = 0;
};

template <TextInteger T>
constexpr bool is_negative(T value) noexcept {
    if constexpr (std::is_signed_v<T>)
        return value < 0;
    else
        return false;
}

CORE_API std::string integer_to_text(Integer value, unsigned radix);
CORE_API std::optional<Integer> integer_from_text(wstring_view text, unsigned radix) noexcept;
CORE_API std::optional<Integer> integer_from_text(std::string_view text, unsigned radix);
} // namespace detail

/// Returns the text of an integer: "-" for a negative value, then the digits without leading zeros, those
/// above 9 as lower-case letters. Returns the empty text for a radix outside 2 to 36.
template <CodeUnit C = wchar, TextInteger T>
[[nodiscard]] std::basic_string<C> string_intto(T value, unsigned radix = 10) {
    const bool negative = detail::is_negative(value);
    const auto bits = static_cast<std::uint64_t>(value);
    const std::string text = detail::integer_to_text({negative, negative ? 0 - bits : bits}, radix);
    return std::basic_string<C>(text.begin(), text.end());
}

/// Returns the value of an optional sign and one or more digits. Decimal digits of any script (is_digit())
/// and letters of either case are digits. Returns nothing when anything else stands in the text, white space
/// included, when the value does not fit `T`, and for a radix outside 2 to 36.
template <TextInteger T = int, CodeUnit C>
[[nodiscard]] std::optional<T> string_toint(std::basic_string_view<C> text, unsigned radix = 10) {
    const std::optional<detail::Integer> integer = detail::integer_from_text(text, radix);
    if (!integer)
        return std::nullopt;
    // Two's complement: a negative value fits when it is negative in `T` and comes back unchanged.
    const auto bits = integer->negative ? 0 - integer->magnitude : integer->magnitude;
    const T value = static_cast<T>(bits);
    const bool fits = static_cast<std::uint64_t>(value) == bits &&
                      detail::is_negative(value) == (integer->negative && bits != 0);
    return fits ? std::optional<T>(value) : std::nullopt;
}
/// Returns the value of a text that a string holds.
template <TextInteger T = int, CodeUnit C>
[[nodiscard]] std::optional<T> string_toint(const std::basic_string<C>& text, unsigned radix = 10) {
    return string_toint<T>(std::basic_string_view<C>(text), radix);
}
/// Returns the value of a text that a null unit ends.
template <TextInteger T = int, CodeUnit C>
[[nodiscard]] std::optional<T> string_toint(const C* text, unsigned radix = 10) {
    return string_toint<T>(text_view(text), radix);
}
/// Returns the value of the text from `begin` to `end`.
template <TextInteger T = int, CodeUnit C>
[[nodiscard]] std::optional<T> string_toint(const C* begin, const C* end, unsigned radix = 10) {
    return string_toint<T>(text_view(begin, end), radix);
}

} // namespace core
