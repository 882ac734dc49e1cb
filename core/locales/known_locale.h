// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/locale.h>
#include <core/runtime/types.h>

#include <optional>

namespace core {

/// The locale with a key, made canonical, whose language and region ICU knows; none for any other key.
[[nodiscard]] std::optional<Locale> known_locale(wstring_view key);

} // namespace core
