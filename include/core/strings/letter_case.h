// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/locale.h>
#include <core/strings/code_unit.h>

/// Upper and lower case, for showing text; to compare texts use compare_nocase(). The root locale has the
/// rules that most languages share. Some languages (Turkish, Greek, Lithuanian) have rules of their own. A
/// text may change its length. All functions are safe on any thread.
namespace core {

/// Returns the upper case of one code unit, without regard to language and neighbours.
[[nodiscard]] CORE_API wchar to_upper(wchar c) noexcept;
/// Returns the lower case of one code unit, without regard to language and neighbours.
[[nodiscard]] CORE_API wchar to_lower(wchar c) noexcept;
/// Returns the upper case of an ASCII letter, any other `char` as it is.
[[nodiscard]] constexpr char to_upper(char c) noexcept {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
}
/// Returns the lower case of an ASCII letter, any other `char` as it is.
[[nodiscard]] constexpr char to_lower(char c) noexcept {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

/// Returns a text in upper case, by the rules of the locale. Throws ConverterException for 2^31 units and
/// more.
[[nodiscard]] CORE_API wstring to_upper(wstring_view text, const Locale& locale = Locale());
/// Returns a text in lower case, by the rules of the locale. Throws ConverterException for 2^31 units and
/// more.
[[nodiscard]] CORE_API wstring to_lower(wstring_view text, const Locale& locale = Locale());
/// Returns a text in UTF-8 in upper case, by the rules of the locale. Throws ConverterException for 2^31
/// units and more.
[[nodiscard]] CORE_API std::string to_upper(std::string_view text, const Locale& locale = Locale());
/// Returns a text in UTF-8 in lower case, by the rules of the locale. Throws ConverterException for 2^31
/// units and more.
[[nodiscard]] CORE_API std::string to_lower(std::string_view text, const Locale& locale = Locale());
/// Returns a text that is given by a pointer (code_unit.h) in upper case, by the rules of the root locale.
template <CodeUnit C, TextEnd<C>... End>
[[nodiscard]] std::basic_string<C> to_upper(const C* text, End... end) {
    return to_upper(text_view(text, end...));
}
/// Returns a text that is given by a pointer (code_unit.h) in lower case, by the rules of the root locale.
template <CodeUnit C, TextEnd<C>... End>
[[nodiscard]] std::basic_string<C> to_lower(const C* text, End... end) {
    return to_lower(text_view(text, end...));
}

} // namespace core
