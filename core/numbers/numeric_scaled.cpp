// SPDX-License-Identifier: Apache-2.0
#include "core/numbers/numeric_store.h"

#include <core/numbers/numeric.h>

#include <array>
#include <limits>

namespace core {

using namespace limbs;

namespace {

/// 10^0 ... 10^18.
constexpr std::array<Word, 19> kTens = [] {
    std::array<Word, 19> tens{1};
    for (std::size_t i = 1; i < tens.size(); ++i) {
        tens[i] = tens[i - 1] * 10;
    }
    return tens;
}();

constexpr auto kLargest = static_cast<Word>(std::numeric_limits<std::int64_t>::max());

/// whole / 10^digits, where that is a whole number.
std::optional<DoubleWord> shifted_down(DoubleWord whole, std::size_t digits) noexcept {
    for (std::size_t left = digits; left != 0;) {
        const std::size_t step = std::min(left, kTens.size() - 1);
        const bool small = high_half(whole) == 0;
        const DoubleWord quotient = small ? low_half(whole) / kTens[step] : whole / kTens[step];
        if (quotient * kTens[step] != whole) {
            return std::nullopt;
        }
        whole = quotient;
        left -= step;
    }
    return whole;
}

} // namespace

std::optional<std::int64_t> Numeric::scaled(std::uint32_t digits) const noexcept {
    if (!isSmall() || digits > kMaxScale) {
        return std::nullopt; // what fits has no more than four limbs
    }
    const Pair low = load_pair(limbs_);
    const Pair high = load_pair(limbs_ + 2);
    DoubleWord whole = product(word_of(high), kWordBase) + word_of(low);
    const std::int64_t shift = std::int64_t{digits} - std::int64_t{fraction_} * std::int64_t{kLimbDigits};
    if (shift < 0) {
        constexpr std::int64_t allDigits = kInlineLimbs * kLimbDigits;
        const auto shifted =
            shift < -allDigits ? std::nullopt : shifted_down(whole, static_cast<std::size_t>(-shift));
        if (!shifted) {
            return std::nullopt;
        }
        whole = *shifted;
    } else if (shift > 0 && whole != 0) {
        const auto step = static_cast<std::size_t>(shift);
        if (step >= kTens.size() || whole > kLargest / kTens[step]) {
            return std::nullopt;
        }
        whole *= kTens[step];
    }
    if (whole > kLargest) {
        return std::nullopt;
    }
    const auto magnitude = static_cast<std::int64_t>(low_half(whole));
    return negative() ? -magnitude : magnitude;
}

Numeric Numeric::fromScaled(std::int64_t value, std::uint32_t digits) {
    const bool negative = value < 0;
    const auto bits = static_cast<Word>(value);
    const Word magnitude = negative ? 0 - bits : bits;
    const std::size_t fraction = (digits + kLimbDigits - 1) / kLimbDigits;
    const auto [high, low] = split_word(product(magnitude, kTens[fraction * kLimbDigits - digits]));
    Numeric result;
    result.store(Lanes(pair_of(low), pair_of(high), 0, 0), static_cast<std::int64_t>(fraction), negative);
    return result;
}

} // namespace core
