// SPDX-License-Identifier: Apache-2.0
#include "core/locales/number_symbols.h"

#include "core/locales/icu_text.h"

#include <core/locales/errors.h>
#include <core/runtime/utf8.h>

#include <unicode/dcfmtsym.h>
#include <unicode/decimfmt.h>
#include <unicode/numfmt.h>
#include <unicode/numsys.h>

namespace core {
namespace {

using Symbol = icu::DecimalFormatSymbols;

std::unique_ptr<icu::DecimalFormat> open_format(const icu::Locale& locale, UNumberFormatStyle style) {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::NumberFormat> made(icu::NumberFormat::createInstance(locale, style, status));
    auto* const decimal = dynamic_cast<icu::DecimalFormat*>(made.get());
    if (U_FAILURE(status) || decimal == nullptr)
        return nullptr;
    static_cast<void>(made.release());
    // By default ICU groups four digits in Spanish, too.
    decimal->setMinimumGroupingDigits(UNUM_MINIMUM_GROUPING_DIGITS_AUTO);
    return std::unique_ptr<icu::DecimalFormat>(decimal);
}

DigitUnits digits_of(const Symbol& symbols) {
    constexpr Symbol::ENumberFormatSymbol kDigits[] = {Symbol::kZeroDigitSymbol,  Symbol::kOneDigitSymbol,
                                                       Symbol::kTwoDigitSymbol,   Symbol::kThreeDigitSymbol,
                                                       Symbol::kFourDigitSymbol,  Symbol::kFiveDigitSymbol,
                                                       Symbol::kSixDigitSymbol,   Symbol::kSevenDigitSymbol,
                                                       Symbol::kEightDigitSymbol, Symbol::kNineDigitSymbol};
    DigitUnits digits;
    for (std::size_t i = 0; i < digits.low.size(); ++i) {
        const wstring text = text_of(symbols.getSymbol(kDigits[i]));
        const wchar high = text.size() == 2 ? text[0] : u'\0';
        if (text.empty() || text.size() > 2 || (i != 0 && high != digits.high))
            return {};
        digits.high = high;
        digits.low[i] = text.back();
    }
    return digits;
}

NumberAffixes affixes_of(const icu::DecimalFormat& format) {
    icu::UnicodeString text;
    NumberAffixes affixes;
    affixes.prefix = text_of(format.getPositivePrefix(text));
    affixes.suffix = text_of(format.getPositiveSuffix(text));
    affixes.negativePrefix = text_of(format.getNegativePrefix(text));
    affixes.negativeSuffix = text_of(format.getNegativeSuffix(text));
    return affixes;
}

/// ICU does not say how many digits must stand before the last group, so it is seen from what it writes.
NumberGrouping grouping_of(const icu::DecimalFormat& format, const wstring& separator) {
    if (!format.isGroupingUsed() || format.getGroupingSize() <= 0 || separator.empty())
        return {};
    NumberGrouping grouping;
    grouping.last = static_cast<std::size_t>(format.getGroupingSize());
    grouping.other = format.getSecondaryGroupingSize() > 0
                         ? static_cast<std::size_t>(format.getSecondaryGroupingSize())
                         : grouping.last;
    std::int64_t number = 1;
    for (std::size_t i = 0; i < grouping.last; ++i)
        number *= 10;
    for (grouping.least = 1; grouping.least < 4; ++grouping.least, number *= 10) {
        icu::UnicodeString text;
        if (text_of(format.format(number, text)).find(separator) != wstring::npos)
            break;
    }
    return grouping;
}

NumberSymbols fetch(const Locale& locale) {
    icu::Locale known = gregorian_locale(locale);
    std::unique_ptr<icu::DecimalFormat> decimal = open_format(known, UNUM_DECIMAL);
    if (decimal == nullptr) {
        UErrorCode status = U_ZERO_ERROR;
        known.setKeywordValue("numbers", "latn", status);
        decimal = open_format(known, UNUM_DECIMAL);
    }
    const std::unique_ptr<icu::DecimalFormat> percent = open_format(known, UNUM_PERCENT);
    if (decimal == nullptr || percent == nullptr)
        throw_error<LocaleException>(messages::kNoFormats, {from_utf8(locale.key())});
    const Symbol& symbols = *decimal->getDecimalFormatSymbols();
    NumberSymbols made;
    made.digits = digits_of(symbols);
    made.point = text_of(symbols.getSymbol(Symbol::kDecimalSeparatorSymbol));
    made.group = text_of(symbols.getSymbol(Symbol::kGroupingSeparatorSymbol));
    made.minus = text_of(symbols.getSymbol(Symbol::kMinusSignSymbol));
    made.decimal = {affixes_of(*decimal), grouping_of(*decimal, made.group)};
    made.percent = {affixes_of(*percent), grouping_of(*percent, made.group)};
    made.percent.grouping.least = made.decimal.grouping.least; // a percent formatter writes other digits
    return made;
}

} // namespace

const NumberSymbols& number_symbols(const Locale& locale) {
    return kept_for<NumberSymbols>(locale, fetch);
}

} // namespace core
