// SPDX-License-Identifier: Apache-2.0
#include "core/numbers/limbs.h"

#include <core/numbers/numeric.h>
#include <core/runtime/exceptions.h>

#include <algorithm>

namespace core {

using namespace limbs;

namespace {

/// Results of up to this many limbs are made on the stack and then copied; longer ones in their own store.
constexpr std::size_t kSmall = 16;
/// Room for a small result, with the four readable limbs behind it that Numeric::store() wants.
constexpr std::size_t kSmallRoom = kSmall + Numeric::kInlineLimbs;

} // namespace

/// a ± b on limbs aligned at the point: one operand is laid out over the whole span of both, the other added
/// to it or subtracted from it in place.
Numeric Numeric::add(const Numeric& a, const Numeric& b, bool subtract) {
    if (b.count_ == 0) {
        return a;
    }
    if (a.count_ == 0) {
        return subtract ? -b : b;
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
    const auto combine = [&](Limb* out) {
        std::fill_n(out, base_at, Limb{0});
        std::copy_n(base.limbs_, base.limbCount(), out + base_at);
        std::fill(out + base_at + base.limbCount(), out + span, Limb{0});
        const std::span<Limb> target(out + other_at, out + span);
        if (different) {
            subtract_from(target, other.limbs());
        } else {
            add_to(target, other.limbs());
        }
    };

    Numeric result;
    if (span <= kSmall) {
        Limb limbs[kSmallRoom];
        combine(limbs);
        result.store(limbs, span, fraction, negative);
    } else {
        combine(result.reserve(span));
        result.finish(span, fraction, negative);
    }
    return result;
}

Numeric Numeric::multiply(const Numeric& a, const Numeric& b) {
    Numeric result;
    if (a.count_ == 0 || b.count_ == 0) {
        return result;
    }
    const std::size_t count = a.limbCount() + b.limbCount();
    const std::int64_t fraction = std::int64_t{a.fraction_} + b.fraction_;
    const bool negative = a.sign_ != b.sign_;
    if (count <= kSmall) {
        Limb limbs[kSmallRoom];
        limbs::multiply({limbs, count}, a.limbs(), b.limbs());
        result.store(limbs, count, fraction, negative);
    } else {
        limbs::multiply({result.reserve(count), count}, a.limbs(), b.limbs());
        result.finish(count, fraction, negative);
    }
    return result;
}

/// The quotient has count(a) + 3 limbs; one more is computed and decides whether they are rounded up. That
/// cannot carry out of the top: a quotient of nothing but nines in that many limbs would need a dividend of
/// more limbs than a has.
Numeric Numeric::divide(const Numeric& a, const Numeric& b) {
    if (b.count_ == 0) {
        throw NumericException(NumericException::Error::divideByZero);
    }
    Numeric result;
    if (a.count_ == 0) {
        return result;
    }
    // Whole numbers that end in zero limbs are divided with those zeros written out.
    const std::size_t zeros = a.fraction_ < 0 ? static_cast<std::size_t>(-a.fraction_) : 0;
    const std::size_t count = a.limbCount() + zeros + 4;
    const std::size_t shift = b.limbCount() + zeros + 3;
    const std::int64_t fraction =
        std::max<std::int64_t>(a.fraction_, 0) - b.fraction_ + std::int64_t{b.count_} + 2;
    const bool negative = a.sign_ != b.sign_;
    const auto quotient = [&](Limb* out) {
        limbs::divide({out, count}, a.limbs(), shift, b.limbs());
        if (out[0] >= kBase / 2) {
            constexpr Limb one[] = {1};
            add_to({out + 1, count - 1}, one);
        }
        out[0] = 0;
    };
    if (count <= kSmall) {
        Limb limbs[kSmallRoom];
        quotient(limbs);
        result.store(limbs, count, fraction + 1, negative);
    } else {
        quotient(result.reserve(count));
        result.finish(count, fraction + 1, negative);
    }
    return result;
}

Numeric Numeric::remainder(const Numeric& a, const Numeric& b) {
    return a - (a / b).wholePart() * b;
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
    return negative() && fraction_ > 0 ? std::move(whole) - 1 : whole;
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
    return round(digits, current_settings().roundMode);
}

} // namespace core
