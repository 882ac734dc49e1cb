// SPDX-License-Identifier: Apache-2.0
// Division by multiplication with a reciprocal: its last corrections are so rare that only operands made for
// them reach them.
#include "core/numbers/long/reciprocal.h"
#include "tests/numbers/model.h"
#include "tests/support/rounds.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace core::limbs;
using model::cpp_int;

cpp_int wide(DoubleWord value) {
    return (cpp_int(high_half(value)) << 64) | low_half(value);
}

/// Numbers up to `bound`, as often as not at one of its ends or beside a power of two.
class Corners {
  public:
    DoubleWord below(DoubleWord bound) {
        const DoubleWord random = (DoubleWord{random_()} << 64 | random_()) >> (random_() % 128);
        switch (random_() % 4) {
        case 0:
            return bound - 1 - random_() % 3 % bound;
        case 1:
            return random_() % 3 % bound;
        case 2:
            return ((DoubleWord{1} << (random_() % 128)) + random_() % 1000) % bound;
        default:
            return random % bound;
        }
    }

  private:
    std::mt19937_64 random_{21};
};

TEST(Reciprocal, SplitsProductsOfWords) {
    Corners next;
    for (int round = support::rounds(200'000); round > 0; --round) {
        const Word quotient = low_half(next.below(DoubleWord{1} << 64));
        const Word remainder = low_half(next.below(kWordBase));
        const auto split = split_word(product(quotient, kWordBase) + remainder);
        ASSERT_EQ(split.quotient, quotient);
        ASSERT_EQ(split.remainder, remainder);
        DoubleWord sum = next.below(std::numeric_limits<DoubleWord>::max());
        const cpp_int expected = wide(sum);
        const Word digit = reduce_column(sum);
        ASSERT_EQ(wide(sum) * kWordBase + digit, expected);
    }
}

template <class Divisor>
void expect_step(DoubleWord d, DoubleWord remainder, Word digit) {
    using Remainder = typename Divisor::Remainder;
    const Divisor divisor(static_cast<Remainder>(d));
    auto rest = divisor.shifted(static_cast<Remainder>(remainder));
    const cpp_int dividend = wide(remainder) * kWordBase + digit;
    ASSERT_EQ(divisor.step(rest, digit), dividend / wide(d)) << dividend << " / " << wide(d);
    const cpp_int left = dividend % wide(d);
    const DoubleWord expected =
        DoubleWord{static_cast<Word>(left >> 64)} << 64 | static_cast<Word>(left & ~Word{0});
    ASSERT_TRUE(rest == divisor.shifted(static_cast<Remainder>(expected))) << dividend << " / " << wide(d);
}

template <class Divisor>
void expect_steps(DoubleWord least, DoubleWord bound) {
    Corners next;
    for (int round = support::rounds(100'000); round > 0; --round) {
        const DoubleWord d = least + next.below(bound - least);
        expect_step<Divisor>(d, next.below(d), low_half(next.below(kWordBase)));
    }
}

TEST(Reciprocal, DividesByOneWord) {
    expect_steps<OneWordDivisor>(1, kWordBase);
    // Found by search: these need both corrections.
    expect_step<OneWordDivisor>(35185535164772, 35185535164695, 344089508443391285);
    expect_step<OneWordDivisor>(9007320551163766, 9007320550159655, 242578728719198114);
    expect_step<OneWordDivisor>(549907076610, 549895190436, 936419713779472040);
}

TEST(Reciprocal, DividesByTwoWords) {
    expect_steps<TwoWordDivisor>(kWordBase, product(kWordBase, kWordBase));
    const auto pair = [](Word high, Word low) { return DoubleWord{high} << 64 | low; };
    expect_step<TwoWordDivisor>(pair(0, 0x40000a2c44689dd0), pair(0, 0x3fffe60073e397f7), 120826542497920699);
    expect_step<TwoWordDivisor>(pair(0x100000, 0x5f3b0de6621670dc), pair(0x100000, 0x18b91e264b67791f),
                                245335117266063346);
    expect_step<TwoWordDivisor>(pair(0x1000e388de2687, 0x63bb64c520ec2ffc),
                                pair(0x1000e0cc68ad83, 0xee502fa752e6cceb), 194921981663741990);
}

} // namespace
