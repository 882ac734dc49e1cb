// SPDX-License-Identifier: Apache-2.0
#include "core/locales/cached_format.h"
#include "core/locales/format_items.h"
#include "core/locales/format_names.h"

#include <core/locales/bool_format.h>
#include <core/locales/settings.h>
#include <core/strings/compare.h>
#include <core/strings/trim.h>

namespace core {

BoolFormat::BoolFormat(wstring_view format, const Locale& locale) {
    using namespace bool_item;
    const std::vector<FormatItem> items = format_items(format, kBoolItems);
    bool russian = locale.isRussian();
    for (const FormatItem& item : items) {
        if (item.term == bool_item::kLocale)
            russian = item.locale().isRussian();
    }
    true_ = russian ? u"Да" : u"Yes";
    false_ = russian ? u"Нет" : u"No";
    for (const FormatItem& item : items) {
        if (item.term == kTrue)
            true_ = item.text();
        else if (item.term == kFalse)
            false_ = item.text();
    }
    if (compare_nocase(true_, false_) == 0)
        items.back().refuse();
}

bool BoolFormat::parse(wstring_view text, bool& value, const wchar** end) const noexcept {
    const wstring_view rest = trim_left(text);
    const auto fits = [rest](const wstring& word) {
        return compare_nocase(rest.substr(0, word.size()), wstring_view(word)) == 0;
    };
    const bool preferred = true_.size() >= false_.size();
    for (const bool candidate : {preferred, !preferred}) {
        if (fits(format(candidate))) {
            value = candidate;
            if (end != nullptr)
                *end = rest.data() + format(candidate).size();
            return true;
        }
    }
    if (end != nullptr)
        *end = text.data();
    return false;
}

const BoolFormat& default_bool_format() {
    const Settings& settings = current_settings();
    return cached_format<BoolFormat>(settings.part<FormatSettings>().boolFormat, settings.locale);
}

} // namespace core
