// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/strings/code_unit.h>

/// Removal of white space (is_space) from the ends of a text. The result is a view into the same characters,
/// which must outlive it; a string that is given up comes back as a string instead, so nothing dangles.
namespace core {

[[nodiscard]] CORE_API wstring_view trim_left(wstring_view text) noexcept;
[[nodiscard]] CORE_API wstring_view trim_right(wstring_view text) noexcept;
[[nodiscard]] CORE_API wstring_view trim_all(wstring_view text) noexcept;
[[nodiscard]] CORE_API std::string_view trim_left(std::string_view text) noexcept;
[[nodiscard]] CORE_API std::string_view trim_right(std::string_view text) noexcept;
[[nodiscard]] CORE_API std::string_view trim_all(std::string_view text) noexcept;

[[nodiscard]] inline wstring trim_left(wstring&& text) {
    return wstring(trim_left(wstring_view(text)));
}
[[nodiscard]] inline wstring trim_right(wstring&& text) {
    return wstring(trim_right(wstring_view(text)));
}
[[nodiscard]] inline wstring trim_all(wstring&& text) {
    return wstring(trim_all(wstring_view(text)));
}
[[nodiscard]] inline std::string trim_left(std::string&& text) {
    return std::string(trim_left(std::string_view(text)));
}
[[nodiscard]] inline std::string trim_right(std::string&& text) {
    return std::string(trim_right(std::string_view(text)));
}
[[nodiscard]] inline std::string trim_all(std::string&& text) {
    return std::string(trim_all(std::string_view(text)));
}

template <CodeUnit C>
[[nodiscard]] std::basic_string_view<C> trim_left(const C* text) noexcept {
    return trim_left(text_view(text));
}
template <CodeUnit C>
[[nodiscard]] std::basic_string_view<C> trim_right(const C* text) noexcept {
    return trim_right(text_view(text));
}
template <CodeUnit C>
[[nodiscard]] std::basic_string_view<C> trim_all(const C* text) noexcept {
    return trim_all(text_view(text));
}
template <CodeUnit C>
[[nodiscard]] std::basic_string_view<C> trim_left(const C* text, std::size_t length) noexcept {
    return trim_left(std::basic_string_view<C>(text, length));
}
template <CodeUnit C>
[[nodiscard]] std::basic_string_view<C> trim_right(const C* text, std::size_t length) noexcept {
    return trim_right(std::basic_string_view<C>(text, length));
}
template <CodeUnit C>
[[nodiscard]] std::basic_string_view<C> trim_all(const C* text, std::size_t length) noexcept {
    return trim_all(std::basic_string_view<C>(text, length));
}
template <CodeUnit C>
[[nodiscard]] std::basic_string_view<C> trim_left(const C* begin, const C* end) noexcept {
    return trim_left(text_view(begin, end));
}
template <CodeUnit C>
[[nodiscard]] std::basic_string_view<C> trim_right(const C* begin, const C* end) noexcept {
    return trim_right(text_view(begin, end));
}
template <CodeUnit C>
[[nodiscard]] std::basic_string_view<C> trim_all(const C* begin, const C* end) noexcept {
    return trim_all(text_view(begin, end));
}

} // namespace core
