// SPDX-License-Identifier: Apache-2.0
#include "core/numbers/long/reciprocal.h"
#include "core/numbers/numeric_store.h"

#include <core/numbers/errors.h>
#include <core/numbers/numeric.h>
#include <core/numbers/settings.h>

#include <algorithm>

namespace core {

using namespace limbs;

/// Small operands are worked on in registers, those with the point at the same limb in half as many.
Numeric& Numeric::add(Numeric& out, const Numeric& a, const Numeric& b, bool subtract) {
    if (!a.isSmall() || !b.isSmall()) {
        addLong(out, a, b, subtract);
        return out;
    }
    if (a.fraction_ != b.fraction_) {
        addUnaligned(out, a, b, subtract);
    } else {
        addLow(out, Lanes(a.limbs_), Lanes(b.limbs_), (a.sign_ != b.sign_) != subtract, a.fraction_,
               a.negative());
    }
    return out;
}

/// x + y or, where signs are `different`, x − y, both of up to four limbs with the point at the same limb;
/// `negative` is the sign of x.
inline void Numeric::addLow(Numeric& out, const Lanes& x, const Lanes& y, bool different,
                            std::int32_t fraction, bool negative) {
    if (!different) {
        Pair carry = 0;
        const Pair low = add_pair(x.pairs[0], y.pairs[0], carry);
        const Pair high = add_pair(x.pairs[1], y.pairs[1], carry);
        out.store({low, high, carry, 0}, fraction, negative);
    } else {
        const bool swapped = x.pairs[1] != y.pairs[1] ? x.pairs[1] < y.pairs[1] : x.pairs[0] < y.pairs[0];
        const Lanes& greater = swapped ? y : x;
        const Lanes& smaller = swapped ? x : y;
        Pair borrow = 0;
        const Pair low = subtract_pair(greater.pairs[0], smaller.pairs[0], borrow);
        const Pair high = subtract_pair(greater.pairs[1], smaller.pairs[1], borrow);
        out.store({low, high, 0, 0}, fraction, negative != swapped);
    }
}

/// The operand with fewer fraction limbs moves up.
void Numeric::addUnaligned(Numeric& out, const Numeric& a, const Numeric& b, bool subtract) {
    const bool first = a.fraction_ < b.fraction_;
    const Numeric& coarse = first ? a : b;
    const Numeric& fine = first ? b : a;
    const std::int64_t shift = std::int64_t{fine.fraction_} - coarse.fraction_;
    if (shift >= std::int64_t{kInlineLimbs}) {
        addLong(out, a, b, subtract);
        return;
    }
    const Lanes x = Lanes(coarse.limbs_).shiftedUp(static_cast<unsigned>(shift));
    const Lanes y(fine.limbs_);
    const bool different = (a.sign_ != b.sign_) != subtract;
    const bool negative = coarse.negative() != (subtract && !first);
    if ((x.pairs[2] | x.pairs[3]) == 0) {
        addLow(out, x, y, different, fine.fraction_, negative);
    } else if (!different) {
        out.store(limbs::add(x, y), fine.fraction_, negative);
    } else { // x reaches higher
        out.store(limbs::subtract(x, y), fine.fraction_, negative);
    }
}

/// a ± b on limbs aligned at the point: one operand is laid out over the whole span of both, the other added
/// to it or subtracted from it in place.
void Numeric::addLong(Numeric& out, const Numeric& a, const Numeric& b, bool subtract) {
    if (b.count_ == 0) {
        out = a;
        return;
    }
    if (a.count_ == 0) {
        out = subtract ? -b : b;
        return;
    }
    const bool different = (a.sign_ != b.sign_) != subtract;
    const bool swapped = different && compareMagnitudes(a, b) < 0;
    const Numeric& base = swapped ? b : a;
    const Numeric& other = swapped ? a : b;
    const bool negative = swapped ? b.negative() != subtract : a.negative();

    const std::int64_t fraction = std::max(a.fraction_, b.fraction_);
    const std::int64_t top =
        std::max(std::int64_t{a.count_} - a.fraction_, std::int64_t{b.count_} - b.fraction_);
    const auto span = static_cast<std::size_t>(fraction + top) + 1; // and a carry
    const auto base_at = static_cast<std::size_t>(fraction - base.fraction_);
    const auto other_at = static_cast<std::size_t>(fraction - other.fraction_);
    Numeric result;
    Limb* const sum = result.reserve(span);
    std::fill_n(sum, base_at, Limb{0});
    std::copy_n(base.limbs_, base.limbCount(), sum + base_at);
    std::fill(sum + base_at + base.limbCount(), sum + span, Limb{0});
    const std::span<Limb> target(sum + other_at, sum + span);
    if (different) {
        subtract_from(target, other.limbs());
    } else {
        add_to(target, other.limbs());
    }
    result.finish(span, fraction, negative);
    out = std::move(result);
}

Numeric& Numeric::multiply(Numeric& out, const Numeric& a, const Numeric& b) {
    const std::int64_t fraction = std::int64_t{a.fraction_} + b.fraction_;
    const bool negative = a.sign_ != b.sign_;
    checkShape(0, fraction);
    if (a.isSmall() && b.isSmall()) {
        out.store(limbs::multiply(Lanes(a.limbs_), Lanes(b.limbs_)), fraction, negative);
        return out;
    }
    Numeric result;
    if (a.count_ != 0 && b.count_ != 0) {
        const std::size_t count = a.limbCount() + b.limbCount();
        limbs::multiply({result.reserve(count), count}, a.limbs(), b.limbs());
        result.finish(count, fraction, negative);
    }
    return out = std::move(result);
}

/// The quotient has count(a) + 3 limbs; one more is computed and decides whether they are rounded up. That
/// cannot carry out of the top: a quotient of nines alone in that many limbs would need a dividend of
/// more limbs than a has.
Numeric& Numeric::divide(Numeric& out, const Numeric& a, const Numeric& b) {
    if (b.count_ == 0) {
        throw NumericException(NumericException::Error::divideByZero);
    }
    const std::int64_t fraction = std::int64_t{a.fraction_} - b.fraction_ + b.count_ + 2;
    if (!a.isSmall() || !b.isSmall() || a.fraction_ < 0 || fraction > std::int64_t{kMaxLimbs}) {
        divideLong(out, a, b); // which checks the place of the point
        return out;
    }
    const bool negative = a.sign_ != b.sign_;
    const Lanes dividend(a.limbs_);
    const Lanes divisor(b.limbs_);
    const Word low = word_of(divisor.pairs[0]);
    const Lanes quotient =
        divisor.pairs[1] == 0
            ? divide_small(dividend, a.limbCount(), b.limbCount(), OneWordDivisor(low))
            : divide_small(dividend, a.limbCount(), b.limbCount(),
                           TwoWordDivisor(product(word_of(divisor.pairs[1]), kWordBase) + low));
    const bool up = static_cast<Limb>(quotient.pairs[0]) >= kBase / 2;
    out.store(limbs::add(quotient.shiftedDownByOne(), {up ? 1U : 0U, 0, 0, 0}), fraction, negative);
    return out;
}

void Numeric::divideLong(Numeric& out, const Numeric& a, const Numeric& b) {
    Numeric result;
    if (a.count_ != 0) {
        // Whole numbers that end in zero limbs are divided with those zeros written out.
        const std::size_t zeros = a.fraction_ < 0 ? static_cast<std::size_t>(-a.fraction_) : 0;
        const std::size_t count = a.limbCount() + zeros + 4;
        const std::size_t shift = b.limbCount() + zeros + 3;
        const std::int64_t fraction = std::int64_t{std::max(a.fraction_, 0)} - b.fraction_ + b.count_ + 2;
        Limb* const quotient = result.reserve(count);
        limbs::divide({quotient, count}, a.limbs(), shift, b.limbs());
        if (quotient[0] >= kBase / 2) {
            constexpr Limb one[] = {1};
            add_to({quotient + 1, count - 1}, one);
        }
        quotient[0] = 0;
        result.finish(count, fraction + 1, a.sign_ != b.sign_);
    }
    out = std::move(result);
}

/// By the rounded quotient, as its rule says. With the point at the same limb in both, what is left of a
/// whole quotient is at least one unit of that limb, a part of the divisor far above the last limb of the
/// quotient: rounding cannot reach the next whole number, and the remainder is that of the limbs.
Numeric& Numeric::remainder(Numeric& out, const Numeric& a, const Numeric& b) {
    if (!a.isSmall() || !b.isSmall() || a.fraction_ != b.fraction_ || b.count_ == 0) {
        return out = a - (a / b).wholePart() * b;
    }
    const auto value = [](const Numeric& n) {
        const Lanes lanes(n.limbs_);
        return product(word_of(lanes.pairs[1]), kWordBase) + word_of(lanes.pairs[0]);
    };
    const auto [high, low] = split_word(value(a) % value(b));
    out.store({pair_of(low), pair_of(high), 0, 0}, a.fraction_, a.negative());
    return out;
}

/// The number cut off towards zero.
Numeric Numeric::wholePart() const {
    if (fraction_ <= 0) {
        return *this;
    }
    Numeric result;
    if (count_ > fraction_) {
        const auto count = static_cast<std::size_t>(count_ - fraction_);
        std::copy_n(limbs_ + fraction_, count, result.reserve(count));
        result.finish(count, 0, negative());
    }
    return result;
}

Numeric Numeric::floor() const {
    Numeric whole = wholePart();
    if (negative() && fraction_ > 0) {
        whole -= 1;
    }
    return whole;
}

/// Cuts inside the limb or between the limbs where digit `digits` behind the point ends.
Numeric Numeric::round(std::int32_t digits, NumericRoundMode mode) const {
    constexpr auto kDigits = static_cast<std::int32_t>(kLimbDigits);
    const std::int32_t whole = digits / kDigits;
    const std::int32_t part = digits % kDigits;
    const bool inside = digits > 0 && part != 0; // a fraction limb
    const std::int64_t kept = inside ? whole + 1 : whole;
    const auto drop = static_cast<std::size_t>(inside ? kDigits - part : -part);
    const std::int64_t below = fraction_ - kept; // limbs below the cut
    if (below < 0 || (below == 0 && drop == 0)) {
        return *this;
    }
    Numeric result;
    if (below > count_) {
        return result;
    }
    const auto cut = static_cast<std::size_t>(below);
    const bool half_up = mode == NumericRoundMode::round15as20;
    const std::size_t count = limbCount() - cut;
    Limb* out = result.reserve(count + 2); // the limb that is cut, where it lies above the number; a carry
    std::copy_n(limbs_ + cut, count, out);
    out[count] = 0;
    out[count + 1] = 0;
    bool up = false;
    Limb unit = 1;
    if (drop > 0) {
        unit = kPowers[drop];
        const Limb rest = out[0] % unit;
        out[0] -= rest;
        up = rest > kHalves[drop] || (rest == kHalves[drop] && (cut > 0 || half_up));
    } else {
        const Limb next = limbs_[cut - 1];
        up = next > kHalves[kLimbDigits] || (next == kHalves[kLimbDigits] && (cut > 1 || half_up));
    }
    if (up) {
        add_to({out, count + 2}, {&unit, 1});
    }
    result.finish(count + 2, kept, negative());
    return result;
}

Numeric Numeric::round(std::int32_t digits) const {
    return round(digits, current_settings().part<NumericSettings>().roundMode);
}

} // namespace core
