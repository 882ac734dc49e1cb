// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/strings/code_unit.h>

/// Removal of white space, as is_space() knows it, from the ends of a text. A view of a text gives a view of
/// the same units, which is valid as long as they are. A string that is given up gives a string, so that
/// nothing dangles. All functions are safe on any thread.
namespace core {

/// Returns the text without the white space at its beginning.
[[nodiscard]] CORE_API wstring_view trim_left(wstring_view text) noexcept;
/// Returns the text without the white space at its end.
[[nodiscard]] CORE_API wstring_view trim_right(wstring_view text) noexcept;
/// Returns the text without the white space at both ends.
[[nodiscard]] CORE_API wstring_view trim_all(wstring_view text) noexcept;
/// Returns the text in UTF-8 without the white space at its beginning.
[[nodiscard]] CORE_API std::string_view trim_left(std::string_view text) noexcept;
/// Returns the text in UTF-8 without the white space at its end.
[[nodiscard]] CORE_API std::string_view trim_right(std::string_view text) noexcept;
/// Returns the text in UTF-8 without the white space at both ends.
[[nodiscard]] CORE_API std::string_view trim_all(std::string_view text) noexcept;

/// Returns a string of its own without the white space at the beginning of `text`.
template <CodeUnit C>
[[nodiscard]] std::basic_string<C> trim_left(std::basic_string<C>&& text) {
    return std::basic_string<C>(trim_left(std::basic_string_view<C>(text)));
}
/// Returns a string of its own without the white space at the end of `text`.
template <CodeUnit C>
[[nodiscard]] std::basic_string<C> trim_right(std::basic_string<C>&& text) {
    return std::basic_string<C>(trim_right(std::basic_string_view<C>(text)));
}
/// Returns a string of its own without the white space at both ends of `text`.
template <CodeUnit C>
[[nodiscard]] std::basic_string<C> trim_all(std::basic_string<C>&& text) {
    return std::basic_string<C>(trim_all(std::basic_string_view<C>(text)));
}

/// Returns a text that is given by a pointer (code_unit.h) without the white space at its beginning.
template <CodeUnit C, TextEnd<C>... End>
[[nodiscard]] std::basic_string_view<C> trim_left(const C* text, End... end) noexcept {
    return trim_left(text_view(text, end...));
}
/// Returns a text that is given by a pointer (code_unit.h) without the white space at its end.
template <CodeUnit C, TextEnd<C>... End>
[[nodiscard]] std::basic_string_view<C> trim_right(const C* text, End... end) noexcept {
    return trim_right(text_view(text, end...));
}
/// Returns a text that is given by a pointer (code_unit.h) without the white space at both ends.
template <CodeUnit C, TextEnd<C>... End>
[[nodiscard]] std::basic_string_view<C> trim_all(const C* text, End... end) noexcept {
    return trim_all(text_view(text, end...));
}

} // namespace core
