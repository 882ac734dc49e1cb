// SPDX-License-Identifier: Apache-2.0
#include "core/locales/known_locale.h"

#include <core/runtime/utf8.h>

#include <unicode/locid.h>

#include <algorithm>
#include <set>
#include <string>

namespace core {
namespace {

const std::set<std::string>& known_languages() {
    static const std::set<std::string> languages = [] {
        std::set<std::string> found;
        std::int32_t count = 0;
        const icu::Locale* const all = icu::Locale::getAvailableLocales(count);
        for (std::int32_t i = 0; i < count; ++i)
            found.insert(all[i].getLanguage());
        return found;
    }();
    return languages;
}

bool is_known_region(const std::string& region) {
    if (region.empty() || (region.size() == 3 && std::all_of(region.begin(), region.end(),
                                                             [](char c) { return c >= '0' && c <= '9'; })))
        return true;
    for (const char* const* country = icu::Locale::getISOCountries(); *country != nullptr; ++country) {
        if (region == *country)
            return true;
    }
    return region == "XK"; // in use, without being a code of the standard
}

} // namespace

std::optional<Locale> known_locale(wstring_view key) {
    const icu::Locale locale = icu::Locale::createCanonical(to_utf8(key).c_str());
    if (locale.isBogus() || !known_languages().contains(locale.getLanguage()) ||
        !is_known_region(locale.getCountry()))
        return std::nullopt;
    return Locale(locale.getName());
}

} // namespace core
