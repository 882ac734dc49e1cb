// SPDX-License-Identifier: Apache-2.0
#include "core/numbers/numeric_store.h"
#include "core/runtime/memory/block_pool.h"

#include <core/numbers/errors.h>
#include <core/numbers/numeric.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <new>

namespace core {

using namespace limbs;

namespace {

/// A number that would need more limbs than a number may have.
class TooManyLimbs : public std::bad_alloc {
  public:
    [[nodiscard]] const char* what() const noexcept override { return "bad allocation"; }
};

Numeric::Limb* allocate(std::size_t count) {
    if (count > Numeric::kMaxLimbs) {
        throw TooManyLimbs();
    }
    return static_cast<Numeric::Limb*>(allocate_block(count * sizeof(Numeric::Limb)));
}

/// Limb × 10^9 + limb ... for the up to three highest limbs; `used` receives their number.
template <class Float>
Float highest_limbs(std::span<const Limb> limbs, std::size_t& used) noexcept {
    used = std::min<std::size_t>(limbs.size(), 3);
    Float value = 0;
    for (std::size_t i = 0; i < used; ++i) {
        value = value * static_cast<Float>(kLimbBase) + static_cast<Float>(limbs[limbs.size() - 1 - i]);
    }
    return value;
}

} // namespace

void Numeric::freeLimbs() noexcept {
    free_block(limbs_, capacity_ * sizeof(Limb));
}

Numeric::Numeric(const Numeric& other)
    : count_(other.count_), fraction_(other.fraction_), sign_(other.sign_) {
    if (limbCount() > kInlineLimbs) {
        limbs_ = allocate(limbCount());
        capacity_ = static_cast<std::uint32_t>(count_);
        std::copy_n(other.limbs_, limbCount(), limbs_);
    } else {
        std::memcpy(inline_, other.limbs_, sizeof inline_);
    }
}

Numeric& Numeric::operator=(const Numeric& other) {
    if (other.limbCount() > capacity_) {
        return *this = Numeric(other);
    }
    std::memmove(limbs_, other.limbs_, std::max(other.limbCount(), kInlineLimbs) * sizeof(Limb));
    count_ = other.count_;
    fraction_ = other.fraction_;
    sign_ = other.sign_;
    return *this;
}

Numeric::Numeric(double value) {
    constexpr double kExactIntegers = 1e15;
    if (!std::isfinite(value)) {
        throw NumericException(NumericException::Error::overflow);
    }
    const double magnitude = std::fabs(value);
    if (magnitude < kExactIntegers && magnitude == std::floor(magnitude)) {
        setInteger(static_cast<std::uint64_t>(magnitude), std::signbit(value));
        return;
    }
    // d.ddde±xx: at most 17 digits, placed by the exponent.
    char text[32];
    const char* end = std::to_chars(text, text + sizeof text, magnitude, std::chars_format::scientific).ptr;
    std::int32_t exponent = 0; // of the last digit
    std::uint64_t digits = 0;
    for (const char* p = text; p != end; ++p) {
        if (*p == 'e') {
            std::int32_t written = 0;
            std::from_chars(p[1] == '+' ? p + 2 : p + 1, end, written);
            exponent += written;
            break;
        }
        if (*p != '.') {
            digits = digits * 10 + static_cast<std::uint64_t>(*p - '0');
            exponent -= p == text ? 0 : 1;
        }
    }
    // value = digits × 10^exponent = digits × 10^filler × 10^(−9 × fraction)
    constexpr std::int32_t kDigits = kLimbDigits;
    const std::int32_t fraction = exponent >= 0 ? -(exponent / kDigits) : (kDigits - 1 - exponent) / kDigits;
    const std::int32_t filler = exponent + fraction * kDigits;
    const auto [high, low] = split_word(product(digits, kPowers[static_cast<std::size_t>(filler)]));
    store({pair_of(low), pair_of(high), 0, 0}, fraction, std::signbit(value));
}

int Numeric::compareMagnitudes(const Numeric& a, const Numeric& b) noexcept {
    const std::int64_t top = std::int64_t{a.count_} - a.fraction_;
    const std::int64_t other_top = std::int64_t{b.count_} - b.fraction_;
    if (a.count_ == 0 || b.count_ == 0) {
        return (a.count_ != 0 ? 1 : 0) - (b.count_ != 0 ? 1 : 0);
    }
    if (top != other_top) {
        return top < other_top ? -1 : 1;
    }
    const Limb* p = a.limbs_ + a.count_;
    const Limb* q = b.limbs_ + b.count_;
    for (std::int32_t i = std::min(a.count_, b.count_); i > 0; --i) {
        --p;
        --q;
        if (*p != *q) {
            return *p < *q ? -1 : 1;
        }
    }
    // The lowest limb is never zero, so whoever has more of them is greater.
    return a.count_ == b.count_ ? 0 : a.count_ < b.count_ ? -1 : 1;
}

int Numeric::compare(const Numeric& other) const noexcept {
    if (sign_ != other.sign_) {
        return negative() ? -1 : 1;
    }
    const int magnitudes = compareMagnitudes(*this, other);
    return negative() ? -magnitudes : magnitudes;
}

Numeric Numeric::operator-() const {
    Numeric result = *this;
    if (count_ != 0) {
        result.sign_ = negative() ? kPositive : kNegative;
    }
    return result;
}

Numeric Numeric::abs() const {
    Numeric result = *this;
    result.sign_ = kPositive;
    return result;
}

/// Modulo 2^64 the zeros implied by eight limbs make everything zero, since 10^9 is a multiple of 2^9: only
/// the eight lowest whole limbs count.
std::uint64_t Numeric::toInteger() const noexcept {
    std::uint64_t value = 0;
    const std::int64_t first = std::max<std::int64_t>(fraction_, 0);
    const std::int64_t last = std::min<std::int64_t>(count_, std::int64_t{fraction_} + 8);
    for (std::int64_t i = last; i-- > first;) {
        value = value * kBase + limbs_[i];
    }
    for (std::int64_t i = std::max(fraction_, -8); i < 0; ++i) {
        value *= kBase;
    }
    return negative() ? 0 - value : value;
}

Numeric::operator double() const noexcept {
    // Exact while both the limbs and the divisor are exact in a double.
    constexpr double kExact = 0x1p53;
    std::size_t used = 0;
    if (count_ <= 2 && fraction_ >= 0 && fraction_ <= 2) {
        constexpr double kScale[] = {1, 1e9, 1e18};
        const double value = highest_limbs<double>(limbs(), used);
        if (value <= kExact) {
            return (negative() ? -value : value) / kScale[fraction_];
        }
    }
    // Else by the decimal reader, which rounds correctly: limb, limb, limb, "e", exponent.
    char text[64];
    char* out = text;
    used = std::min<std::size_t>(limbCount(), 3);
    for (std::size_t i = 0; i < used; ++i) {
        Limb limb = limbs_[limbCount() - 1 - i];
        for (std::size_t digit = kLimbDigits; digit-- > 0; limb /= 10) {
            out[digit] = static_cast<char>('0' + limb % 10);
        }
        out += kLimbDigits;
    }
    *out++ = 'e';
    const std::int64_t exponent = (std::int64_t{count_} - fraction_ - static_cast<std::int64_t>(used)) *
                                  static_cast<std::int64_t>(kLimbDigits);
    out = std::to_chars(out, text + sizeof text, exponent).ptr;
    double value = 0;
    if (std::from_chars(text, out, value).ec == std::errc::result_out_of_range) {
        value = exponent > 0 ? std::numeric_limits<double>::infinity() : 0;
    }
    return negative() ? -value : value;
}

Numeric::operator long double() const noexcept {
    std::size_t used = 0;
    auto value = highest_limbs<long double>(limbs(), used);
    const auto scale =
        static_cast<long double>(std::int64_t{count_} - fraction_ - static_cast<std::int64_t>(used));
    constexpr long double base = kBase;
    if (scale >= 0) {
        value *= std::pow(base, scale);
    } else {
        // In two steps: the power may be out of range where the quotient is not.
        const long double half = std::floor(scale / 2);
        value = value / std::pow(base, -half) / std::pow(base, half - scale);
    }
    return negative() ? -value : value;
}

void Numeric::setInteger(std::uint64_t magnitude, bool negative) noexcept {
    if (magnitude == 0) {
        return;
    }
    sign_ = negative ? kNegative : kPositive;
    while (magnitude % kBase == 0) {
        magnitude /= kBase;
        --fraction_;
    }
    for (; magnitude != 0; magnitude /= kBase) {
        inline_[count_++] = static_cast<Limb>(magnitude % kBase);
    }
}

void Numeric::refuse() {
    throw TooManyLimbs();
}

Limb* Numeric::reserve(std::size_t count) {
    if (count > capacity_) {
        Limb* limbs = allocate(count);
        release();
        limbs_ = limbs;
        capacity_ = static_cast<std::uint32_t>(count);
    }
    return limbs_;
}

void Numeric::finish(std::size_t count, std::int64_t fraction, bool negative) {
    while (count > 0 && limbs_[count - 1] == 0) {
        --count;
    }
    std::size_t zeros = 0;
    while (zeros < count && limbs_[zeros] == 0) {
        ++zeros;
    }
    count -= zeros;
    if (zeros != 0) {
        std::memmove(limbs_, limbs_ + zeros, count * sizeof(Limb));
        fraction -= static_cast<std::int64_t>(zeros);
    }
    for (std::size_t i = count; i < kInlineLimbs; ++i) {
        limbs_[i] = 0;
    }
    if (count == 0) {
        return;
    }
    checkShape(count, fraction);
    setShape(count, fraction, negative);
}

void Numeric::storeUnusual(const Lanes& lanes, std::int64_t fraction, bool negative) {
    Pair p0 = lanes.pairs[0];
    Pair p1 = lanes.pairs[1];
    Pair p2 = lanes.pairs[2];
    Pair p3 = lanes.pairs[3];
    if ((p0 | p1 | p2 | p3) == 0) {
        fraction = 0;
        negative = false;
    } else {
        for (; static_cast<Limb>(p0) == 0; --fraction) {
            p0 = p0 >> 32 | p1 << 32;
            p1 = p1 >> 32 | p2 << 32;
            p2 = p2 >> 32 | p3 << 32;
            p3 >>= 32;
        }
    }
    const std::size_t count = Lanes(p0, p1, p2, p3).count();
    if (count > kInlineLimbs) {
        reserve(Lanes::kLimbs);
        store_pair(limbs_ + 4, p2);
        store_pair(limbs_ + 6, p3);
    }
    store_pair(limbs_, p0);
    store_pair(limbs_ + 2, p1);
    setShape(count, fraction, negative);
}

} // namespace core
