// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/strings/code_unit.h>

/// Comparison of texts without regard to language; see collate.h for the order that a reader expects. All
/// comparisons return a number below, equal to or above zero, and are safe on any thread.
namespace core {

/// Exact, in the order of code units; those of narrow text are its bytes, which no conversion replaces.
[[nodiscard]] CORE_API int compare(wstring_view a, wstring_view b) noexcept;
[[nodiscard]] CORE_API int compare(std::string_view a, std::string_view b) noexcept;

/// Without regard to case, in the order of the units of the full case foldings.
///
/// What follows the first unit in which the two differ is compared as texts of their own. A character outside
/// the basic plane that differs in its second unit alone is therefore told apart from its other case when it
/// is the first difference; no letter of a living alphabet is affected, and equal texts always have equal
/// hashes (names.h).
[[nodiscard]] CORE_API int compare_nocase(wstring_view a, wstring_view b) noexcept;
[[nodiscard]] CORE_API int compare_nocase(std::string_view a, std::string_view b);

template <CodeUnit C>
[[nodiscard]] int compare(const C* a, const C* b) noexcept {
    return compare(text_view(a), text_view(b));
}
template <CodeUnit C>
[[nodiscard]] int compare(const C* a, std::size_t aLength, const C* b, std::size_t bLength) noexcept {
    return compare(std::basic_string_view<C>(a, aLength), std::basic_string_view<C>(b, bLength));
}
template <CodeUnit C>
[[nodiscard]] int compare(const C* a, const C* aEnd, const C* b, const C* bEnd) noexcept {
    return compare(text_view(a, aEnd), text_view(b, bEnd));
}

template <CodeUnit C>
[[nodiscard]] int compare_nocase(const C* a, const C* b) {
    return compare_nocase(text_view(a), text_view(b));
}
template <CodeUnit C>
[[nodiscard]] int compare_nocase(const C* a, std::size_t aLength, const C* b, std::size_t bLength) {
    return compare_nocase(std::basic_string_view<C>(a, aLength), std::basic_string_view<C>(b, bLength));
}
template <CodeUnit C>
[[nodiscard]] int compare_nocase(const C* a, const C* aEnd, const C* b, const C* bEnd) {
    return compare_nocase(text_view(a, aEnd), text_view(b, bEnd));
}

} // namespace core
