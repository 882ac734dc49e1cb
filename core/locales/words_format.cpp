// SPDX-License-Identifier: Apache-2.0
#include "core/locales/currency_nouns.h"
#include "core/locales/format_items.h"
#include "core/locales/speller.h"

#include <core/locales/errors.h>
#include <core/locales/words_format.h>
#include <core/runtime/utf8.h>
#include <core/strings/compare.h>
#include <core/strings/integer_text.h>
#include <core/strings/split.h>
#include <core/strings/trim.h>

#include <algorithm>
#include <initializer_list>

namespace core {
namespace {

enum ItemNumber : std::size_t {
    kWordsLocale,
    kKind,
    kGender,
    kCase,
    kUnit,
    kUnitGender,
    kPart,
    kPartGender,
    kPartForm,
    kCurrency
};
constexpr NamePair kNames[] = {
    {u"locale", u"локаль"},   {u"kind", u"вид"},           {u"gender", u"род"},
    {u"case", u"падеж"},      {u"unit", u"единица"},       {u"unitGender", u"родЕдиницы"},
    {u"part", u"доля"},       {u"partGender", u"родДоли"}, {u"partForm", u"видДоли"},
    {u"currency", u"валюта"},
};
constexpr NamePair kKinds[] = {{u"cardinal", u"количественное"}, {u"ordinal", u"порядковое"}};
constexpr NamePair kGenders[] = {{u"m", u"м"}, {u"f", u"ж"}, {u"n", u"с"}, {u"p", u"мн"}};
constexpr NamePair kCases[] = {{u"nominative", u"именительный"},   {u"genitive", u"родительный"},
                               {u"dative", u"дательный"},          {u"accusative", u"винительный"},
                               {u"instrumental", u"творительный"}, {u"prepositional", u"предложный"}};
constexpr NamePair kForms[] = {{u"words", u"слова"}, {u"digits", u"цифры"}};

/// How the languages call the rules of each gender, a language without genders last, and of each case.
constexpr const wchar* kGenderRules[][4] = {{u"-masculine", u"-common", u"-reale", u""},
                                            {u"-feminine", u"-common", u"-reale", u""},
                                            {u"-neuter", u""},
                                            {u"-plural", u""}};
constexpr const wchar* kCaseRules[][2] = {
    {u""}, {u"-genitive"}, {u"-dative"}, {u"-accusative"}, {u"-instrumental", u"-ablative"}, {u"-locative"}};

constexpr wstring_view kCardinal = u"%spellout-cardinal";
constexpr wstring_view kOrdinal = u"%spellout-ordinal";
constexpr wstring_view kCounting = u"%spellout-numbering"; // as one counts: "eins", not "ein"

/// The rules of a gender and a case; none where the language has no such forms.
std::optional<wstring> rules_of(const Speller& speller, wstring_view kind, std::size_t gender,
                                std::size_t grammaticalCase) {
    for (const wchar* const genderEnding : kGenderRules[gender]) {
        for (const wchar* const caseEnding : kCaseRules[grammaticalCase]) {
            if (genderEnding == nullptr || caseEnding == nullptr)
                continue;
            wstring rules(kind);
            rules.append(genderEnding).append(caseEnding);
            if (speller.has(rules))
                return rules;
        }
    }
    return std::nullopt;
}

class Items {
  public:
    explicit Items(wstring_view format) : items_(format_items(format, kNames)) {}

    [[nodiscard]] const FormatItem* find(ItemNumber number) const noexcept {
        const auto found = std::ranges::find(items_, number, &FormatItem::term);
        return found != items_.end() ? &*found : nullptr;
    }
    /// The first item that is there of some, or null.
    [[nodiscard]] const FormatItem* find(std::initializer_list<ItemNumber> numbers) const noexcept {
        for (const ItemNumber number : numbers) {
            if (const FormatItem* const item = find(number))
                return item;
        }
        return nullptr;
    }
    /// The index of the word that an item gives; 0 where it is left out.
    [[nodiscard]] std::size_t word(ItemNumber number, std::span<const NamePair> words) const {
        const FormatItem* const item = find(number);
        if (item == nullptr)
            return 0;
        const auto word = find_word(item->value, words);
        if (!word)
            item->refuse();
        return *word;
    }
    void refuse(std::initializer_list<ItemNumber> numbers) const {
        if (const FormatItem* const item = find(numbers))
            item->refuse();
    }

