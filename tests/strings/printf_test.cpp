// SPDX-License-Identifier: Apache-2.0
// Directives for numbers print what the C library prints in the C locale; texts and mistakes by example.
#include <core/runtime/errors.h>
#include <core/strings/printf.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <random>

using namespace core;

namespace {

template <class T>
std::string c_printf(const std::string& format, T value) {
    char text[600];
    std::snprintf(text, sizeof text, format.c_str(), value);
    return text;
}

} // namespace

TEST(Printf, NumbersPrintAsInC) {
    std::mt19937_64 random(7);
    const auto pick = [&](std::string_view letters) {
        return std::string(1, letters[random() % letters.size()]);
    };
    for (int round = 0; round < 20'000; ++round) {
        std::string start = "%";
        while (random() % 2 == 0)
            start += pick("-+ 0");
        if (random() % 2 == 0)
            start += std::to_string(1 + random() % 30);
        if (random() % 2 == 0)
            start += "." + (random() % 4 == 0 ? "" : std::to_string(random() % 20));
        const auto bits = static_cast<std::int64_t>(random()) >> random() % 64;
        const double real = static_cast<double>(bits) / static_cast<double>(1 + random() % 1000);
        const std::string integer = start + pick("di");
        ASSERT_EQ(string_printf(integer, static_cast<int>(bits)), c_printf(integer, static_cast<int>(bits)));
        const std::string natural = std::string("%") + (random() % 2 == 0 ? "#" : "") + start.substr(1) + "l";
        const std::string base = pick("xXo"); // in C "l" has 32 bits on some systems, "ll" never
        ASSERT_EQ(string_printf(natural + base, bits),
                  c_printf(natural + "l" + base, static_cast<long long>(bits)))
            << natural << base << bits;
        const std::string floating =
            std::string("%") + (random() % 2 == 0 ? "#" : "") + start.substr(1) + pick("fFeEgGaA");
        ASSERT_EQ(string_printf(floating, real), c_printf(floating, real)) << floating;
    }
    EXPECT_EQ(string_printf(u"%#x %#o %hhd", 255, 8, 7), u"0xff 010 7");
    EXPECT_EQ(string_printf(u"%x %+u", -1, short{-1}), u"ffffffff 4294967295");
    for (const double odd : {-0.0, HUGE_VAL, -HUGE_VAL, std::nan(""), 5e-324})
        EXPECT_EQ(string_printf("%+012.3g|", odd), c_printf("%+012.3g|", odd));
    EXPECT_EQ(string_printf(u"%d %d", true, u'a'), u"1 97");
}

TEST(Printf, TextsAndUnits) {
    EXPECT_EQ(string_printf(u"%s=%-4s|%5s|%.2s", wstring(u"имя"), u"ab", "ёж", wstring_view(u"xyz")),
              u"имя=ab  |   ёж|xy");
    EXPECT_EQ(string_printf(u"%*d|%-*d|%*d|%.*f", 4, 7, 4, 7, -4, 7, 1, 0.25), u"   7|7   |7   |0.2");
    EXPECT_EQ(string_printf(u"%c%3c%%", u'я', 'x'), u"я  x%");
    EXPECT_EQ(string_printf(u"%.1s|", u"\U0001F600"), u"|");
    EXPECT_EQ(string_printf("%s %d", u"имя", 1), "имя 1");
    EXPECT_EQ(string_printf(u"", 1), u"");
    const int here = 0;
    EXPECT_EQ(string_printf(u"%p", static_cast<const void*>(&here)).substr(0, 2), u"0x");
    EXPECT_EQ(string_printf(u"%-5p|%5p", static_cast<const void*>(nullptr), reinterpret_cast<void*>(0x1A)),
              u"0x0  | 0x1a");
    EXPECT_EQ(string_printf(u"%s%2s|", static_cast<const char*>(nullptr), static_cast<const wchar*>(nullptr)),
              u"  |");
}

TEST(Printf, MistakesAreRefused) {
    EXPECT_THROW((void)string_printf(u"%d"), ConverterException);
    EXPECT_THROW((void)string_printf(u"%d", u"text"), ConverterException);
    EXPECT_THROW((void)string_printf(u"%s", 1), ConverterException);
    EXPECT_THROW((void)string_printf(u"%f", 1), ConverterException);
    EXPECT_THROW((void)string_printf(u"100%"), ConverterException);
    EXPECT_THROW((void)string_printf(u"%n", 1), ConverterException);
    EXPECT_THROW((void)string_printf(u"%я", 1), ConverterException);
    EXPECT_THROW((void)string_printf(u"%99999999999999999999d", 1), ConverterException);
    EXPECT_THROW((void)string_printf(u"%*d", INT64_MIN, 1), ConverterException);
}
