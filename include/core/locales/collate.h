// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/locale.h>
#include <core/strings/code_unit.h>

/// The order of texts that a reader of a language expects. A locale without rules of its own is ordered by
/// the rules of the root locale. Each thread opens a collator once a locale and keeps it; all functions are
/// safe on any thread. They throw LocaleException when the system has no collation rules at all, and
/// ConverterException for a text of 2^31 units and more.
namespace core {

/// Compares by letters, accents and case, then by code units what the language does not tell apart. Returns a
/// number below, equal to or above 0; 0 means that the texts are identical.
[[nodiscard]] CORE_API int compare(wstring_view a, wstring_view b, const Locale& locale);
/// Compares two texts in UTF-8 by letters, accents and case, then by code units. Returns a number below,
/// equal to or above 0.
[[nodiscard]] CORE_API int compare(std::string_view a, std::string_view b, const Locale& locale);

/// Compares by letters and accents. Returns a number below, equal to or above 0.
[[nodiscard]] CORE_API int compare_nocase(wstring_view a, wstring_view b, const Locale& locale);
/// Compares two texts in UTF-8 by letters and accents. Returns a number below, equal to or above 0.
[[nodiscard]] CORE_API int compare_nocase(std::string_view a, std::string_view b, const Locale& locale);
/// Compares two texts, each given by a pointer and its end (code_unit.h), by letters and accents. Returns a
/// number below, equal to or above 0.
template <CodeUnit C, TextEnd<C> A, TextEnd<C> B>
[[nodiscard]] int compare_nocase(const C* a, A aEnd, const C* b, B bEnd, const Locale& locale) {
    return compare_nocase(text_view(a, aEnd), text_view(b, bEnd), locale);
}

} // namespace core
