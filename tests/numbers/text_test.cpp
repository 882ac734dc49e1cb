// SPDX-License-Identifier: Apache-2.0
// Text and streams, in and out, and the digits that formats are made from.
#include "tests/numbers/model.h"

#include <core/numbers/settings.h>
#include <core/runtime/settings.h>

#include <gtest/gtest.h>

#include <sstream>
#include <tuple>
#include <vector>

namespace {

using core::Numeric;
using core::NumericRoundMode;
using model::cpp_int;

std::string narrow(core::wstring_view text) {
    return {text.begin(), text.end()};
}

core::wstring wide(std::string_view text) {
    return {text.begin(), text.end()};
}

TEST(Text, ReadsAsFarAsANumberGoes) {
    struct Case {
        const char* text;
        std::size_t read; ///< characters
        const char* value;
    };
    for (const Case& c : std::vector<Case>{
             {"  -12.50x", 8, "-12.5"},
             {".5", 2, "0.5"},
             {"5.", 2, "5"},
             {"-.5", 3, "-0.5"},
             {"+7", 2, "7"},
             {"\t\r\n 1", 5, "1"},
             {"", 0, "0"},
             {"-", 0, "0"},
             {".", 0, "0"},
             {"  -.", 0, "0"},
             {"abc", 0, "0"},
             {"- 5", 0, "0"},
             {"--5", 0, "0"},
             {"\v5", 0, "0"},
             {"-0", 2, "0"},
             {"-0.000", 6, "0"},
             {"1.2.3", 3, "1.2"},
             {"1e5", 1, "1"},
             {"1 2", 1, "1"},
             {"1,000", 1, "1"},
             {"000000000000000000000000012.000000000000000000000", 49, "12"},
             {"1000000000", 10, "1000000000"},
             {"123456789012345678901234567890.0000000001", 41, "123456789012345678901234567890.0000000001"},
             {"0.000000000000000000000000000000000001", 38, "0.000000000000000000000000000000000001"},
         }) {
        const std::string_view text = c.text;
        const core::wstring wide_text = wide(text);
        const char* end = nullptr;
        const core::wchar* wide_end = nullptr;
        const Numeric n = Numeric::fromString(text, &end);
        EXPECT_TRUE(model::is_normal(n));
        EXPECT_EQ(narrow(n.toString()), c.value) << text;
        EXPECT_EQ(end - text.data(), static_cast<std::ptrdiff_t>(c.read)) << text;
        EXPECT_EQ(Numeric::fromString(wide_text, &wide_end), n) << text;
        EXPECT_EQ(wide_end - wide_text.data(), static_cast<std::ptrdiff_t>(c.read)) << text;
    }
    EXPECT_EQ(Numeric::fromString(u"1\u0665"), 1) << "digits of other scripts end a number";
    EXPECT_EQ(Numeric::fromString(u"\u0131\u0131"), 0) << "only whole code units count, not their low bytes";
}

TEST(Text, WhatIsWrittenReadsBack) {
    model::Generator next(7);
    for (int round = 0; round < 4000; ++round) {
        const Numeric n = next(round % 20 == 0 ? 40 : 5, 3);
        const core::wstring text = n.toString();
        ASSERT_EQ(Numeric::fromString(text), n) << narrow(text);

        // The digits are the model's, and the point stands where it should.
        const std::int64_t scale = std::max(n.fractionLimbs(), 0);
        std::string plain = narrow(text);
        const std::size_t point = plain.find('.');
        const std::size_t fraction = point == std::string::npos ? 0 : plain.size() - point - 1;
        ASSERT_TRUE(fraction == 0 || plain.back() != '0') << plain;
        std::erase(plain, '.');
        plain.append(static_cast<std::size_t>(scale) * 9 - fraction, '0');
        const bool negative = plain.front() == '-';
        plain.erase(0, negative ? 1 : 0);
        plain.erase(0, std::min(plain.find_first_not_of('0'), plain.size() - 1));
        ASSERT_EQ((negative ? "-" : "") + plain, model::scaled(n, scale).str());

        std::string buffer(text.size(), '?');
        ASSERT_EQ(n.toString(buffer.data(), buffer.size() - 1), text.size());
        ASSERT_EQ(buffer, std::string(text.size(), '?')) << "nothing is written when it does not fit";
        ASSERT_EQ(n.toString(buffer.data(), buffer.size()), text.size());
        ASSERT_EQ(buffer, narrow(text));
    }
}

TEST(Text, StreamsStopBehindTheNumber) {
    std::basic_stringstream<core::wchar> stream(u" -12.50,7 x");
    Numeric n;
    EXPECT_TRUE(n.fromStream(stream));
    EXPECT_EQ(n, -12.5);
    EXPECT_EQ(stream.get(), u',');
    stream >> n;
    EXPECT_EQ(n, 7);
    EXPECT_FALSE(n.fromStream(stream));
    EXPECT_EQ(n, 7);
    EXPECT_TRUE(stream.good());
    EXPECT_EQ(stream.get(), u'x');
    stream >> n;
    EXPECT_TRUE(stream.fail() && stream.eof());

    std::basic_stringstream<core::wchar> out;
    out << Numeric(-0.25) << u'|' << Numeric(10).pow(30);
    EXPECT_EQ(narrow(out.str()), "-0.25|1" + std::string(30, '0'));
    EXPECT_TRUE(n.fromStream(out));
    EXPECT_EQ(n, -0.25);
    out.get();
    EXPECT_TRUE(n.fromStream(out) && out.eof());
    EXPECT_EQ(n, Numeric(10).pow(30));
}

TEST(Digits, LengthAndPrecisionCountThem) {
    for (const auto& [text, length, precision, digits] :
         std::vector<std::tuple<const char*, int, int, const char*>>{
             {"0", 1, 0, "0"},
             {"120.50", 4, 1, "1205"},
             {"-7", 1, 0, "7"},
             {"0.05", 2, 2, "05"},
             {"0.000000000001", 12, 12, "000000000001"},
             {"1000000000", 10, 0, "1000000000"},
             {"1000000000.1", 11, 1, "10000000001"},
             {"123456789012.5", 13, 1, "1234567890125"},
             {"1200000000000", 13, 0, "1200000000000"},
         }) {
        const Numeric n = Numeric::fromString(text);
        std::int64_t actual_length = 0;
        std::int64_t actual_precision = 0;
        n.lengthAndPrecision(actual_length, actual_precision);
        EXPECT_EQ(actual_length, length) << text;
        EXPECT_EQ(actual_precision, precision) << text;
        std::string buffer(static_cast<std::size_t>(length), '?');
        EXPECT_EQ(n.digits(buffer.data(), buffer.size() - 1), buffer.size());
        EXPECT_EQ(buffer, std::string(buffer.size(), '?'));
        n.digits(buffer.data(), buffer.size());
        EXPECT_EQ(buffer, digits) << text;
        core::wstring wide_buffer(buffer.size(), u'?');
        n.digits(wide_buffer.data(), wide_buffer.size());
        EXPECT_EQ(wide_buffer, wide(digits)) << text;
    }
}

TEST(Digits, AreRoundedAndFilledToTheGivenSize) {
    struct Case {
        const char* number;
        std::size_t length, precision;
        const char* up;
        const char* down;
    };
    for (const Case& c : std::vector<Case>{
             {"2.5", 3, 0, "003", "002"},
             {"2.5", 5, 3, "02500", "02500"},
             {"-0.005", 4, 2, "0001", "0000"},
             {"0", 3, 3, "000", "000"},
             {"9.95", 2, 1, "", "99"},
             {"12", 2, 1, "", ""},
             {"0.5", 1, 1, "5", "5"},
             {"0.5", 0, 0, "", ""},
             {"123456789.123456789", 12, 3, "123456789123", "123456789123"},
         }) {
        for (const auto mode : {NumericRoundMode::round15as20, NumericRoundMode::round15as10}) {
            const std::string expected = mode == NumericRoundMode::round15as20 ? c.up : c.down;
            std::string buffer(c.length, '?');
            core::wstring wide_buffer(c.length, u'?');
            const Numeric n = Numeric::fromString(c.number);
            const bool fits = n.digits(buffer.data(), c.length, c.precision, mode);
            EXPECT_EQ(n.digits(wide_buffer.data(), c.length, c.precision, mode), fits);
            EXPECT_EQ(fits ? buffer : "", expected) << c.number;
            EXPECT_EQ(narrow(wide_buffer), buffer);
        }
    }
    char buffer[1];
    EXPECT_FALSE(Numeric(0).digits(buffer, 1, 2, NumericRoundMode::round15as20));
}

} // namespace
