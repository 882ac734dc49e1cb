// SPDX-License-Identifier: Apache-2.0
#include "core/locales/date_symbols.h"

#include "core/locales/icu_text.h"

#include <core/locales/errors.h>
#include <core/runtime/utf8.h>

#include <unicode/dtfmtsym.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

namespace core {
namespace {

using Symbols = icu::DateFormatSymbols;

void check(UErrorCode status, const Locale& locale) {
    if (U_FAILURE(status))
        throw_error<LocaleException>(messages::kNoFormats, {from_utf8(locale.key())});
}

const Symbols& symbols_of(const Locale& locale) {
    return kept_for<Symbols>(locale, [](const Locale& key) {
        UErrorCode status = U_ZERO_ERROR;
        Symbols symbols(gregorian_locale(key), status);
        check(status, key);
        return symbols;
    });
}

/// The part of the day that each hour belongs to, as in "in the morning".
std::vector<wstring> day_periods(const Locale& locale) {
    UErrorCode status = U_ZERO_ERROR;
    icu::SimpleDateFormat format(icu::UnicodeString(u"B"), gregorian_locale(locale), status);
    check(status, locale);
    format.setTimeZone(*icu::TimeZone::getGMT());
    std::vector<wstring> names;
    for (int hour = 0; hour < 24; ++hour) {
        icu::UnicodeString text;
        names.push_back(text_of(format.format(UDate((hour * 60 + 30) * 60'000.0), text)));
    }
    return names;
}

/// The numbers of months where a pattern writes them in another way than those of days.
std::vector<wstring> month_numbers(const icu::SimpleDateFormat& format) {
    const icu::NumberFormat* const months = format.getNumberFormatForField(u'M');
    const icu::NumberFormat* const days = format.getNumberFormatForField(u'd');
    std::vector<wstring> numbers;
    for (std::int32_t month = 1; month <= 12 && months != days; ++month) {
        icu::UnicodeString text;
        numbers.push_back(text_of(months->format(month, text)));
    }
    return numbers;
}

Symbols::DtWidthType width_type(std::size_t width) noexcept {
    switch (width) {
    case 4:
        return Symbols::WIDE;
    case 5:
        return Symbols::NARROW;
    case 6:
        return Symbols::SHORT;
    default:
        return Symbols::ABBREVIATED;
    }
}

} // namespace

std::vector<wstring> date_names(const Locale& locale, wchar letter, std::size_t width) {
    const bool alone = letter == u'L' || letter == u'c' || letter == u'q';
    const auto context = alone ? Symbols::STANDALONE : Symbols::FORMAT;
    const icu::UnicodeString* names = nullptr;
    std::int32_t count = 0;
    std::int32_t first = 0;
    if (letter == u'B')
        return day_periods(locale);
    const Symbols& symbols = symbols_of(locale);
    if ((letter == u'M' || letter == u'L') && width >= 3) {
        names = symbols.getMonths(count, context, width_type(width));
    } else if (letter == u'E' || letter == u'c') {
        names = symbols.getWeekdays(count, context, width_type(width));
        first = 1; // ICU counts the days of the week from 1
    } else if ((letter == u'Q' || letter == u'q') && width >= 3) {
        names = symbols.getQuarters(count, context, width_type(width));
    } else if (letter == u'a') {
        names = symbols.getAmPmStrings(count);
    } else if (letter == u'G') {
        names = width == 4 ? symbols.getEraNames(count) : symbols.getEras(count);
    }
    std::vector<wstring> found;
    for (std::int32_t i = first; i < count; ++i)
        found.push_back(text_of(names[i]));
    return found;
}

LocalePattern locale_pattern(const Locale& locale, std::optional<DateStyle> date,
                             std::optional<DateStyle> time) {
    using Format = icu::DateFormat;
    constexpr Format::EStyle kStyles[] = {Format::kShort, Format::kMedium, Format::kLong, Format::kFull};
    if (time && *time > DateStyle::mediumForm)
        time = DateStyle::mediumForm;
    const auto style = [&](std::optional<DateStyle> wanted) {
        return wanted ? kStyles[static_cast<std::size_t>(*wanted)] : Format::kNone;
    };
    const icu::Locale known = gregorian_locale(locale);
    const std::unique_ptr<Format> made(Format::createDateTimeInstance(style(date), style(time), known));
    const auto* const format = dynamic_cast<const icu::SimpleDateFormat*>(made.get());
    check(format != nullptr ? U_ZERO_ERROR : U_UNSUPPORTED_ERROR, locale);
    icu::UnicodeString pattern;
    return {text_of(format->toPattern(pattern)), month_numbers(*format)};
}

} // namespace core
