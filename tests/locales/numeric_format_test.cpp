// SPDX-License-Identifier: Apache-2.0
// The plain form and chosen ones: what is written reads back, what does not fit is not read.
#include "tests/locales/read_back.h"

#include <core/locales/numeric_format.h>

#include <random>
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

TEST(NumericFormat, RefusesBadStrings) {
    expect_refused<NumericFormat>({u"fraction",
                                   u"fraction=",
                                   u"fraction=-1",
                                   u"fraction=1001",
                                   u"fraction=99999999999",
                                   u"fraction=2x",
                                   u"point=",
                                   u"point=ab",
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
}

} // namespace
} // namespace core
