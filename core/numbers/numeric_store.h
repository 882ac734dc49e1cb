// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/numbers/lanes.h"

#include <core/numbers/numeric.h>

namespace core {

/// The everyday result, up to four limbs in normal form, goes straight to its place.
inline void Numeric::store(const limbs::Lanes& lanes, std::int64_t fraction, bool negative) {
    const auto [low, high, above, top] = lanes.pairs;
    if (static_cast<Limb>(low) == 0 || (above | top) != 0) {
        storeUnusual(lanes, fraction, negative);
        return;
    }
    limbs::store_pair(limbs_, low);
    limbs::store_pair(limbs_ + 2, high);
    const limbs::Pair highest = high != 0 ? high : low;
    setShape((high != 0 ? 3U : 1U) + (highest >> 32 != 0 ? 1U : 0U), fraction, negative);
}

/// A place so far from the point that the number's text could not be held is refused like one limb too many.
inline void Numeric::checkShape(std::size_t count, std::int64_t fraction) {
    constexpr auto kLimit = static_cast<std::int64_t>(kMaxLimbs);
    if (count > kMaxLimbs || fraction > kLimit || static_cast<std::int64_t>(count) - fraction > kLimit) {
        refuse();
    }
}

inline void Numeric::setShape(std::size_t count, std::int64_t fraction, bool negative) noexcept {
    count_ = static_cast<std::int32_t>(count);
    fraction_ = static_cast<std::int32_t>(fraction);
    sign_ = negative ? kNegative : kPositive;
}

} // namespace core
