// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def.h>

namespace core {

/// Returns the functions of locales that scripts call without an object in front:
///
///  - `Locales()`: an Array of all locales that there are data for, each a Locale;
///  - `BestLocale(Wishes, Available)`: of two collections of locales or their keys, the available one that
///    fits the wishes best, see best_match(); Undefined when none does;
///  - `InWords(Number, [Format])`: a number or an amount in words, see WordsFormat.
///
/// Throws std::bad_alloc.
[[nodiscard]] CORE_API InterfacePtr<IContext_> create_locale_functions();

} // namespace core
