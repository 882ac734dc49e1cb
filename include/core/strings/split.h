// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/strings/code_unit.h>

#include <vector>

/// Texts taken apart and put together: exact code units throughout.
namespace core {

/// `text` with every occurrence of `from`, found from left to right without overlap, replaced by `to`. An
/// empty `from` occurs nowhere.
[[nodiscard]] CORE_API wstring replace_all(wstring_view text, wstring_view from, wstring_view to);
[[nodiscard]] CORE_API std::string replace_all(std::string_view text, std::string_view from,
                                               std::string_view to);

enum class EmptyTokens {
    skip, ///< delimiters in a row, at the beginning or at the end count as one: "" has no token
    keep  ///< every delimiter separates two tokens: "" has one, the empty one
};

/// The pieces of `text` between the units of `delimiters`, as views into it.
[[nodiscard]] CORE_API std::vector<wstring_view> string_tokenize(wstring_view text, wstring_view delimiters,
                                                                 EmptyTokens empty = EmptyTokens::skip);
[[nodiscard]] CORE_API std::vector<std::string_view>
string_tokenize(std::string_view text, std::string_view delimiters, EmptyTokens empty = EmptyTokens::skip);

} // namespace core