  private:
    std::vector<FormatItem> items_;
};

/// The forms of a noun, one of which may stand for all; none when they are not as many as wanted.
std::optional<std::vector<wstring>> noun_forms(wstring_view text, std::size_t wanted) {
    std::vector<wstring> forms;
    for (const wstring_view form : string_tokenize(text, u",", EmptyTokens::keep))
        forms.emplace_back(trim_all(form));
    const bool whole = std::ranges::none_of(forms, &wstring::empty);
    if (!whole || (forms.size() != wanted && forms.size() != 1))
        return std::nullopt;
    forms.resize(wanted, forms.front());
    return forms;
}

} // namespace

/// Reads the words of a format: which rules spell what.
class WordsReader {
  public:
    WordsReader(const Items& items, const Speller& speller)
        : items_(items), speller_(speller), case_(items.word(kCase, kCases)) {}

    [[nodiscard]] wstring numberRules() const {
        const bool ordinal = items_.word(kKind, kKinds) != 0;
        const bool plain = !ordinal && items_.find({kGender, kCase}) == nullptr;
        if (plain && speller_.has(kCounting))
            return wstring(kCounting);
        return rules(ordinal ? kOrdinal : kCardinal, items_.word(kGender, kGenders));
    }
    [[nodiscard]] WordsFormat::Noun noun(ItemNumber forms, ItemNumber gender) const {
        return {formsOf(items_.find(forms)->value), rules(kCardinal, items_.word(gender, kGenders))};
    }
    /// Of a currency, as the table has it.
    [[nodiscard]] WordsFormat::Noun noun(wstring_view forms, wchar gender) const {
        const auto index = find_word(wstring_view(&gender, 1), kGenders);
        return {formsOf(forms), rules(kCardinal, *index)};
    }

  private:
    [[nodiscard]] std::vector<wstring> formsOf(wstring_view text) const {
        auto forms = noun_forms(text, speller_.nounForms());
        if (!forms)
            throw_error<CtorException>(messages::kNounForms,
                                       {wstring(text), string_intto(speller_.nounForms())});
        return std::move(*forms);
    }
    [[nodiscard]] wstring rules(wstring_view kind, std::size_t gender) const {
        auto found = rules_of(speller_, kind, gender, case_);
        if (!found)
            items_.refuse({kCase, kGender, kUnitGender, kPartGender, kKind});
        return found ? std::move(*found) : wstring(kind);
    }

