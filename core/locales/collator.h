// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/locale.h>

#include <unicode/ucol.h>

namespace core::detail {

/// The calling thread's collator, opened once a locale and strength and kept. Throws LocaleException when the
/// system has no collation rules.
[[nodiscard]] const UCollator* collator_for(const Locale& locale, UCollationStrength strength);

} // namespace core::detail
