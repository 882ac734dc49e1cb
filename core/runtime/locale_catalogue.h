// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <unicode/locid.h>

#include <string>
#include <string_view>
#include <vector>

/// What ICU says of locales as a whole. Each list is made when it is first asked for.
namespace core::detail {

/// The keys that there are data for, in order.
[[nodiscard]] const std::vector<std::string>& listed_locales();
[[nodiscard]] bool is_listed_locale(std::string_view key);
/// Whether there are data for the language of a locale in the script in which that locale writes it.
[[nodiscard]] bool is_listed_language(const icu::Locale& locale);
/// The script in which a locale writes its language.
[[nodiscard]] std::string script_of(icu::Locale locale);
/// The parent of a key without keywords; empty for the root.
[[nodiscard]] std::string_view parent_key(std::string_view key);

} // namespace core::detail
