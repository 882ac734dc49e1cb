// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/icu_length.h"
#include "core/runtime/locale_catalogue.h"

#include <core/runtime/errors.h>
#include <core/runtime/locale.h>
#include <core/runtime/utf8.h>

#include <unicode/localematcher.h>
#include <unicode/numsys.h>
#include <unicode/ucal.h>
#include <unicode/ucol.h>
#include <unicode/uenum.h>
#include <unicode/uregion.h>

#include <memory>

namespace core {
namespace {

std::string joined(const std::string& language, const std::string& script, const std::string& region) {
    return language + (script.empty() ? "" : '_' + script) + (region.empty() ? "" : '_' + region);
}

bool is_region(const char* code) {
    UErrorCode status = U_ZERO_ERROR;
    const URegion* const region = uregion_getRegionFromCode(code, &status);
    return U_SUCCESS(status) && uregion_getType(region) != URGN_UNKNOWN;
}

bool is_collation(std::string_view name) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UEnumeration, decltype(&uenum_close)> names(
        ucol_getKeywordValues("collation", &status), &uenum_close);
    while (const char* const known = uenum_next(names.get(), nullptr, &status)) {
        if (known == name)
            return true;
    }
    return false;
}

bool are_digits(const std::string& name) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::NumberingSystem> system(
        icu::NumberingSystem::createInstanceByName(name.c_str(), status));
    return U_SUCCESS(status);
}

/// Whether the keywords are those that a language tag can hold, with an order and digits that there are.
bool has_known_keywords(const icu::Locale& locale) {
    UErrorCode status = U_ZERO_ERROR;
    char tag[ULOC_FULLNAME_CAPACITY];
    static_cast<void>(uloc_toLanguageTag(locale.getName(), tag, ULOC_FULLNAME_CAPACITY, true, &status));
    const auto value = [&](const char* keyword) {
        UErrorCode missing = U_ZERO_ERROR;
        return locale.getKeywordValue<std::string>(keyword, missing);
    };
    const std::string collation = value("collation");
    const std::string digits = value("numbers");
    return U_SUCCESS(status) && (collation.empty() || is_collation(collation)) &&
           (digits.empty() || are_digits(digits));
}

/// Of the forms of a key that differ in the script alone, the one that ICU lists, else the one with a script
/// only where it is not the usual script of the language.
std::string usual_form(const icu::Locale& locale) {
    const std::string language = locale.getLanguage();
    const std::string script = detail::script_of(locale);
    std::string with = joined(language, script, locale.getCountry());
    std::string without = joined(language, {}, locale.getCountry());
    const auto means_the_same = [&](const std::string& key) {
        return detail::script_of(icu::Locale(key.c_str())) == script;
    };
    if (detail::is_listed_locale(with))
        return with;
    if (detail::is_listed_locale(without) && means_the_same(without))
        return without;
    return means_the_same(language) ? without : with;
}

/// The one form of a key that is known; none for any other key.
std::optional<std::string> known_key(std::string_view key) {
    constexpr std::size_t kLongest = 150;          // ULOC_FULLNAME_CAPACITY, which ICU may cut at
    constexpr std::string_view kOutside(".\0", 2); // a "." begins the name of an encoding
    if (key.empty() || key == "root" || key == "und")
        return std::string();
    if (detail::is_listed_locale(key))
        return std::string(key);
    if (key.size() > kLongest || key.find_first_of(kOutside) != std::string_view::npos)
        return std::nullopt;
    const icu::Locale locale = icu::Locale::createCanonical(std::string(key).c_str());
    const std::string_view full = locale.getName();
    const std::string_view base = full.substr(0, full.find('@'));
    std::string form(base);
    if (!detail::is_listed_locale(base)) {
        const bool hasRegion = *locale.getCountry() != '\0';
        if (base != joined(locale.getLanguage(), locale.getScript(), locale.getCountry()) ||
            !detail::is_listed_language(locale) || (hasRegion && !is_region(locale.getCountry())))
            return std::nullopt;
        form = usual_form(locale);
    }
    if (base.size() == full.size())
        return form;
    if (!has_known_keywords(locale))
        return std::nullopt;
    return form.append(full.substr(base.size()));
}

} // namespace

Locale::Locale(std::string_view key) {
    std::optional<std::string> known = known_key(key);
    if (!known)
        throw_error<LocaleException>(messages::kUnknownLocale, {from_utf8(key)});
    key_ = std::move(*known);
}

std::string Locale::language() const {
    return key_.substr(0, key_.find_first_of("_@"));
}

std::string Locale::region() const {
    return icu::Locale(key_.c_str()).getCountry();
}

Locale Locale::parent() const {
    Locale parent;
    if (const std::size_t keywords = key_.find('@'); keywords != std::string::npos)
        parent.key_ = key_.substr(0, keywords);
    else
        parent.key_ = detail::parent_key(key_);
    return parent;
}

wstring Locale::name(const Locale& reader) const {
    wstring name(100, u'\0');
    for (;;) {
        UErrorCode status = U_ZERO_ERROR;
        const std::int32_t length = uloc_getDisplayName(key_.c_str(), reader.key_.c_str(), name.data(),
                                                        icu_length(name.size()), &status);
        const bool fits = status != U_BUFFER_OVERFLOW_ERROR;
        name.resize(static_cast<std::size_t>(length));
        if (fits)
            return name;
    }
}

bool Locale::isRightToLeft() const noexcept {
    return uloc_isRightToLeft(key_.c_str()) != 0;
}

int Locale::firstDayOfWeek() const {
    // Without a region ICU takes the likeliest one of the language; the root has none: that of the world.
    const char* const key = key_.empty() ? "und_001" : key_.c_str();
    UErrorCode status = U_ZERO_ERROR;
    UCalendar* const calendar = ucal_open(u"GMT", 3, key, UCAL_GREGORIAN, &status);
    const int day = ucal_getAttribute(calendar, UCAL_FIRST_DAY_OF_WEEK); // 1 is Sunday
    ucal_close(calendar);
    return (day + 5) % 7 + 1;
}

std::vector<Locale> Locale::all() {
    std::vector<Locale> all;
    for (const std::string& key : detail::listed_locales())
        all.emplace_back().key_ = key;
    return all;
}

std::optional<Locale> best_match(std::span<const Locale> wishes, std::span<const Locale> available) {
    const auto all = [](std::span<const Locale> locales) {
        std::vector<icu::Locale> found;
        for (const Locale& locale : locales)
            found.emplace_back(locale.key().c_str());
        return found;
    };
    const std::vector<icu::Locale> wished = all(wishes);
    const std::vector<icu::Locale> offered = all(available);
    icu::Locale::RangeIterator wish(wished.begin(), wished.end());
    icu::Locale::RangeIterator offer(offered.begin(), offered.end());
    UErrorCode status = U_ZERO_ERROR;
    const icu::LocaleMatcher matcher =
        icu::LocaleMatcher::Builder().setSupportedLocales(offer).setNoDefaultLocale().build(status);
    if (U_FAILURE(status))
        return std::nullopt;
    const int found = matcher.getBestMatchResult(wish, status).getSupportedIndex();
    return found >= 0 ? std::optional(available[static_cast<std::size_t>(found)]) : std::nullopt;
}

} // namespace core
