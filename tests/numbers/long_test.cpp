// SPDX-License-Identifier: Apache-2.0
// Long operands: every algorithm of multiplication and division, at the sizes where one takes over from
// another and where the transform changes its shape, must give the digits of the plain rules.
#include "core/numbers/long/divide.h"
#include "core/numbers/long/multiply.h"
#include "tests/numbers/model.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using core::Numeric;
using core::limbs::kHalvesThreshold;
using core::limbs::kNewtonQuotient;
using core::limbs::kStackDivisor;
using core::limbs::kTransformThreshold;
using model::cpp_int;

/// A whole number of exactly so many limbs, rich in zeros and nines.
Numeric whole(model::Generator& next, std::size_t limbs) {
    std::string text = "1";
    for (std::size_t i = 1; i < limbs; ++i) {
        std::string limb = std::to_string(next.limb());
        text.append(9 - limb.size(), '0') += limb;
    }
    text.back() = '7';
    return Numeric::fromString(text);
}

/// `n` modulo the Mersenne prime 2^31 − 1, limb by limb: cheap at any length, and it knows nothing of how
/// products are made.
std::uint64_t residue(const Numeric& n) {
    constexpr std::uint64_t prime = 0x7FFFFFFF;
    std::uint64_t rest = 0;
    for (std::size_t i = n.limbs().size(); i-- > 0;) {
        rest = (rest * 1'000'000'000 + n.limbs()[i]) % prime;
    }
    for (std::int32_t i = n.fractionLimbs(); i < 0; ++i) {
        rest = rest * 1'000'000'000 % prime;
    }
    return rest;
}

TEST(LongNumbers, ProductsAgreeWithTheModelWhereAlgorithmsChange) {
    model::Generator next(11);
    for (const std::size_t words :
         {std::size_t{9}, kHalvesThreshold, 2 * kHalvesThreshold + 1, kTransformThreshold}) {
        for (const std::size_t a : {2 * words - 3, 2 * words - 1, 2 * words, 2 * words + 5}) {
            for (const std::size_t b : {a, 2 * words - 2, 2 * words + 1, 3 * words + 7}) {
                const Numeric x = whole(next, a);
                const Numeric y = whole(next, b);
                const Numeric product = x * y;
                ASSERT_TRUE(model::is_normal(product));
                ASSERT_EQ(model::scaled(product, 0), model::scaled(x, 0) * model::scaled(y, 0))
                    << a << " by " << b;
            }
            const Numeric x = whole(next, a);
            ASSERT_EQ(x * x, x * Numeric(x)) << "squares take a path of their own";
        }
    }
}

TEST(LongNumbers, ProductsOfAnyTransformSizeCastOut) {
    model::Generator next(12);
    const std::size_t base = 4 * kTransformThreshold;
    for (const std::size_t words : {base, base * 3 / 2 - 1, std::size_t{6143}, std::size_t{6145},
                                    std::size_t{8192}, std::size_t{12289}, std::size_t{40'000}}) {
        const Numeric x = whole(next, words);
        const Numeric y = whole(next, 3 * words);
        const Numeric nines = Numeric::fromString(std::string(9 * words, '9'));
        const Numeric& power = nines + 1;
        ASSERT_EQ(residue(x * y), residue(x) * residue(y) % 0x7FFFFFFF) << words;
        ASSERT_EQ(nines * nines, power * power - 2 * power + 1) << "the greatest sums of products";
    }
}

TEST(LongNumbers, QuotientsHaveTheDigitsOfTheRuleWhereAlgorithmsChange) {
    model::Generator next(13);
    const std::size_t divisor = kStackDivisor + 1;
    const std::size_t quotient = 2 * kNewtonQuotient;
    for (const std::size_t b :
         {std::size_t{5}, std::size_t{6}, divisor - 1, divisor, divisor + 1, 3 * divisor}) {
        for (const std::size_t a :
             {std::size_t{1}, b, quotient - 4, quotient, 3 * divisor + 2, 7 * divisor}) {
            const Numeric y = whole(next, b);
            const Numeric exact = whole(next, a);
            for (const Numeric& x : {exact, exact * y, exact * y - 1, exact * y + 1}) {
                const auto places = static_cast<std::int64_t>(b) + 2;
                const cpp_int dividend = model::scaled(x, places + 1);
                cpp_int expected = dividend / model::scaled(y, 0);
                const bool up = expected % model::kBase >= 500'000'000;
                expected = expected / model::kBase + (up ? 1 : 0);
                ASSERT_EQ(model::scaled(x / y, places), expected) << a << " by " << b;
            }
        }
    }
}

TEST(LongNumbers, QuotientsOfAnyLengthMultiplyBack) {
    model::Generator next(14);
    for (const auto& [a, b] :
         {std::pair{30'000, 9'000}, {9'000, 30'000}, {20'001, 20'000}, {111'111, 4'001}}) {
        const Numeric y = whole(next, static_cast<std::size_t>(b));
        const Numeric exact = whole(next, static_cast<std::size_t>(a));
        const Numeric product = exact * y;
        EXPECT_EQ(product / y, exact);
        EXPECT_EQ((product - 1) % y, y - 1);
        const Numeric power = Numeric(10).pow(9 * a);
        EXPECT_EQ((y * power - 1) % y, y - 1) << "a quotient of nines alone";
        const Numeric x = whole(next, static_cast<std::size_t>(a));
        const Numeric quotient = x / y;
        const auto places = static_cast<std::size_t>(9 * (b + 2));
        const Numeric unit = Numeric::fromString("0." + std::string(places - 1, '0') + "1");
        EXPECT_LE((x - quotient * y).abs() * 2, y * unit) << "half a unit of the last place";
    }
}

TEST(LongNumbers, PowersAndTextGoThroughAMillionDigits) {
    const Numeric power = Numeric(10).pow(1'000'000) - 1;
    const core::wstring text = power.toString();
    EXPECT_EQ(text, core::wstring(1'000'000, u'9'));
    EXPECT_EQ(Numeric::fromString(text), power);
    EXPECT_EQ(residue(Numeric(3).pow(2'000'000)), [] {
        std::uint64_t rest = 1;
        for (int i = 0; i < 2'000'000; ++i) {
            rest = rest * 3 % 0x7FFFFFFF;
        }
        return rest;
    }());
}

} // namespace
