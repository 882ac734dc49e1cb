// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/locale.h>
#include <core/strings/code_unit.h>

/// The order of texts that a reader of a language expects. The collators of each thread are opened once a
/// locale and kept. All functions throw LocaleException when the system has no collation rules at all,
/// and ConverterException for a text that is too long for them (2 GiB); a locale without rules of its own is
/// ordered by the root's.
namespace core {

/// Returns a number below, equal to or above zero by the order of `a` and `b`: by letters, accents and case,
/// and texts that the language does not tell apart by code units, so that 0 means identical.
[[nodiscard]] CORE_API int compare(wstring_view a, wstring_view b, const Locale& locale);
/// Compares texts in UTF-8 so.
[[nodiscard]] CORE_API int compare(std::string_view a, std::string_view b, const Locale& locale);

/// Returns a number below, equal to or above zero by the order of `a` and `b`: by letters and accents,
/// without regard to case.
[[nodiscard]] CORE_API int compare_nocase(wstring_view a, wstring_view b, const Locale& locale);
/// Compares texts in UTF-8 so.
[[nodiscard]] CORE_API int compare_nocase(std::string_view a, std::string_view b, const Locale& locale);

/// Compares texts that are given by pointers and lengths.
[[nodiscard]] inline int compare_nocase(const wchar* a, std::size_t aLength, const wchar* b,
                                        std::size_t bLength, const Locale& locale) {
    return compare_nocase(wstring_view(a, aLength), wstring_view(b, bLength), locale);
}
/// Compares texts in UTF-8 that are given by pointers and lengths.
[[nodiscard]] inline int compare_nocase(const char* a, std::size_t aLength, const char* b,
                                        std::size_t bLength, const Locale& locale) {
    return compare_nocase(std::string_view(a, aLength), std::string_view(b, bLength), locale);
}

} // namespace core
