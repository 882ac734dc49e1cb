// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/locales/digit_units.h"

#include <core/runtime/locale.h>

namespace core {

/// What stands around the digits of a number.
struct NumberAffixes {
    wstring prefix; ///< of a number that is not negative
    wstring suffix;
    wstring negativePrefix = u"-";
    wstring negativeSuffix;
};

/// How a language groups the digits of the whole part.
struct NumberGrouping {
    std::size_t last = 0;  ///< the digits of the last group; 0 for no groups
    std::size_t other = 0; ///< those of the groups before it
    std::size_t least = 1; ///< the digits that must stand before the last group for any group to be made

    /// The separators in a whole part of so many digits.
    [[nodiscard]] std::size_t separators(std::size_t digits) const noexcept {
        return last == 0 || digits < last + least ? 0 : 1 + (digits - last - 1) / other;
    }
};

/// What numbers of one style look like around and between their digits.
struct NumberStyle {
    NumberAffixes affixes;
    NumberGrouping grouping;
};

/// How the people of a locale write numbers.
struct NumberSymbols {
    DigitUnits digits;
    wstring point = u".";
    wstring group = u",";
    wstring minus = u"-";
    NumberStyle decimal;
    NumberStyle percent = {{{}, u"%", u"-", u"%"}, {}};
};

/// The symbols of a locale, fetched once a thread; valid as long as the thread. A numbering system without
/// ten digits, as Roman numbers are, counts as the digits of ASCII.
[[nodiscard]] const NumberSymbols& number_symbols(const Locale& locale);

} // namespace core
