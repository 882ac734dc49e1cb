// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/strings/code_unit.h>

/// Comparison of texts, exact and without regard to case, and the case folding that the latter rests on. No
/// language counts: the Turkish dotless i is a letter like any other. See collate.h for the order that a
/// reader of a language expects. All functions are safe on any thread.
namespace core {

/// Returns the simple case folding of a code unit: one unit, the same when it has none or is a surrogate.
[[nodiscard]] CORE_API wchar fold_case(wchar c) noexcept;
/// Returns the lower case of an ASCII letter, any other `char` as it is.
[[nodiscard]] constexpr char fold_case(char c) noexcept {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

/// Returns the full case folding of a text. It may be longer than the text: the sharp s becomes two letters.
[[nodiscard]] CORE_API wstring fold_case(wstring_view text);
/// Returns the full case folding of a text in UTF-8.
[[nodiscard]] CORE_API std::string fold_case(std::string_view text);
/// Returns the full case folding of a text that is given by a pointer (code_unit.h).
template <CodeUnit C, TextEnd<C>... End>
[[nodiscard]] std::basic_string<C> fold_case(const C* text, End... end) {
    return fold_case(text_view(text, end...));
}

/// Compares exactly, in the order of code units. Returns a number below, equal to or above 0.
[[nodiscard]] CORE_API int compare(wstring_view a, wstring_view b) noexcept;
/// Compares exactly, in the order of bytes: nothing is converted, so broken sequences differ. Returns a
/// number below, equal to or above 0.
[[nodiscard]] CORE_API int compare(std::string_view a, std::string_view b) noexcept;
/// Compares exactly two texts that null units end. Returns a number below, equal to or above 0.
template <CodeUnit C>
[[nodiscard]] int compare(const C* a, const C* b) noexcept {
    return compare(text_view(a), text_view(b));
}
/// Compares exactly two texts, each given by a pointer and its end (code_unit.h). Returns a number below,
/// equal to or above 0.
template <CodeUnit C, TextEnd<C> A, TextEnd<C> B>
[[nodiscard]] int compare(const C* a, A aEnd, const C* b, B bEnd) noexcept {
    return compare(text_view(a, aEnd), text_view(b, bEnd));
}

/// Compares without regard to case, in the order of the units of the full case foldings. Returns a number
/// below, equal to or above 0.
///
/// What follows the first unit in which the two differ is compared as texts of their own. A character outside
/// the basic plane that differs in its second unit alone is therefore told apart from its other case when it
/// is the first difference. No letter of a living alphabet is affected, and equal texts always have equal
/// hashes (names.h).
[[nodiscard]] CORE_API int compare_nocase(wstring_view a, wstring_view b) noexcept;
/// Compares two texts in UTF-8 without regard to case. Returns a number below, equal to or above 0.
[[nodiscard]] CORE_API int compare_nocase(std::string_view a, std::string_view b);
/// Compares two texts that null units end, without regard to case. Returns a number below, equal to or above
/// 0.
template <CodeUnit C>
[[nodiscard]] int compare_nocase(const C* a, const C* b) {
    return compare_nocase(text_view(a), text_view(b));
}
/// Compares two texts, each given by a pointer and its end (code_unit.h), without regard to case. Returns a
/// number below, equal to or above 0.
template <CodeUnit C, TextEnd<C> A, TextEnd<C> B>
[[nodiscard]] int compare_nocase(const C* a, A aEnd, const C* b, B bEnd) {
    return compare_nocase(text_view(a, aEnd), text_view(b, bEnd));
}

} // namespace core
