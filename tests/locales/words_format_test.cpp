// SPDX-License-Identifier: Apache-2.0
// Numbers and amounts in words: Russian against a speller of the test's own, other languages by sample; what
// has no words is an error, and never digits or another language.
#include "core/locales/currency_nouns.h"

#include <core/locales/words_format.h>
#include <core/runtime/errors.h>
#include <core/runtime/utf8.h>
#include <core/strings/split.h>

#include <gtest/gtest.h>
#include <unicode/ucurr.h>

#include <cmath>
#include <random>
#include <set>

using namespace core;

namespace {

std::string words(std::string_view number, wstring_view format, const char* locale = "ru") {
    return to_utf8(WordsFormat(format, Locale(locale)).format(*Numeric::parse(number)));
}

/// Which form stands behind a Russian number: "рубль", "рубля", "рублей".
std::size_t russian_form(std::uint64_t number) {
    const std::uint64_t ones = number % 10;
    if (number / 10 % 10 == 1 || ones == 0 || ones > 4)
        return 2;
    return ones == 1 ? 0 : 1;
}

enum Gender { masculine, feminine, neuter };

std::string russian_below_thousand(unsigned number, Gender gender) {
    static const char* const kHundreds[] = {"",        "сто",      "двести",  "триста",    "четыреста",
                                            "пятьсот", "шестьсот", "семьсот", "восемьсот", "девятьсот"};
    static const char* const kTens[] = {"",          "",           "двадцать",  "тридцать",    "сорок",
                                        "пятьдесят", "шестьдесят", "семьдесят", "восемьдесят", "девяносто"};
    static const char* const kOnes[] = {
        "",           "один",        "два",        "три",          "четыре",
        "пять",       "шесть",       "семь",       "восемь",       "девять",
        "десять",     "одиннадцать", "двенадцать", "тринадцать",   "четырнадцать",
        "пятнадцать", "шестнадцать", "семнадцать", "восемнадцать", "девятнадцать"};
    std::string text;
    const auto add = [&](const std::string& word) {
        if (!word.empty())
            text += (text.empty() ? "" : " ") + word;
    };
    add(kHundreds[number / 100]);
    number %= 100;
    if (number >= 20) {
        add(kTens[number / 10]);
        number %= 10;
    }
    if (number == 1)
        add(gender == masculine ? "один" : gender == feminine ? "одна" : "одно");
    else if (number == 2)
        add(gender == feminine ? "две" : "два");
    else
        add(kOnes[number]);
    return text;
}

std::string russian(std::uint64_t number, Gender gender) {
    static const char* const kThousands[][3] = {{"квадриллион", "квадриллиона", "квадриллионов"},
                                                {"триллион", "триллиона", "триллионов"},
                                                {"миллиард", "миллиарда", "миллиардов"},
                                                {"миллион", "миллиона", "миллионов"},
                                                {"тысяча", "тысячи", "тысяч"}};
    if (number == 0)
        return "ноль";
    std::string text;
    std::uint64_t scale = 1'000'000'000'000'000;
    for (const auto& names : kThousands) {
        const auto count = static_cast<unsigned>(number / scale % 1000);
        if (count != 0)
            text += (text.empty() ? "" : " ") +
                    russian_below_thousand(count, scale == 1000 ? feminine : masculine) + ' ' +
                    names[russian_form(count)];
        scale /= 1000;
    }
    if (number % 1000 != 0)
        text +=
            (text.empty() ? "" : " ") + russian_below_thousand(static_cast<unsigned>(number % 1000), gender);
    return text;
}

template <class E>
void expect_error(std::initializer_list<wstring_view> formats, const char* locale = "ru") {
    for (const wstring_view format : formats)
        EXPECT_THROW(static_cast<void>(WordsFormat(format, Locale(locale))), E) << to_utf8(format);
}

} // namespace

