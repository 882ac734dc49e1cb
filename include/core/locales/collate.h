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

/// By letters, accents and case, and texts that the language does not tell apart by
/// code units: 0 means identical.
[[nodiscard]] CORE_API int compare(wstring_view a, wstring_view b, const Locale& locale);
[[nodiscard]] CORE_API int compare(std::string_view a, std::string_view b, const Locale& locale);

/// By letters and accents.
[[nodiscard]] CORE_API int compare_nocase(wstring_view a, wstring_view b, const Locale& locale);
[[nodiscard]] CORE_API int compare_nocase(std::string_view a, std::string_view b, const Locale& locale);

[[nodiscard]] inline int compare_nocase(const wchar* a, std::size_t aLength, const wchar* b,
                                        std::size_t bLength, const Locale& locale) {
    return compare_nocase(wstring_view(a, aLength), wstring_view(b, bLength), locale);
}
[[nodiscard]] inline int compare_nocase(const char* a, std::size_t aLength, const char* b,
                                        std::size_t bLength, const Locale& locale) {
    return compare_nocase(std::string_view(a, aLength), std::string_view(b, bLength), locale);
}

} // namespace core
