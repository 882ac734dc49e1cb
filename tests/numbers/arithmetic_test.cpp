// SPDX-License-Identifier: Apache-2.0
// Arithmetic beside the slow model on random operands across limb borders, and the corners of the rules for
// division, remainder, rounding and powers.
#include "tests/numbers/model.h"

#include <core/numbers/errors.h>
#include <core/numbers/settings.h>

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace core {

static std::ostream& operator<<(std::ostream& out, const Numeric& n) {
    std::string text(n.toString(static_cast<char*>(nullptr), 0), ' ');
    n.toString(text.data(), text.size());
    return out << text;
}

} // namespace core

namespace {

using core::Numeric;
using core::NumericException;
using core::NumericRoundMode;
using core::operator""_guid;
using model::cpp_int;
using Error = NumericException::Error;

constexpr auto kUp = NumericRoundMode::round15as20;
constexpr auto kDown = NumericRoundMode::round15as10;

Numeric num(std::string_view text) {
    return Numeric::fromString(text);
}

template <class F>
Error error_of(F&& f) {
    try {
        f();
    } catch (const NumericException& e) {
        return e.error();
    }
    return Error::none;
}

void expect_equal(const Numeric& actual, const Numeric& expected, const Numeric& a, const Numeric& b) {
    ASSERT_TRUE(model::is_normal(actual)) << a << " and " << b;
    ASSERT_EQ(actual, expected) << a << " and " << b;
}

/// The quotient by its rule: count(a) + 3 limbs, rounded half up on the one that follows.
Numeric model_quotient(const Numeric& a, const Numeric& b) {
    const std::int64_t fa = std::max(a.fractionLimbs(), 0);
    const auto fb = b.fractionLimbs();
    const auto count = static_cast<std::int64_t>(b.limbs().size());
    const cpp_int dividend = model::scaled(a.abs(), fa) * model::power(model::kBase, count + 3);
    cpp_int quotient = dividend / model::scaled(b.abs(), fb);
    const bool up = quotient % model::kBase >= 500'000'000;
    quotient = quotient / model::kBase + (up ? 1 : 0);
    return model::number(a.sign() == b.sign() ? quotient : cpp_int(-quotient), fa - fb + count + 2);
}

/// Rounding on digits alone, with no notion of limbs.
Numeric model_round(const Numeric& n, std::int32_t digits, NumericRoundMode mode) {
    const std::int64_t scale = std::max<std::int64_t>(n.fractionLimbs(), 0) + 1 + std::abs(digits) / 9;
    const cpp_int value = model::scaled(n.abs(), scale);
    const cpp_int unit = model::power(10, scale * 9 - digits);
    const cpp_int twice = value % unit * 2;
    cpp_int result = value - value % unit;
    if (twice > unit || (twice == unit && mode == kUp)) {
        result += unit;
    }
    return model::number(n.sign() < 0 ? cpp_int(-result) : result, scale);
}

TEST(Arithmetic, SumsProductsAndOrderAreThoseOfTheModel) {
    model::Generator next(1);
    for (int round = 0; round < 4000; ++round) {
        const std::uint32_t limbs = round % 100 == 0 ? 60 : round % 4 == 0 ? 12 : 4;
        const Numeric a = next(limbs);
        const Numeric b = round % 50 == 0 ? a : next(limbs);
        const std::int64_t scale = std::max({a.fractionLimbs(), b.fractionLimbs(), 0});
        const cpp_int x = model::scaled(a, scale);
        const cpp_int y = model::scaled(b, scale);
        expect_equal(a + b, model::number(x + y, scale), a, b);
        expect_equal(a - b, model::number(x - y, scale), a, b);
        expect_equal(a * b, model::number(x * y, 2 * scale), a, b);
        ASSERT_EQ(a.compare(b), x.compare(y) < 0 ? -1 : x.compare(y) > 0 ? 1 : 0);
        ASSERT_TRUE((a <=> b) == (x.compare(y) <=> 0));
        ASSERT_EQ(a == b, x == y);
        expect_equal(-a, model::number(-x, scale), a, b);
        expect_equal(a.abs(), model::number(abs(x), scale), a, b);
        const cpp_int one = model::power(model::kBase, scale);
        const cpp_int below = x / one - (x < 0 && x % one != 0 ? 1 : 0);
        expect_equal(a.floor(), model::number(below, 0), a, b);
    }
}

TEST(Arithmetic, QuotientsHaveTheDigitsOfTheRule) {
    model::Generator next(2);
    for (int round = 0; round < 4000; ++round) {
        const Numeric a = next(round % 4 == 0 ? 14 : 4, 3);
        const Numeric b = next(round % 8 == 0 ? 14 : 4, 3);
        if (b == 0) {
            continue;
        }
        const Numeric quotient = model_quotient(a, b);
        expect_equal(a / b, quotient, a, b);
        const Numeric whole = quotient.sign() < 0 ? -(-quotient).floor() : quotient.floor();
        expect_equal(a % b, a - whole * b, a, b);
    }
    // Quotients whose next limb is exactly half, by short and long numbers.
    for (const Numeric& a : {Numeric(1), num("7.000000000000000000000000000000000000000000001")}) {
        for (const int exponent : {28, 37, 73, 28 + 27 * 9}) {
            const Numeric b = Numeric(2).pow(exponent);
            expect_equal(a / b, model_quotient(a, b), a, b);
        }
    }
    EXPECT_EQ(Numeric(1) / 3, num("0.333333333333333333333333333"));
    EXPECT_EQ(Numeric(2) / 3, num("0.666666666666666666666666667"));
    EXPECT_EQ(Numeric(1'000'000'000) / 3, num("333333333.333333333333333333333333333"));
    EXPECT_EQ(Numeric(-7) % 2, -1);
    EXPECT_EQ(Numeric(7) % -2, 1);
    EXPECT_EQ(error_of([] { return Numeric(1) / 0; }), Error::divideByZero);
    EXPECT_EQ(error_of([] { return Numeric(0) % 0; }), Error::divideByZero);
}

TEST(Arithmetic, OperandsMayBeTheSameObject) {
    Numeric n = num("-12345678901234567890123456789012345678901234567890.5");
    const Numeric copy = n;
    Numeric& self = n;
    n += self;
    EXPECT_EQ(n, copy * 2);
    n *= self;
    EXPECT_EQ(n, copy * copy * 4);
    n /= self;
    EXPECT_EQ(n, 1);
    n -= self;
    EXPECT_EQ(n, 0);
    n = copy;
    n = self;
    EXPECT_EQ(n, copy);
    n = std::move(self);
    EXPECT_EQ(n, copy);
}

TEST(Arithmetic, AFailedOperationChangesNothing) {
    Numeric n = num("1.5");
    EXPECT_EQ(error_of([&] { n /= 0; }), Error::divideByZero);
    EXPECT_EQ(error_of([&] { n %= 0; }), Error::divideByZero);
    EXPECT_EQ(n, num("1.5"));
    // A place that no text could hold is refused before any memory is asked for.
    Numeric far = num("0.000000001");
    const auto square_for_ever = [&far] {
        for (;;) {
            far *= far;
        }
    };
    try {
        square_for_ever();
    } catch (const std::bad_alloc& e) {
        EXPECT_STREQ(e.what(), "bad allocation");
    }
    EXPECT_EQ(far.limbs().size(), 1U);
    EXPECT_EQ(far.fractionLimbs(), 1 << 29);
    const Numeric limb = num("0.000000001");
    Numeric farthest = limb;
    while (farthest.fractionLimbs() < static_cast<std::int32_t>(Numeric::kMaxLimbs))
        farthest = farthest * farthest * limb;
    const Numeric opposite = 1 / farthest;
    EXPECT_EQ(farthest / farthest, 1);
    EXPECT_EQ(0 / opposite, 0);
    EXPECT_THROW((void)(farthest / (3 * opposite)), std::bad_alloc) << "the place does not wrap round";
    EXPECT_THROW((void)(farthest + opposite), std::bad_alloc);
    EXPECT_THROW((void)(num("1234567890123456789012345678901234567890123") * opposite), std::bad_alloc);
}

TEST(Arithmetic, FailuresHaveTheirNumbersAndMessages) {
    // Stored error objects name the class; callers tell failures apart by number.
    EXPECT_EQ(NumericException::kClassId, "e62f19b5-a855-418f-a162-77d8571e9ddc"_guid);
    const std::pair<Numeric (*)(), const char*> failures[] = {
        {[] { return Numeric(1) / 0; }, "IDS_NUMERROR_DIVIDEBYZERO"},
        {[] { return Numeric(-8).pow(num("0.5")); }, "IDS_NUMERROR_NEGATIVEPOW"},
        {[] { return Numeric(10).pow(num("1000.5")); }, "IDS_NUMERROR_OVERFLOW"},
    };
    int number = 0;
    for (const auto& [failing, message] : failures) {
        ++number;
        try {
            (void)failing();
            ADD_FAILURE() << message;
        } catch (const NumericException& e) {
            EXPECT_EQ(static_cast<int>(e.error()), number);
            EXPECT_EQ(e.description(), core::message_text(message));
        }
    }
}

TEST(Rounding, DigitsAreThoseOfTheModelInBothModes) {
    model::Generator next(3);
    for (int round = 0; round < 6000; ++round) {
        const Numeric n = next(5);
        const auto digits = static_cast<std::int32_t>(next.below(80)) - 40;
        for (const auto mode : {kUp, kDown}) {
            const Numeric rounded = n.round(digits, mode);
            ASSERT_TRUE(model::is_normal(rounded)) << n << " to " << digits;
            ASSERT_EQ(rounded, model_round(n, digits, mode)) << n << " to " << digits;
        }
    }
}

TEST(Rounding, ExactHalvesFollowTheModeAcrossLimbBorders) {
    struct Case {
        const char* number;
        int digits;
        const char* up;
        const char* down;
    };
    for (const Case& c : std::vector<Case>{
             {"2.5", 0, "3", "2"},
             {"2.51", 0, "3", "3"},
             {"-2.5", 0, "-3", "-2"},
             {"1234", -2, "1200", "1200"},
             {"1250", -2, "1300", "1200"},
             {"0.5", 0, "1", "0"},
             {"0.500000000000000001", 0, "1", "1"},
             {"500000000", -9, "1000000000", "0"},
             {"-500000000", -9, "-1000000000", "0"},
             {"500000000.000000001", -9, "1000000000", "1000000000"},
             {"5", -1, "10", "0"},
             {"4", -2, "0", "0"},
             {"5", -20, "0", "0"},
             {"999999999.9999999995", 9, "1000000000", "999999999.999999999"},
             {"999999999999999999.5", 0, "1000000000000000000", "999999999999999999"},
             {"0.0000000005", 9, "0.000000001", "0"},
             {"1000000000", -1, "1000000000", "1000000000"},
             {"1.25", 2147483647, "1.25", "1.25"},
             {"1.25", -2147483647 - 1, "0", "0"},
         }) {
        EXPECT_EQ(num(c.number).round(c.digits, kUp), num(c.up)) << c.number << " to " << c.digits;
        EXPECT_EQ(num(c.number).round(c.digits, kDown), num(c.down)) << c.number << " to " << c.digits;
    }
    EXPECT_EQ(num("2.5").round(0), 3) << "the process's mode, by default half away from zero";
}

TEST(Power, WholeExponentsAreExact) {
    EXPECT_EQ(Numeric(2).pow(3), 8);
    EXPECT_EQ(Numeric(2).pow(-2), num("0.25"));
    EXPECT_EQ(Numeric(-3).pow(3), -27);
    EXPECT_EQ(Numeric(0).pow(0), 1);
    EXPECT_EQ(Numeric(1).pow(999'999'999), 1);
    EXPECT_EQ(Numeric(10).pow(99'999'999).limbs().size(), 1U)
        << "the most digits that an exact power may have";
    EXPECT_THROW((void)Numeric(10).pow(100'000'000), NumericException);
    EXPECT_EQ(num("0.1").pow(100), num("0." + std::string(99, '0') + "1"));
    EXPECT_EQ(Numeric(7).pow(300), model::number(model::power(7, 300), 0));
    EXPECT_EQ(num("-1.0000000001").pow(41),
              model::number(-model::power(10'000'000'001, 41) * model::power(10, 4), 46));
}

TEST(Power, OtherExponentsAreComputedInDouble) {
    EXPECT_EQ(Numeric(4).pow(num("0.5")), 2);
    EXPECT_EQ(Numeric(2).pow(num("0.5")), 1.4142135623730951);
    EXPECT_EQ(Numeric(1).pow(1'000'000'000), 1);
    EXPECT_EQ(Numeric(0).pow(num("0.5")), 0);
}

TEST(Power, RefusesWhatHasNoResult) {
    EXPECT_EQ(error_of([] { return Numeric(0).pow(-1); }), Error::divideByZero);
    EXPECT_EQ(error_of([] { return Numeric(0).pow(num("-0.5")); }), Error::divideByZero);
    EXPECT_EQ(error_of([] { return Numeric(-8).pow(num("0.5")); }), Error::negativePower);
    EXPECT_EQ(error_of([] { return Numeric(-8).pow(1'000'000'000); }), Error::negativePower);
    EXPECT_EQ(error_of([] { return Numeric(10).pow(1'000'000'000); }), Error::overflow);
    const auto too_long = [](const char* base, int exponent) {
        return error_of([&] { return num(base).pow(exponent); }) == Error::overflow;
    };
    EXPECT_TRUE(too_long("10", 100'000'000));
    EXPECT_TRUE(too_long("0.1", 100'000'001));
    EXPECT_TRUE(too_long("9999999999", -10'000'001));
    EXPECT_TRUE(too_long("1.5", 999'999'999));
}

} // namespace
