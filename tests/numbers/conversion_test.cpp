// SPDX-License-Identifier: Apache-2.0
// Built-in types in and out: exactness, wrapping, and doubles that come back as they were.
#include "tests/numbers/model.h"

#include <core/numbers/errors.h>

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <type_traits>

namespace {

using core::Numeric;
using model::cpp_int;

static_assert(sizeof(void*) != 8 || sizeof(Numeric) == 40);
static_assert(std::is_nothrow_move_constructible_v<Numeric> && std::is_nothrow_move_assignable_v<Numeric>);
static_assert(!std::is_constructible_v<Numeric, bool> && !std::is_constructible_v<Numeric, char16_t>);
static_assert(!std::is_convertible_v<Numeric, long>, "narrowing is asked for, never silent");

template <class T>
void expect_round_trip() {
    for (const T value :
         {std::numeric_limits<T>::min(), std::numeric_limits<T>::max(), T{0}, T{1}, T{100},
          static_cast<T>(-1), static_cast<T>(1'000'000'000), static_cast<T>(-1'000'000'000'000)}) {
        const Numeric n = value;
        EXPECT_TRUE(model::is_normal(n));
        EXPECT_EQ(model::scaled(n, 0), cpp_int(value));
        EXPECT_EQ(static_cast<T>(n), value);
        EXPECT_EQ(static_cast<T>(n + Numeric(value > 0 ? 0.75 : -0.75)), value) << "the fraction is cut off";
    }
}

TEST(Conversion, EveryIntegerTypeComesBack) {
    expect_round_trip<signed char>();
    expect_round_trip<short>();
    expect_round_trip<unsigned short>();
    expect_round_trip<int>();
    expect_round_trip<unsigned int>();
    expect_round_trip<long>();
    expect_round_trip<unsigned long>();
    expect_round_trip<long long>();
    expect_round_trip<unsigned long long>();
}

TEST(Conversion, IntegersThatDoNotFitWrap) {
    const cpp_int modulus = cpp_int(1) << 64;
    model::Generator next(5);
    for (int round = 0; round < 2000; ++round) {
        const Numeric n = next(12, 10);
        const std::int64_t scale = std::max(n.fractionLimbs(), 0);
        cpp_int whole = model::scaled(n, scale) / model::power(model::kBase, scale) % modulus;
        if (whole < 0) {
            whole += modulus;
        }
        const auto expected = static_cast<std::uint64_t>(whole);
        ASSERT_EQ(static_cast<std::int64_t>(n), static_cast<std::int64_t>(expected));
        ASSERT_EQ(static_cast<std::int32_t>(n), static_cast<std::int32_t>(expected));
    }
    EXPECT_EQ(static_cast<std::int32_t>(Numeric(-2.7)), -2);
    EXPECT_EQ(static_cast<std::int64_t>(Numeric(1'000'000'000)), 1'000'000'000);
}

TEST(Conversion, ScaledIntegersComeBackAndNothingElseFits) {
    std::mt19937_64 random(7);
    constexpr auto largest = std::numeric_limits<std::int64_t>::max();
    for (int round = 0; round < 20'000; ++round) {
        const auto digits = static_cast<std::uint32_t>(random() % (Numeric::kMaxScale + 1));
        auto value = static_cast<std::int64_t>(random()) >> (random() % 64);
        value = round % 8 == 0 ? largest : value == std::numeric_limits<std::int64_t>::min() ? 0 : value;
        const Numeric n = Numeric::fromScaled(value, digits);
        ASSERT_TRUE(model::is_normal(n));
        const Numeric unit = Numeric(10).pow(-static_cast<std::int32_t>(digits));
        ASSERT_EQ(n, value * unit);
        ASSERT_EQ(n.scaled(digits), value);
        const auto fewer = static_cast<std::uint32_t>(random() % (digits + 1));
        const Numeric whole = n * Numeric(10).pow(fewer);
        ASSERT_EQ(n.scaled(fewer).has_value(), whole == (n < 0 ? -(-whole).floor() : whole.floor()));
        ASSERT_EQ((n + unit).scaled(digits).has_value(), value != largest);
        ASSERT_FALSE((n + unit / 10).scaled(digits));
    }
    EXPECT_EQ(Numeric(10).pow(18).scaled(0), 1'000'000'000'000'000'000);
    EXPECT_FALSE(Numeric(10).pow(22).scaled(0));
    EXPECT_FALSE(Numeric(10).pow(-44).scaled(18));
}

TEST(Conversion, DoublesBecomeTheirShortestDecimal) {
    for (const auto& [value, text] : {std::pair{0.1, u"0.1"},
                                      {-0.0, u"0"},
                                      {1e15, u"1000000000000000"},
                                      {999999999999999.0, u"999999999999999"},
                                      {123456789.125, u"123456789.125"},
                                      {1e22, u"10000000000000000000000"},
                                      {-1.5e-10, u"-0.00000000015"},
                                      {0x1p53, u"9007199254740992"},
                                      {1e100, u"1"}}) {
        const core::wstring expected = value == 1e100 ? text + core::wstring(100, u'0') : text;
        EXPECT_EQ(Numeric(value).toString(), expected);
    }
    for (const double bad :
         {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
          std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_THROW(Numeric{bad}, core::NumericException);
    }
}

TEST(Conversion, DoublesComeBackBitForBit) {
    std::mt19937_64 random(6);
    for (int round = 0; round < 20'000; ++round) {
        // Any bits, and decimals with few digits, which lie near the borders between doubles.
        double value = std::bit_cast<double>(random());
        if (round % 2 == 0) {
            value = static_cast<double>(random() % 10'000'000'000'000'000) / std::pow(10, random() % 20);
        }
        if (!std::isfinite(value)) {
            continue;
        }
        const Numeric n = value;
        ASSERT_TRUE(model::is_normal(n));
        ASSERT_EQ(static_cast<double>(n), value);
        const auto wide = static_cast<long double>(value);
        const auto error = std::abs(static_cast<long double>(n) - wide);
        ASSERT_LE(error, std::abs(wide) * 2.3e-16L + 5e-324L) << value;
    }
    const Numeric huge = Numeric(10).pow(400);
    EXPECT_EQ(static_cast<double>(-huge), -std::numeric_limits<double>::infinity());
    EXPECT_EQ(static_cast<double>(1 / huge), 0);
    EXPECT_EQ(static_cast<long double>(Numeric(3)), 3.0L);
}

} // namespace
