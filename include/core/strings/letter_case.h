// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/locale.h>
#include <core/strings/code_unit.h>

/// Upper and lower case, for showing text; to compare texts use compare_nocase. The root locale has the rules
/// that most languages share; some (Turkish, Greek, Lithuanian) have their own. A text may change its length.
namespace core {

/// One code unit, without regard to language and neighbours.
[[nodiscard]] CORE_API wchar to_upper(wchar c) noexcept;
[[nodiscard]] CORE_API wchar to_lower(wchar c) noexcept;
[[nodiscard]] constexpr char to_upper(char c) noexcept {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
}
[[nodiscard]] constexpr char to_lower(char c) noexcept {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

[[nodiscard]] CORE_API wstring to_upper(wstring_view text, const Locale& locale = Locale());
[[nodiscard]] CORE_API wstring to_lower(wstring_view text, const Locale& locale = Locale());
[[nodiscard]] CORE_API std::string to_upper(std::string_view text, const Locale& locale = Locale());
[[nodiscard]] CORE_API std::string to_lower(std::string_view text, const Locale& locale = Locale());

template <CodeUnit C>
[[nodiscard]] std::basic_string<C> to_upper(const C* text) {
    return to_upper(text_view(text));
}
template <CodeUnit C>
[[nodiscard]] std::basic_string<C> to_upper(const C* text, std::size_t length) {
    return to_upper(std::basic_string_view<C>(text, length));
}
template <CodeUnit C>
[[nodiscard]] std::basic_string<C> to_upper(const C* begin, const C* end) {
    return to_upper(text_view(begin, end));
}

template <CodeUnit C>
[[nodiscard]] std::basic_string<C> to_lower(const C* text) {
    return to_lower(text_view(text));
}
template <CodeUnit C>
[[nodiscard]] std::basic_string<C> to_lower(const C* text, std::size_t length) {
    return to_lower(std::basic_string_view<C>(text, length));
}
template <CodeUnit C>
[[nodiscard]] std::basic_string<C> to_lower(const C* begin, const C* end) {
    return to_lower(text_view(begin, end));
}

} // namespace core
