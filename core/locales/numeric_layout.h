// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/locales/format_items.h"
#include "core/locales/number_symbols.h"

#include <core/numbers/numeric.h>

#include <memory>
#include <optional>
#include <string>

namespace core {

/// A format string of numbers, made ready to write and to read.
struct NumericLayout {
    DigitUnits digits;
    wstring point = u".";
    wstring group; ///< empty: no groups
    NumberAffixes affixes;
    NumberGrouping grouping;
    DigitRange fraction;
    DigitRange significant = {0, DigitRange::kNoLimit}; ///< least 0: `fraction` counts
    std::size_t whole = 1;                              ///< the least digits before the point
    Numeric factor;                                     ///< what is written is the number times this; 0: once
    Numeric divisor;                                    ///< 1 / factor
    std::optional<wstring> zero;                        ///< the text of zero
    std::optional<wstring> negative;                    ///< the text of every negative number
    wstring empty;                                      ///< the text where there is no value

    void write(const Numeric& number, wstring& text) const;
    /// The units of `text` that are a number, which is stored; none when no number stands there.
    [[nodiscard]] std::optional<std::size_t> read(wstring_view text, Numeric& number) const;
    /// The units at the front that are the digits of a number with `prefix` and `suffix` around; 0 for none.
    [[nodiscard]] std::size_t readDigits(wstring_view text, wstring_view prefix, wstring_view suffix,
                                         std::string& plain) const;
};

/// The layout of a format string; `locale` is what it has when the string names none, null the plain form.
/// Null for the plain form itself. CtorException for a string that is malformed or makes no sense.
[[nodiscard]] std::shared_ptr<const NumericLayout> numeric_layout(wstring_view format, const Locale* locale);

} // namespace core
