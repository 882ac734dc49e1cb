// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

namespace core {

/// A name in both languages: English first, then Russian, which may be missing (null).
using Term = const wchar* const[2];

inline constexpr int kEnglish = 0;
inline constexpr int kRussian = 1;

/// The name in one language: for `alias` 0 the English one; for 1 the Russian one, or the English one where
/// the Russian is missing; null for any other alias.
[[nodiscard]] constexpr const wchar* term_string(const wchar* const* names, int alias) noexcept {
    if (alias == kEnglish)
        return names[kEnglish];
    if (alias == kRussian)
        return names[kRussian] != nullptr ? names[kRussian] : names[kEnglish];
    return nullptr;
}

} // namespace core
