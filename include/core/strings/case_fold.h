// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/strings/code_unit.h>

/// Case folding: what makes two spellings of a word one. Independent of language: the Turkish dotless i has
/// no special treatment.
namespace core {

/// The simple folding of one code unit: one unit, and itself when it has none or is a surrogate.
[[nodiscard]] CORE_API wchar fold_case(wchar c) noexcept;
[[nodiscard]] constexpr char fold_case(char c) noexcept {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

/// The full folding of a text, which may be longer: the sharp s becomes two letters.
[[nodiscard]] CORE_API wstring fold_case(wstring_view text);
[[nodiscard]] CORE_API std::string fold_case(std::string_view text);

template <CodeUnit C>
[[nodiscard]] std::basic_string<C> fold_case(const C* text) {
    return fold_case(text_view(text));
}
template <CodeUnit C>
[[nodiscard]] std::basic_string<C> fold_case(const C* text, std::size_t length) {
    return fold_case(std::basic_string_view<C>(text, length));
}
template <CodeUnit C>
[[nodiscard]] std::basic_string<C> fold_case(const C* begin, const C* end) {
    return fold_case(text_view(begin, end));
}

} // namespace core
