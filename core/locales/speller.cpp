// SPDX-License-Identifier: Apache-2.0
#include "core/locales/speller.h"

#include "core/locales/cached_format.h"
#include "core/runtime/icu_length.h"

#include <core/locales/errors.h>
#include <core/numbers/numeric.h>
#include <core/runtime/utf8.h>
#include <core/strings/integer_text.h>

#include <unicode/uchar.h>

#include <algorithm>
#include <optional>

namespace core {
namespace {

icu::UnicodeString icu_text(wstring_view text) {
    return {false, text.data(), icu_length(text.size())}; // borrows
}

icu::Locale icu_locale(const Locale& locale) {
    return icu::Locale(locale.key().c_str());
}

/// Whether the rules are those of the language: where there are none, ICU takes the system's language.
bool is_own(const icu::RuleBasedNumberFormat& rules, const Locale& locale) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Locale found = rules.getLocale(ULOC_VALID_LOCALE, status);
    for (Locale at = locale; U_SUCCESS(status) && at != Locale(); at = at.parent()) {
        if (at.key() == found.getName())
            return true;
    }
    return false;
}

/// The text without marks of where a line may break. None when it has digits: then the rules have no words.
std::optional<wstring> words_of(const icu::UnicodeString& text) {
    wstring words;
    for (std::int32_t i = 0; i < text.length(); ++i) {
        const wchar unit = text[i];
        if (u_isdigit(text.char32At(i)) != 0)
            return std::nullopt;
        if (unit != u'\u00AD' && unit != u'\u200B')
            words += unit;
    }
    return words;
}

wstring text_of(std::int64_t number) {
    return string_intto(number);
}
wstring text_of(double number) {
    return Numeric(number).toString();
}

} // namespace

const Speller& Speller::of(const Locale& locale) {
    return cached_format<Speller>(locale);
}

Speller::Speller(const Locale& locale) : locale_(locale) {
    UErrorCode status = U_ZERO_ERROR;
    rules_ = std::make_unique<icu::RuleBasedNumberFormat>(icu::URBNF_SPELLOUT, icu_locale(locale), status);
    plurals_.reset(icu::PluralRules::forLocale(icu_locale(locale), status));
    if (U_FAILURE(status) || !is_own(*rules_, locale))
        throw_error<LocaleException>(messages::kNoWords, {from_utf8(locale.key())});
    constexpr int kSamples = 200; // a language that tells whole numbers apart does so below
    for (const char16_t* const category : {u"zero", u"one", u"two", u"few", u"many", u"other"}) {
        for (int number = 0; number < kSamples; ++number) {
            if (plurals_->select(number) == category) {
                categories_.emplace_back(category);
                break;
            }
        }
    }
}

bool Speller::has(wstring_view rules) const {
    const icu::UnicodeString wanted = icu_text(rules);
    for (std::int32_t i = 0; i < rules_->getNumberOfRuleSetNames(); ++i) {
        if (rules_->getRuleSetName(i) == wanted)
            return true;
    }
    return false;
}

template <class Number>
wstring Speller::spelled(Number number, wstring_view rules) const {
    icu::UnicodeString text;
    icu::FieldPosition nowhere;
    UErrorCode status = U_ZERO_ERROR;
    rules_->format(number, icu_text(rules), text, nowhere, status);
    std::optional<wstring> words;
    if (U_SUCCESS(status))
        words = words_of(text);
    if (!words)
        throw_error<LocaleException>(messages::kNumberWithoutWords,
                                     {text_of(number), from_utf8(locale_.key())});
    return std::move(*words);
}

wstring Speller::spell(std::int64_t number, wstring_view rules) const {
    return spelled(number, rules);
}

wstring Speller::spell(double number, wstring_view rules) const {
    return spelled(number, rules);
}

std::size_t Speller::nounForm(std::uint64_t number) const {
    constexpr std::uint64_t kBillion = 1'000'000'000;
    // A double holds what decides: the last digits, and whether there are others.
    const std::uint64_t same = number < kBillion ? number : kBillion + number % kBillion;
    const icu::UnicodeString category = plurals_->select(static_cast<double>(same));
    const auto found = std::find(categories_.begin(), categories_.end(), category);
    // What other numbers have, as the round millions of Romance languages.
    return found != categories_.end() ? static_cast<std::size_t>(found - categories_.begin())
                                      : categories_.size() - 1;
}

} // namespace core
