// SPDX-License-Identifier: Apache-2.0
// The plain form and chosen ones: what is written reads back, what does not fit is not read.
#include "tests/locales/read_back.h"

#include <core/locales/numeric_format.h>
#include <core/runtime/utf8.h>

#include <random>
#include <tuple>
#include <utility>

namespace core {
namespace {

TEST(NumericFormat, PlainTextReadsBack) {
    const NumericFormat format;
    std::mt19937_64 random(1);
    for (int i = 0; i < 2000; ++i) {
        std::string digits = i % 2 == 0 ? "-" : "";
        for (std::size_t length = random() % 90 + 1; digits.size() < length;)
            digits += static_cast<char>('0' + random() % 10);
        digits += '.';
        digits += std::to_string(random());
        const Numeric number = Numeric::fromString(std::string_view(digits));
        const wstring text = format.format(number);
        Numeric back;
        ASSERT_EQ(read(format, text + u'x', back), static_cast<std::ptrdiff_t>(text.size()));
        ASSERT_EQ(back, number);
    }
    EXPECT_EQ(format.format(Numeric()), u"0");
    EXPECT_EQ(format.format(Numeric(-1234567) / Numeric(1000)), u"-1234.567");
    Numeric number(5);
    for (const wstring_view text : {u"", u"  ", u"-", u"abc", u"."})
        EXPECT_EQ(read(format, text, number), -1);
}

TEST(NumericFormat, GroupsRoundsAndReadsBack) {
    const NumericFormat format(u" Fraction = 2; point=,; group=' '; zero='''0'' pcs';");
    const std::pair<const char*, wstring_view> cases[] = {
        {"0", u"'0' pcs"},           {"0.004", u"'0' pcs"},
        {"-0.004", u"'0' pcs"},      {"1", u"1,00"},
        {"-12.345", u"-12,35"},      {"999.995", u"1 000,00"},
        {"123456.5", u"123 456,50"}, {"-100", u"-100,00"},
        {"1234567", u"1 234 567,00"}};
    for (const auto& [plain, text] : cases) {
        const Numeric number = Numeric::fromString(std::string_view(plain));
        Numeric back(7);
        EXPECT_EQ(format.format(number), text) << plain;
        EXPECT_EQ(read(format, text, back), static_cast<std::ptrdiff_t>(text.size())) << plain;
        EXPECT_EQ(back, number.round(2)) << plain;
    }
    const std::pair<wstring_view, std::ptrdiff_t> lengths[] = {
        {u"1234567,5", 9}, {u" +12 345x", 8}, {u"12 34", 2}, {u"12 3456", 2}, {u"1234 567", 4}, {u"1.5", 1},
        {u"5,", 2},        {u",5", 2},        {u" 12", 3},   {u",", -1},      {u"-", -1},       {u"'0", -1}};
    for (const auto& [text, length] : lengths) {
        Numeric number;
        EXPECT_EQ(read(format, text, number), length) << std::string(text.begin(), text.end());
    }
    Numeric number(1);
    EXPECT_EQ(read(NumericFormat(u"zero=-"), u"-5", number), 2);
    EXPECT_EQ(number, Numeric(-5));
    EXPECT_EQ(read(NumericFormat(u"zero=-"), u"-", number), 1);
    EXPECT_EQ(number, Numeric(0));
    EXPECT_EQ(NumericFormat(u"fraction=0").format(Numeric::fromString("0.6")), u"1");
}

TEST(NumericFormat, WhatAnyFormatWritesReadsBack) {
    const wstring_view formats[] = {u"locale=de",
                                    u"locale=hi; scale=percent",
                                    u"locale=ar_EG; sign=brackets",
                                    u"locale=ccp; fraction=..2",
                                    u"locale=en; grouping=4,2; sign=behind",
                                    u"locale=es; group=' '; point=' , '",
                                    u"locale=ru; digits=4",
                                    u"locale=ru; digits=..4; zero=''",
                                    u"digits=5..; whole=7; group=.; point=,",
                                    u"whole=12; group=' '; grouping=5",
                                    u"fraction=1..3; negative='(minus #)'; zero='()'",
                                    u"scale=1000; fraction=3..; negative='#CR'",
                                    u"locale=de_CH; scale=1000000"};
    std::mt19937_64 random(3);
    for (const wstring_view string : formats) {
        const NumericFormat format(string);
        for (int i = 0; i < 500; ++i) {
            const auto digits = static_cast<std::int64_t>(random() >> (random() % 64));
            const Numeric number =
                Numeric::fromScaled(digits >> 1, static_cast<std::uint32_t>(random() % 10)) *
                Numeric(random() % 2 == 0 ? 1 : -1);
            const wstring text = format.format(number);
            Numeric back(77);
            ASSERT_EQ(read(format, text, back), static_cast<std::ptrdiff_t>(text.size()))
                << to_utf8(string) << ": " << to_utf8(text);
            ASSERT_EQ(format.format(back), text) << to_utf8(string);
            // What was rounded is not far away.
            const Numeric error = (back - number).abs() * Numeric(1000);
            ASSERT_LE(error.compare(number.abs() + Numeric(10'000)), 0)
                << to_utf8(string) << ": " << to_utf8(text);
        }
    }
}

TEST(NumericFormat, NeverTakesOneLanguageForAnother) {
    const std::tuple<wstring_view, wstring_view, std::ptrdiff_t> cases[] = {
        {u"locale=ru", u"1.234,5", 1},
        {u"locale=en", u"1.234,5", 5},
        {u"locale=de", u"1,234.5", 5},
        {u"locale=de", u"1.234,5", 7},
        {u"locale=de", u"0.123", 1},
        {u"locale=de", u"1234.567", 4},
        {u"locale=de", u"1.23", 1},
        {u"locale=de", u"1.2345", 1},
        {u"locale=ru", u"1 234 567", 9},
        {u"locale=ru", u"1\u00A0234\u202F567,5", 11},
        {u"locale=ru", u"1 23", 1},
        {u"locale=ru", u"\u22125", 2},
        {u"locale=hi", u"12,34,567.5", 11},
        {u"locale=hi", u"1,234,567.5", 5},
        {u"locale=hi", u"123,45,678", 3},
        {u"locale=es", u"1.234", 5},
        {u"locale=de; scale=percent", u"5", -1},
        {u"locale=de; scale=percent", u"5 %", 3},
        {u"locale=ar_EG", u"-12", 3},
        {u"locale=de_CH", u"1'234", 5},
        {u"sign=brackets", u"(5", -1},
        {u"sign=brackets", u"-5", 2},
        {u"locale=en", u"", -1},
        {u"locale=en; zero=''", u"x", -1}};
    for (const auto& [string, text, length] : cases) {
        Numeric number;
        EXPECT_EQ(read(NumericFormat(string), text, number), length)
            << to_utf8(string) << ": " << to_utf8(text);
    }
    Numeric number(1);
    EXPECT_TRUE(NumericFormat(u"zero=''").parse(u" ", number));
    EXPECT_EQ(number, Numeric(0));
}

TEST(NumericFormat, RefusesBadStrings) {
    expect_refused<NumericFormat>({u"fraction",
                                   u"fraction=",
                                   u"fraction=-1",
                                   u"fraction=1001",
                                   u"fraction=99999999999",
                                   u"fraction=2x",
                                   u"point=",
                                   u"point='a1'",
                                   u"fraction=3..2",
                                   u"fraction=..",
                                   u"fraction=..2000",
                                   u"digits=0",
                                   u"digits=2; fraction=2",
                                   u"whole=0",
                                   u"point=' '; group='\u00A0'",
                                   u"group=5",
                                   u"grouping=3",
                                   u"group=,; grouping=3,0",
                                   u"group=,; grouping=0",
                                   u"group=,; grouping=x",
                                   u"sign=left",
                                   u"scale=20",
                                   u"scale=1",
                                   u"scale=permille",
                                   u"negative='#'",
                                   u"negative='#5'",
                                   u"negative='#.'",
                                   u"negative='-#'; sign=before",
                                   u"negative=no; zero=no",
                                   u"locale=",
                                   u"locale=qq",
                                   u"fraction=1; дробь=2",
                                   u"point=5",
                                   u"group=-",
                                   u"group=.",
                                   u"group=' ",
                                   u"group=' 'x",
                                   u"zero=' -'",
                                   u"colour=red",
                                   u"=2",
                                   u"fraction=2 point=,",
                                   u"fraction=1; Fraction=2",
                                   u"zero=5",
                                   u"zero=1.0",
                                   u"point=,; zero='-0,5'",
                                   wstring_view(u"point=\0", 7)});
    EXPECT_EQ(NumericFormat(u"zero=0.00").format(Numeric(0)), u"0.00");
    try {
        (void)NumericFormat(u"fraction=2; sign = left");
        ADD_FAILURE();
    } catch (const CtorException& e) {
        EXPECT_STREQ(e.what(),
                     "At character 13 of the format string: the item “sign” cannot have the value “left”.");
    }
}

} // namespace
} // namespace core
