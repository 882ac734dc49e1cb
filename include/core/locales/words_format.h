// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/numbers/numeric.h>
#include <core/runtime/api.h>
#include <core/runtime/locale.h>
#include <core/runtime/types.h>

#include <vector>

namespace core {

/// Numbers and amounts in words: 21 is "двадцать один", and with nouns 21.50 is "двадцать один рубль
/// пятьдесят копеек".
///
/// A format string may hold
///   locale=key           the language; that of the constructor where it is left out
///   kind=ordinal         "twenty-first" instead of "twenty-one"; of whole numbers
///   gender=m|f|n|p       the gender of the number, p for plural; the languages decide which there are
///   case=genitive        nominative, genitive, dative, accusative, instrumental or prepositional
///   unit=one,few,many    what is counted, in as many forms as the language has for whole numbers, in the
///                        order zero, one, two, few, many, other: "рубль,рубля,рублей", "dollar,dollars"
///   unitGender=m|f|n|p   its gender, m where it is left out
///   part=one,few,many    what a hundredth of the unit is called
///   partGender=m|f|n|p   its gender, m where it is left out
///   partForm=digits      the part as two digits: "50 копеек"
///   currency=RUB         unit and part, with their genders, of a currency that is known in that language
/// each at most once, under its English or Russian name. An amount is rounded to the digits of its part, in
/// the process's mode. A value type; one object may be used by many threads.
class WordsFormat {
  public:
    /// Makes the format of a format string; `locale` is the language where it names none, and the root locale
    /// stands for English. Throws
    /// CtorException for a malformed format and for a gender, case or noun that the language has no form
    /// for, LocaleException for a language without rules, and std::bad_alloc.
    CORE_API explicit WordsFormat(wstring_view format, const Locale& locale);

    /// Returns the number in words. Throws LocaleException for a number that has no words: one that the rules
    /// of the language do not reach, mostly from 10^18, one with a fraction where the format names whole
    /// things, and one with a fraction and more than 15 digits. Throws std::bad_alloc.
    [[nodiscard]] CORE_API wstring format(const Numeric& number) const;

  private:
    friend class WordsReader;

    /// What is counted: forms by the categories of the language's plurals, and the rules for its gender.
    struct Noun {
        std::vector<wstring> forms;
        wstring rules;
    };
    [[nodiscard]] wstring amount(const Numeric& number) const;

    Locale locale_;
    wstring rules_; ///< of numbers without nouns
    bool mayHaveFraction_ = false;
    Noun unit_;                   ///< no forms: a number alone
    Noun part_;                   ///< no forms: the unit has no part
    std::int32_t partDigits_ = 0; ///< of the fraction that the part counts
    bool partInDigits_ = false;
};

} // namespace core