TEST(WordsFormat, RussianNumbersAndAmountsInEveryGender) {
    std::mt19937_64 random(11);
    const std::pair<Gender, std::string> genders[] = {{masculine, "m"}, {feminine, "ж"}, {neuter, "n"}};
    const std::string forms[] = {"a", "b", "c"};
    for (int i = 0; i < 3000; ++i) {
        const std::uint64_t number =
            i < 200 ? static_cast<std::uint64_t>(i)
                    : random() % static_cast<std::uint64_t>(std::pow(10.0, 1 + random() % 18));
        const auto part = static_cast<unsigned>(random() % 100);
        const auto& [gender, letter] = genders[random() % 3];
        const auto& [partGender, partLetter] = genders[random() % 3];
        const bool negative = random() % 4 == 0 && number != 0;
        const std::string sign = negative ? "минус " : "";
        const std::string digits = (negative ? "-" : "") + std::to_string(number);
        EXPECT_EQ(words(digits, from_utf8("gender=" + letter)), sign + russian(number, gender));
        const std::string amount = digits + '.' + std::to_string(part / 10) + std::to_string(part % 10);
        EXPECT_EQ(words(amount, from_utf8("unit=a,b,c; unitGender=" + letter +
                                          "; доля=a, b ,c; родДоли=" + partLetter)),
                  sign + russian(number, gender) + ' ' + forms[russian_form(number)] + ' ' +
                      russian(part, partGender) + ' ' + forms[russian_form(part)])
            << amount;
    }
}

TEST(WordsFormat, OrdinalsAndCases) {
    EXPECT_EQ(words("21", u""), "двадцать один");
    EXPECT_EQ(words("21", u"kind=ordinal; gender=f"), "двадцать первая");
    EXPECT_EQ(words("2024", u"вид=порядковое; род=м; падеж=родительный"), "две тысячи двадцать четвертого");
    EXPECT_EQ(words("21", u"case=genitive; gender=m"), "двадцати одного");
    EXPECT_EQ(words("5", u"case=instrumental"), "пятью");
    EXPECT_EQ(words("2", u"case=prepositional; gender=f"), "двух");
    EXPECT_EQ(words("1", u"gender=p"), "одни");
    EXPECT_EQ(words("-0.50", u"unit=рубль,рубля,рублей; part=копейка,копейки,копеек; partGender=f"),
              "минус ноль рублей пятьдесят копеек");
    EXPECT_EQ(words("21.505",
                    u"case=genitive; unit=рубля,рублей,рублей; part=копейки,копеек,копеек; partGender=f; "
                    u"partForm=digits"),
              "двадцати одного рубля 51 копейки");
    EXPECT_EQ(words("100.05", u"currency=rub; partForm=digits"), "сто рублей 05 копеек");
    EXPECT_EQ(words("2.001", u"валюта=KWD"), "два кувейтских динара один филс");
    EXPECT_EQ(words("22", u"currency=JPY"), "двадцать две иены");
    EXPECT_EQ(words("1.1", u""), "одна целая одна десятая");
    EXPECT_EQ(words("-21.25", u""), "минус двадцать одна целая двадцать пять сотых");
}

TEST(WordsFormat, OtherLanguages) {
    EXPECT_EQ(words("1234567", u"", "en"),
              "one million two hundred thirty-four thousand five hundred sixty-seven");
    EXPECT_EQ(words("21", u"locale=en; kind=ordinal"), "twenty-first");
    EXPECT_EQ(words("21.50", u"currency=USD", "en_GB"), "twenty-one dollars fifty cents");
    EXPECT_EQ(words("1.01", u"unit=dollar,dollars; unitGender=m; part=cent,cents", "en"),
              "one dollar one cent");
    EXPECT_EQ(words("12.25", u"", "en"), "twelve point two five");
    EXPECT_EQ(words("21", u"", "de"), "einundzwanzig") << "without the marks of where a line may break";
    EXPECT_EQ(words("1", u"", "de"), "eins");
    EXPECT_EQ(words("1", u"unit=Euro", "de"), "ein Euro");
    EXPECT_EQ(words("22", u"unit=złoty,złote,złotych", "pl"), "dwadzieścia dwa złote");
    EXPECT_EQ(words("1000000", u"unit=euro,euros", "fr"), "un million euros");
    EXPECT_EQ(words("3", u"unit=sekunda,sekundi,sekunde,sekund; unitGender=f", "sl"), "tri sekunde");
    int spoken = 0;
    for (const Locale& locale : Locale::all()) {
        try {
            const WordsFormat format(u"", locale);
            std::set<wstring> seen;
            for (int number = 0; number <= 30; ++number)
                EXPECT_TRUE(seen.insert(format.format(Numeric(number))).second) << locale.key() << number;
            ++spoken;
        } catch (const LocaleException&) {
        }
    }
    EXPECT_GT(spoken, 300);
}

