// SPDX-License-Identifier: Apache-2.0
#include "core/locales/cached_format.h"
#include "core/locales/format_items.h"
#include "core/locales/format_names.h"

#include <core/locales/bool_format.h>
#include <core/locales/date_format.h>
#include <core/locales/format.h>
#include <core/locales/numeric_format.h>
#include <core/runtime/settings.h>
#include <core/strings/trim.h>

#include <vector>

namespace core {
namespace {

template <class Format>
const Format& kept_format(wstring_view format) {
    return cached_format<Format>(format, current_settings().locale);
}

/// The names of the items of all kinds.
const std::vector<NamePair>& all_items() {
    static const std::vector<NamePair> items = [] {
        std::vector<NamePair> all(std::begin(kNumericItems), std::end(kNumericItems));
        all.insert(all.end(), std::begin(kDateItems), std::end(kDateItems));
        all.insert(all.end(), std::begin(kBoolItems), std::end(kBoolItems));
        return all;
    }();
    return items;
}

} // namespace

wstring format_number(const Numeric& number, wstring_view format) {
    return kept_format<NumericFormat>(format).format(number);
}

wstring format_date(Date date, wstring_view format) {
    return kept_format<DateFormat>(format).format(date, DatePattern::asked);
}

wstring format_bool(bool value, wstring_view format) {
    return kept_format<BoolFormat>(format).format(value);
}

wstring format_nothing(wstring_view format) {
    wstring text;
    for (FormatItem& item : format_items(format, all_items())) {
        if (item.term == numeric_item::kEmpty) // the first of its name
            text = std::move(item.value);
    }
    return text;
}

std::optional<Numeric> parse_number(wstring_view text, wstring_view format) {
    const wchar* end = nullptr;
    const wstring_view trimmed = trim_right(text);
    Numeric number;
    const bool done = kept_format<NumericFormat>(format).parse(trimmed, number, &end);
    return done && end == trimmed.data() + trimmed.size() ? std::optional(std::move(number)) : std::nullopt;
}

std::optional<Date> parse_date(wstring_view text, wstring_view format) {
    const wchar* end = nullptr;
    const wstring_view trimmed = trim_right(text);
    Date date;
    const bool done = kept_format<DateFormat>(format).parse(trimmed, date, &end, DatePattern::asked);
    return done && end == trimmed.data() + trimmed.size() ? std::optional(date) : std::nullopt;
}

} // namespace core
