// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

namespace core {

/// A name in both languages: English first, then Russian, which may be missing (null).
using Term = const wchar* const[2];

/// The alias of the English name.
inline constexpr int kEnglish = 0;
/// The alias of the Russian name.
inline constexpr int kRussian = 1;

/// Returns the name in one language: for kEnglish the English name; for kRussian the Russian name, or the
/// English one where the Russian is missing; null for any other alias.
[[nodiscard]] constexpr const wchar* term_string(const wchar* const* names, int alias) noexcept {
    if (alias == kEnglish)
        return names[kEnglish];
    if (alias == kRussian)
        return names[kRussian] != nullptr ? names[kRussian] : names[kEnglish];
    return nullptr;
}

/// A name in both languages as an entry of a table holds it: what a Term says, in a form that can be copied.
/// The texts are borrowed; they are literals as a rule.
struct NamePair {
    /// No name.
    constexpr NamePair() noexcept = default;
    /// A name; the Russian one may be missing (null).
    constexpr NamePair(const wchar* english, const wchar* russian = nullptr) noexcept
        : text{english, russian} {}
    /// The name that a Term says.
    constexpr NamePair(const Term& term) noexcept : text{term[kEnglish], term[kRussian]} {}
    /// The pair as a Term, for term_string(); valid as long as the pair.
    constexpr operator const wchar* const*() const noexcept { return text; }

    const wchar* text[2] = {}; ///< English, Russian
};

} // namespace core