TEST(WordsFormat, WhatHasNoWordsIsAnError) {
    EXPECT_EQ(words("999999999999999999", u"").substr(0, 18), "девятьсот");
    for (const char* const large :
         {"1000000000000000000", "-1000000000000000000", "123456789012345678901234567890"}) {
        EXPECT_THROW(words(large, u""), LocaleException) << large;
        EXPECT_THROW(words(large, u"currency=RUB"), LocaleException) << large;
    }
    EXPECT_THROW(words("999999999999999999.999", u"currency=RUB"), LocaleException) << "it rounds up";
    EXPECT_THROW(words("1.5", u"unit=a"), LocaleException);
    EXPECT_THROW(words("1.5", u"currency=JPY"), LocaleException);
    EXPECT_THROW(words("1.5", u"kind=ordinal"), LocaleException);
    EXPECT_THROW(words("1.5", u"case=genitive"), LocaleException);
    EXPECT_THROW(words("123456789.01234567", u""), LocaleException) << "a double does not hold it";
    EXPECT_EQ(words("21", u"", ""), "twenty-one") << "the root locale stands for English";
    expect_error<LocaleException>({u"locale=zu"});
    expect_error<CtorException>({u"locale=en_XX", u"locale=xx"});
    expect_error<CtorException>({u"unit=a,b", u"unit=a,b,c,d", u"unit=a,,c", u"unit=", u"part=a,b,c",
                                 u"unitGender=m", u"unit=a; partGender=f", u"unit=a; partForm=digits",
                                 u"unit=a; kind=ordinal", u"unit=a; gender=f", u"gender=x", u"kind=nothing",
                                 u"case=vocative", u"nothing=1", u"currency=XXX", u"currency=RUB; unit=a",
                                 u"currency=JPY; partForm=digits", u"gender=m; род=ж", u"unit=a; unit=b"});
    expect_error<CtorException>({u"case=genitive", u"currency=RUB; case=dative"}, "en");
    expect_error<CtorException>({u"currency=RUB"}, "de");
}

TEST(WordsFormat, TheTableOfCurrenciesIsWhole) {
    std::set<wstring> codes;
    const CurrencyNouns* before = nullptr;
    for (const CurrencyNouns& nouns : currency_nouns()) {
        if (before != nullptr) {
            EXPECT_LT(std::pair(before->currency, before->language),
                      std::pair(nouns.currency, nouns.language));
        }
        before = &nouns;
        const wstring code(nouns.currency);
        codes.insert(code);
        UErrorCode status = U_ZERO_ERROR;
        EXPECT_NE(ucurr_getNumericCode(code.c_str()), 0) << to_utf8(code);
        const int digits = ucurr_getDefaultFractionDigits(code.c_str(), &status);
        EXPECT_EQ(nouns.partDigits, digits) << to_utf8(code);
        EXPECT_EQ(nouns.part.empty(), digits == 0) << to_utf8(code);
        const std::size_t forms = nouns.language == "ru" ? 3U : 2U;
        for (const wstring_view noun : {nouns.unit, nouns.part})
            EXPECT_TRUE(noun.empty() || string_tokenize(noun, u",", EmptyTokens::keep).size() == forms)
                << to_utf8(noun);
        EXPECT_NO_THROW(words("1", u"currency=" + code, std::string(nouns.language).c_str()));
    }
    EXPECT_GE(codes.size(), 12U);
    EXPECT_EQ(currency_nouns().size(), codes.size() * 2) << "each in English and in Russian";
}
