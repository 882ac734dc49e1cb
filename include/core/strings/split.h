// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/strings/code_unit.h>

#include <string>
#include <type_traits>
#include <vector>

/// Texts taken apart and put together, by exact code units.
namespace core {

/// Returns `text` with every occurrence of `from` replaced by `to`. Occurrences are found from left to right
/// and do not overlap. An empty `from` occurs nowhere.
[[nodiscard]] CORE_API wstring replace_all(wstring_view text, wstring_view from, wstring_view to);
/// Returns narrow `text` with every occurrence of `from`, found byte by byte, replaced by `to`.
[[nodiscard]] CORE_API std::string replace_all(std::string_view text, std::string_view from,
                                               std::string_view to);
/// Returns a text that a null unit ends with every occurrence of `from` replaced by `to`.
template <CodeUnit C>
[[nodiscard]] std::basic_string<C> replace_all(const C* text,
                                               std::type_identity_t<std::basic_string_view<C>> from,
                                               std::type_identity_t<std::basic_string_view<C>> to) {
    return replace_all(text_view(text), from, to);
}
/// Returns the text from `text` up to its end (code_unit.h) with every occurrence of `from` replaced by `to`.
template <CodeUnit C, TextEnd<C> End>
[[nodiscard]] std::basic_string<C> replace_all(const C* text, End end,
                                               std::type_identity_t<std::basic_string_view<C>> from,
                                               std::type_identity_t<std::basic_string_view<C>> to) {
    return replace_all(text_view(text, end), from, to);
}

/// What string_tokenize() makes of two delimiters side by side.
enum class EmptyTokens {
    skip, ///< delimiters side by side, at the beginning or at the end count as one: "" has no token
    keep  ///< every delimiter separates two tokens: "" has one, the empty one
};

/// Returns the pieces of `text` between the units of `delimiters`, as views that borrow from `text`.
[[nodiscard]] CORE_API std::vector<wstring_view> string_tokenize(wstring_view text, wstring_view delimiters,
                                                                 EmptyTokens empty = EmptyTokens::skip);
/// Returns the pieces of narrow `text` between the bytes of `delimiters`, as views that borrow from `text`.
[[nodiscard]] CORE_API std::vector<std::string_view>
string_tokenize(std::string_view text, std::string_view delimiters, EmptyTokens empty = EmptyTokens::skip);
/// Returns the pieces of a text that a null unit ends between the units of `delimiters`, as views that borrow
/// from it.
template <CodeUnit C>
[[nodiscard]] std::vector<std::basic_string_view<C>>
string_tokenize(const C* text, std::type_identity_t<std::basic_string_view<C>> delimiters,
                EmptyTokens empty = EmptyTokens::skip) {
    return string_tokenize(text_view(text), delimiters, empty);
}
/// Returns the pieces of the text from `text` up to its end (code_unit.h) between the units of `delimiters`,
/// as views that borrow from it.
template <CodeUnit C, TextEnd<C> End>
[[nodiscard]] std::vector<std::basic_string_view<C>>
string_tokenize(const C* text, End end, std::type_identity_t<std::basic_string_view<C>> delimiters,
                EmptyTokens empty = EmptyTokens::skip) {
    return string_tokenize(text_view(text, end), delimiters, empty);
}

} // namespace core
