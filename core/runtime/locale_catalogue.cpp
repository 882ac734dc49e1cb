// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/locale_catalogue.h"

#include "core/runtime/icu_bundle.h"

#include <unicode/uloc.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <functional>
#include <map>

namespace core::detail {
namespace {

std::string language_and_script(const icu::Locale& locale) {
    return std::string(locale.getLanguage()) + '_' + script_of(locale);
}

using Parents = std::map<std::string, std::string, std::less<>>;

/// The locales whose parent is not the key without its last part.
Parents listed_parents() {
    Parents parents;
    UErrorCode status = U_ZERO_ERROR;
    const BundlePtr data(ures_openDirect(nullptr, "supplementalData", &status));
    const BundlePtr all(ures_getByKey(data.get(), "parentLocales", nullptr, &status));
    for (std::int32_t i = 0; U_SUCCESS(status) && i < ures_getSize(all.get()); ++i) {
        const BundlePtr children(ures_getByIndex(all.get(), i, nullptr, &status));
        std::string parent = ures_getKey(children.get());
        if (parent == "root")
            parent.clear();
        for (std::int32_t j = 0; U_SUCCESS(status) && j < ures_getSize(children.get()); ++j) {
            std::int32_t length = 0;
            const char16_t* const child = ures_getStringByIndex(children.get(), j, &length, &status);
            std::string key;
            if (U_SUCCESS(status))
                parents.emplace(icu::UnicodeString(child, length).toUTF8String(key), parent);
        }
    }
    return parents;
}

} // namespace

std::string script_of(icu::Locale locale) {
    UErrorCode status = U_ZERO_ERROR;
    locale.addLikelySubtags(status);
    return locale.getScript();
}

const std::vector<std::string>& listed_locales() {
    static const std::vector<std::string> keys = [] {
        std::vector<std::string> found;
        const std::int32_t count = uloc_countAvailable();
        found.reserve(static_cast<std::size_t>(count));
        for (std::int32_t i = 0; i < count; ++i)
            found.emplace_back(uloc_getAvailable(i));
        std::ranges::sort(found);
        return found;
    }();
    return keys;
}

bool is_listed_locale(std::string_view key) {
    return std::ranges::binary_search(listed_locales(), key, std::less<>());
}

bool is_listed_language(const icu::Locale& locale) {
    static const std::vector<std::string> languages = [] {
        std::vector<std::string> found;
        for (const std::string& key : listed_locales())
            found.push_back(language_and_script(icu::Locale(key.c_str())));
        std::ranges::sort(found);
        return found;
    }();
    return std::ranges::binary_search(languages, language_and_script(locale));
}

std::string_view parent_key(std::string_view key) {
    static const Parents parents = listed_parents();
    if (const auto found = parents.find(key); found != parents.end())
        return found->second;
    const std::size_t end = key.find_last_of('_');
    return end == std::string_view::npos ? std::string_view() : key.substr(0, end);
}

} // namespace core::detail