    const Items& items_;
    const Speller& speller_;
    std::size_t case_;
};

namespace {

const CurrencyNouns& nouns_of(const FormatItem& item, const Locale& locale) {
    for (const CurrencyNouns& nouns : currency_nouns()) {
        if (compare_nocase(nouns.currency, item.value) == 0 && nouns.language == locale.language())
            return nouns;
    }
    throw_error<CtorException>(messages::kNoCurrency, {item.value, from_utf8(locale.key())});
}

/// A whole number that may be a negative zero: the rules put "minus " in front of the others.
wstring spelled(const Speller& speller, std::int64_t number, bool negative, wstring_view rules) {
    if (!negative || number != 0)
        return speller.spell(negative ? -number : number, rules);
    const wstring one = speller.spell(std::int64_t{1}, rules);
    const wstring minusOne = speller.spell(std::int64_t{-1}, rules);
    const std::size_t minus = minusOne.find(one);
    return minusOne.substr(0, minus == wstring::npos ? 0 : minus) + speller.spell(number, rules);
}

/// The whole part, which the rules of no language spell from 10^18 on.
std::int64_t whole_of(const Numeric& number, const Locale& locale) {
    constexpr std::int64_t kEnd = 1'000'000'000'000'000'000;
    if (number.compare(Numeric(kEnd)) >= 0)
        throw_error<LocaleException>(messages::kNumberWithoutWords,
                                     {number.toString(), from_utf8(locale.key())});
    return static_cast<std::int64_t>(number);
}

} // namespace

WordsFormat::WordsFormat(wstring_view format, const Locale& locale) : locale_(locale) {
    const Items items(format);
    if (const FormatItem* const item = items.find(kWordsLocale))
        locale_ = item->locale();
    if (locale_ == Locale())
        locale_ = Locale("en");
    const Speller& speller = Speller::of(locale_);
    const WordsReader reader(items, speller);
    const FormatItem* const currency = items.find(kCurrency);
    if (currency == nullptr && items.find(kUnit) == nullptr) {
        items.refuse({kUnitGender, kPart, kPartGender, kPartForm});
        rules_ = reader.numberRules();
        mayHaveFraction_ = items.word(kKind, kKinds) == 0 && items.word(kCase, kCases) == 0;
        return;
    }
    items.refuse({kKind, kGender});
    if (currency != nullptr) {
        items.refuse({kUnit, kUnitGender, kPart, kPartGender});
        const CurrencyNouns& nouns = nouns_of(*currency, locale_);
        unit_ = reader.noun(nouns.unit, nouns.unitGender);
        if (!nouns.part.empty())
            part_ = reader.noun(nouns.part, nouns.partGender);
        partDigits_ = nouns.partDigits;
    } else {
        unit_ = reader.noun(kUnit, kUnitGender);
        if (items.find(kPart) != nullptr) {
            part_ = reader.noun(kPart, kPartGender);
            partDigits_ = 2;
        }
    }
    if (part_.forms.empty())
        items.refuse({kPartGender, kPartForm});
    partInDigits_ = items.word(kPartForm, kForms) != 0;
}

wstring WordsFormat::amount(const Numeric& number) const {
    const Speller& speller = Speller::of(locale_);
    const Numeric shown = part_.forms.empty() ? number : number.round(partDigits_);
    const std::int64_t whole = whole_of(shown.abs(), locale_);
    const Numeric fraction = shown.abs() - Numeric(whole);
    wstring text;
    const auto append = [&](std::int64_t count, const Noun& noun, wstring_view words) {
        text.append(words) += u' ';
        text += noun.forms[speller.nounForm(static_cast<std::uint64_t>(count))];
    };
    append(whole, unit_, spelled(speller, whole, shown.sign() < 0, unit_.rules));
    if (part_.forms.empty()) {
        if (fraction.sign() != 0)
            throw_error<LocaleException>(messages::kNumberNotWhole, {number.toString()});
        return text;
    }
    const std::int64_t part = *fraction.scaled(static_cast<std::uint32_t>(partDigits_));
    text += u' ';
    if (!partInDigits_) {
        append(part, part_, speller.spell(part, part_.rules));
    } else {
        wstring digits = string_intto(part);
        digits.insert(0, static_cast<std::size_t>(partDigits_) - digits.size(), u'0');
        append(part, part_, digits);
    }
    return text;
}

wstring WordsFormat::format(const Numeric& number) const {
    if (!unit_.forms.empty())
        return amount(number);
    constexpr std::int64_t kExact = 15; // digits that a double keeps
    const Speller& speller = Speller::of(locale_);
    const std::int64_t whole = whole_of(number.abs(), locale_);
    if (number.abs().compare(Numeric(whole)) == 0)
        return speller.spell(number.sign() < 0 ? -whole : whole, rules_);
    std::int64_t length = 0;
    std::int64_t precision = 0;
    number.lengthAndPrecision(length, precision);
    if (!mayHaveFraction_ || length > kExact)
        throw_error<LocaleException>(messages::kNumberNotWhole, {number.toString()});
    wstring words = speller.spell(static_cast<double>(number), rules_);
    // ICU has the masculine word here, behind a feminine number: "одна целый одна десятая".
    return locale_.isRussian() ? replace_all(words, u" целый ", u" целая ") : words;
}

} // namespace core
