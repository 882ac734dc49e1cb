// SPDX-License-Identifier: Apache-2.0
// Memory that runs out at any point of an operation: the operation fails as a whole and its operands stay as
// they were.
#include "tests/numbers/model.h"
#include "tests/support/allocation_limit.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using core::Numeric;

/// Runs `operation` on copies of two numbers with the first, the second, the third ... allocation failing
/// until none fails, and returns how many did.
int failures_of(const Numeric& a, const Numeric& b,
                const std::function<void(Numeric&, const Numeric&)>& operation) {
    for (int allowed = 0;; ++allowed) {
        Numeric x = a;
        const Numeric y = b;
        bool failed = false;
        try {
            const test::AllocationLimit limit(allowed);
            operation(x, y);
        } catch (const std::bad_alloc&) {
            failed = true;
        }
        if (!failed) {
            return allowed;
        }
        EXPECT_EQ(x, a);
        EXPECT_EQ(y, b);
    }
}

TEST(Allocation, AFailedOneLeavesTheOperandsAsTheyWere) {
    const auto add = [](Numeric& x, const Numeric& y) { x += y; };
    const auto multiply = [](Numeric& x, const Numeric& y) { x *= y; };
    const auto divide = [](Numeric& x, const Numeric& y) { x /= y; };
    const auto assign = [](Numeric& x, const Numeric& y) { x = y; };
    const auto remainder = [](Numeric& x, const Numeric& y) { x %= y; };
    const auto read = [](Numeric& x, const Numeric& y) { x = Numeric::fromString(y.toString()); };
    // 100 limbs, more than the pool of small blocks keeps; and enough for halves, transforms and reciprocals.
    for (const int digits : {900, 4'000, 20'000}) {
        const Numeric b = Numeric(10).pow(digits) - 1;
        const Numeric a = b * 7 - 5;
        EXPECT_GT(failures_of(a, b, add), 0);
        EXPECT_GT(failures_of(a, b, multiply), 0);
        EXPECT_GT(failures_of(a * b, b, divide), 0);
        EXPECT_GT(failures_of(a, b, remainder), 0);
        EXPECT_GT(failures_of(1, b, assign), 0);
        EXPECT_GT(failures_of(1, b, read), 0);
    }
}

TEST(Allocation, ADivisorOf255LimbsIsDividedByOnTheStackAndALongerOneIsNot) {
    // Long and short quotients; the quotient itself is the one block that is taken.
    const Numeric b = Numeric(10).pow(255 * 9) - 1;
    const Numeric longer = Numeric(10).pow(256 * 9) - 1;
    ASSERT_EQ(b.limbs().size(), 255U);
    for (const int limbs : {300, 384, 512, 2000}) {
        const Numeric a = Numeric(10).pow(limbs * 9) - 7;
        Numeric quotient;
        {
            const test::AllocationLimit limit(1);
            ASSERT_NO_THROW(quotient = a / b) << limbs;
        }
        EXPECT_EQ((quotient * b - a).abs() * 2 <= b, true) << limbs;
        {
            const test::AllocationLimit limit(1);
            EXPECT_THROW(quotient = a / longer, std::bad_alloc) << limbs;
        }
    }
}

TEST(Allocation, ZeroBesideAPlaceFarAwayTakesNoMemory) {
    const Numeric far = Numeric(10).pow(9'000);
    const test::AllocationLimit none(0);
    Numeric sum;
    EXPECT_NO_THROW(sum = 0 + far);
    EXPECT_NO_THROW(sum = 0 - (0 - sum));
    EXPECT_NO_THROW(sum = sum - 0);
    EXPECT_EQ(sum, far);
}

} // namespace
