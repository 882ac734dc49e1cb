// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/types.h>

#include <cstdint>
#include <span>
#include <string_view>

namespace core {

/// What a currency and its part are called in one language, as the items of a WordsFormat say it.
struct CurrencyNouns {
    wstring_view currency;     ///< the code of the currency
    std::string_view language; ///< the code of the language
    wstring_view unit;
    wchar unitGender;
    wstring_view part; ///< empty: the currency has none
    wchar partGender;
    std::int32_t partDigits; ///< 2 where the part is a hundredth
};

/// All that there are.
[[nodiscard]] CORE_API std::span<const CurrencyNouns> currency_nouns() noexcept;

} // namespace core
