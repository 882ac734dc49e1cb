// SPDX-License-Identifier: Apache-2.0
// Floating-point tokens: sixteen digits against the C library, the token machine state by state, and where a
// failure leaves the stream.
#include "tests/lists/tokens.h"
#include "tests/support/rounds.h"

#include <bit>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>

namespace core {
namespace {

using test::on_every_stream;
using test::read;
using test::rest_of;
using test::written;

/// The rule for floating-point numbers, from sixteen digits made by the C library.
wstring double_model(double value) {
    if (value == 0)
        return u"0";
    char text[64];
    std::snprintf(text, sizeof text, "%.15e", std::fabs(value));
    std::string digits = std::string(1, text[0]) + std::string(text + 2, 15);
    const int point = std::atoi(std::strchr(text, 'e') + 1) + 1;
    digits.erase(digits.find_last_not_of('0') + 1);
    const int count = static_cast<int>(digits.size());
    std::string form = digits;
    if (0 < point && point < count)
        form.insert(static_cast<std::size_t>(point), ".");
    else if (point != count)
        form =
            digits.substr(0, 1) + (count > 1 ? "." : "") + digits.substr(1) + "e" + std::to_string(point - 1);
    return (value < 0 ? u"-" : u"") + wstring(form.begin(), form.end());
}

TEST(FloatToken, DoublesAreSixteenDigitsInTheShorterForm) {
    const std::pair<double, const wchar*> forms[] = {{0.5, u"5e-1"},
                                                     {0.25, u"2.5e-1"},
                                                     {100, u"1e2"},
                                                     {120, u"1.2e2"},
                                                     {12, u"12"},
                                                     {1.5, u"1.5"},
                                                     {-12, u"-12"},
                                                     {1e-7, u"1e-7"},
                                                     {-0.0, u"0"},
                                                     {123456.789, u"123456.789"},
                                                     {1e15, u"1e15"},
                                                     {1e16, u"1e16"},
                                                     {5e-324, u"4.940656458412465e-324"},
                                                     {1.7976931348623157e308, u"1.797693134862316e308"}};
    for (const auto& [value, text] : forms)
        EXPECT_EQ(written(value), text);
    EXPECT_EQ(written(0.1F), u"1.000000014901161e-1");
    EXPECT_EQ(written(1.5L), u"1.5");

    std::mt19937_64 random(3);
    for (int i = 0; i < support::rounds(60'000); ++i) {
        const auto bits = random();
        double value = std::bit_cast<double>(bits);
        switch (i % 4) {
        case 0: // any double
            break;
        case 1: // prices
            value = static_cast<double>(bits % 1'000'000'000) / 100;
            break;
        case 2: // around powers of ten
            value = std::pow(10, static_cast<int>(bits % 26) - 9) *
                    (1 + (static_cast<int>(bits >> 32) % 20) * 0x1p-52);
            break;
        default: // halves of the last digit
            value = static_cast<double>(bits >> 12) / static_cast<double>(std::uint64_t{1} << (bits % 50));
        }
        if (std::isfinite(value)) {
            ASSERT_EQ(written(value), double_model(value));
        }
    }
}

TEST(FloatToken, InfinitiesAndNaNAreNotWritten) {
    for (const double value : {HUGE_VAL, -HUGE_VAL, std::nan("")}) {
        MemoryOutStream out;
        to_stream(out, value);
        EXPECT_TRUE(out.fail());
        EXPECT_EQ(out.take(), u"");
    }
}

TEST(FloatToken, DoublesFollowTheTokenMachine) {
    const std::tuple<const wchar*, double, const wchar*> taken[] = {
        {u"1", 1, u""},
        {u"-1.5e-3,", -1.5e-3, u","},
        {u".", 0, u""},
        {u"-.", 0, u""},
        {u".e5}", 0, u"}"},
        {u"1.2.3", 1.2, u".3"},
        {u"1-2", 1, u"-2"},
        {u"1e5e", 1e5, u"e"},
        {u"1e5.5", 1e5, u".5"},
        {u"1.-", 1, u"-"},
        {u"-0", -0.0, u""},
        {u"12 ", 12, u" "},
        {u"1E5x", 1e5, u"x"},
        {u"1\x0661", 1, u"\x0661"},
        {u"1e999", HUGE_VAL, u""},
        {u"-1e999", -HUGE_VAL, u""},
        {u"1e-999", 0, u""},
        {u"0e99999999999999999999", 0, u""},
        {u".5", 0.5, u""},
        {u"9007199254740993", 9007199254740992.0, u""},
        {u"0.30000000000000004,", 0.30000000000000004, u","}};
    for (const auto& [text, value, rest] : taken) {
        const auto result = read<double>(text, rest);
        ASSERT_TRUE(result.has_value()) << ::testing::PrintToString(text);
        EXPECT_EQ(std::bit_cast<std::uint64_t>(*result), std::bit_cast<std::uint64_t>(value)) << value;
    }
    const std::pair<const wchar*, const wchar*> refused[] = {
        {u"+5", u"+5"}, {u" 1", u" 1"},   {u"", u""},        {u"-", u""},     {u"--1", u"-1"}, {u"e5", u"e5"},
        {u"1e", u""},   {u"1e+5", u"+5"}, {u"1e--5", u"-5"}, {u"-e5", u"e5"}, {u"1.5e,", u","}};
    for (const auto& [text, rest] : refused)
        EXPECT_EQ(read<double>(text, rest), std::nullopt) << ::testing::PrintToString(text);

    const wstring longest(31, u'1');
    EXPECT_EQ(read<double>(longest, u""), 1111111111111111111111111111111.0);
    EXPECT_EQ(read<double>(longest + u"}", u"}"), 1111111111111111111111111111111.0);
    EXPECT_EQ(read<double>(longest + u"1}", u"1}"), std::nullopt);
    EXPECT_EQ(read<double>(wstring(30, u'1') + u"e", u""), std::nullopt);
}

TEST(FloatToken, FloatsComeBackToTheBit) {
    EXPECT_EQ(read<float>(u" +1.5e+2,", u","), 150.0F);
    EXPECT_EQ(read<float>(u"-.25 ", u" "), -0.25F);
    EXPECT_EQ(read<float>(wstring(40, u'0') + u"1.5", u""), 1.5F);
    EXPECT_EQ(read<float>(u"1e-99", u""), 0.0F);
    const std::pair<wstring, wstring> refused[] = {
        {u"", u""},       {u"-", u""},   {u".", u""},     {u"e5", u"e5"},  {u"-.E5", u"E5"}, {u"1e", u""},
        {u"1e99,", u","}, {u"1e-", u""}, {u"1e+x", u"x"}, {u"-1e99", u""}, {u"x", u"x"}};
    for (const auto& [text, rest] : refused) {
        on_every_stream(text, [&, left = rest](wistream& in) {
            float value = 1;
            EXPECT_FALSE(from_stream(in, value));
            EXPECT_TRUE(in.fail());
            EXPECT_EQ(rest_of(in), left);
        });
    }
    // what no float holds, however the digits and the exponent share it
    const std::string zeros(400, '0');
    const std::pair<std::string, float> odd[] = {{"0." + zeros + "1e440", HUGE_VALF},
                                                 {"-0." + zeros + "1e450", -HUGE_VALF},
                                                 {"-1e99", -HUGE_VALF},
                                                 {"1" + zeros, HUGE_VALF},
                                                 {"-0." + zeros + "1", -0.0F},
                                                 {"0." + zeros + zeros + zeros + "1e1100", 0.0F},
                                                 {"1" + zeros + "e-300", HUGE_VALF},
                                                 {"1" + zeros + "e-450", 0.0F},
                                                 {"-1" + zeros + "e-450", -0.0F},
                                                 {"0e99999999999999999999", 0.0F},
                                                 {"1e-99999999999999999999", 0.0F},
                                                 {"1e99999999999999999999", HUGE_VALF}};
    for (const auto& [text, exact] : odd) {
        const wstring units(text.begin(), text.end());
        MemoryInStream in(units);
        float value = 1;
        EXPECT_EQ(from_stream(in, value), std::isfinite(exact)) << text.substr(0, 9);
        const float most = std::numeric_limits<float>::max();
        const float nearest = std::isfinite(exact) ? exact : std::copysign(most, exact);
        EXPECT_EQ(std::bit_cast<std::uint32_t>(value), std::bit_cast<std::uint32_t>(nearest))
            << text.substr(0, 9);
    }
    std::mt19937 random(5);
    for (int i = 0; i < 20'000; ++i) {
        const float value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        if (!std::isfinite(value))
            continue;
        const wstring text = written(value);
        MemoryInStream in(text);
        float back = 1;
        ASSERT_TRUE(from_stream(in, back));
        ASSERT_EQ(back, value);
    }
}

} // namespace
} // namespace core
