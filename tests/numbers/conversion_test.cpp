// SPDX-License-Identifier: Apache-2.0
// Built-in types in and out: exactness, wrapping, and doubles that come back as they were.
#include "tests/numbers/model.h"

#include <core/numbers/errors.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
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
    EXPECT_EQ(Numeric(2.5L), Numeric::fromString("2.5"));
    EXPECT_EQ(Numeric(0.1L), Numeric::fromString("0.1"))
        << "its own shortest decimal, not that of the double";
    EXPECT_EQ(Numeric(-1e15L), Numeric(-1'000'000'000'000'000));
}

template <class Float>
void expect_refused() {
    using Error = core::NumericException::Error;
    using Limits = std::numeric_limits<Float>;
    for (const auto& [value, error] : {std::pair(Limits::infinity(), Error::overflow),
                                       {-Limits::infinity(), Error::overflow},
                                       {Limits::quiet_NaN(), Error::notANumber}}) {
        try {
            (void)Numeric(value);
            ADD_FAILURE() << value;
        } catch (const core::NumericException& e) {
            EXPECT_EQ(e.error(), error);
        }
    }
}

TEST(Conversion, InfinitiesAndNaNAreRefusedAsWhatTheyAre) {
    expect_refused<double>();
    expect_refused<long double>();
    EXPECT_STREQ(core::NumericException(core::NumericException::Error::notANumber).messageId(),
                 "IDS_NUMERROR_NOTANUMBER");
}

template <class Float>
Float random_float(std::mt19937_64& random, int round) {
    // Any sign, exponent and digits; and decimals with few digits, which lie near the borders between values.
    const auto digits = static_cast<Float>(random());
    if (round % 2 == 0) {
        return digits / std::pow(Float{10}, static_cast<Float>(random() % 25));
    }
    using Limits = std::numeric_limits<Float>;
    const int range = Limits::max_exponent - Limits::min_exponent + Limits::digits;
    const int exponent =
        static_cast<int>(random() % static_cast<unsigned>(range)) + Limits::min_exponent - 64;
    return std::ldexp(random() % 2 == 0 ? digits : -digits, exponent - Limits::digits / 2);
}

template <class Float>
void expect_to_come_back() {
    std::mt19937_64 random(6);
    for (int round = 0; round < 20'000; ++round) {
        const auto value = random_float<Float>(random, round);
        if (!std::isfinite(value)) {
            continue;
        }
        const Numeric n = value;
        ASSERT_TRUE(model::is_normal(n));
        ASSERT_EQ(static_cast<Float>(n), value);
        ASSERT_EQ(std::signbit(static_cast<Float>(n)), value < 0);
    }
    for (const Float value : {std::numeric_limits<Float>::denorm_min(), std::numeric_limits<Float>::min(),
                              std::numeric_limits<Float>::max(), std::numeric_limits<Float>::epsilon()}) {
        EXPECT_EQ(static_cast<Float>(Numeric(value)), value);
    }
    const Numeric huge = Numeric(10).pow(5000);
    EXPECT_EQ(static_cast<Float>(-huge), -std::numeric_limits<Float>::infinity());
    EXPECT_EQ(static_cast<Float>(1 / huge), 0);
    EXPECT_EQ(static_cast<Float>(-2 / (huge * huge)), 0);
    EXPECT_EQ(static_cast<Float>(Numeric(3)), 3);
}

TEST(Conversion, FloatingNumbersComeBackBitForBit) {
    expect_to_come_back<double>();
    expect_to_come_back<long double>();
}

TEST(Conversion, FloatingNumbersAreRoundedOnce) {
    // What a double cannot hold goes to the nearest one, also where long double has more digits.
    std::mt19937_64 random(8);
    for (int round = 0; round < 5000; ++round) {
        const Numeric n =
            Numeric::fromString("0." + std::to_string(random()) + std::to_string(random() % 1'000'000));
        const core::wstring text = n.toString();
        const std::string narrow(text.begin(), text.end());
        ASSERT_EQ(static_cast<double>(n), std::strtod(narrow.c_str(), nullptr)) << narrow;
        ASSERT_EQ(static_cast<long double>(n), std::strtold(narrow.c_str(), nullptr)) << narrow;
    }
}

} // namespace
