// SPDX-License-Identifier: Apache-2.0
#include "core/numbers/numeric_store.h"
#include "core/runtime/memory/block_pool.h"

#include <core/numbers/errors.h>
#include <core/numbers/numeric.h>

#include <algorithm>
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

} // namespace

void Numeric::freeLimbs() noexcept {
    free_block(limbs_, capacity_ * sizeof(Limb));
}

// Constants that a program takes by reference: a library of Windows exports those that are defined.
constexpr std::size_t Numeric::kInlineLimbs;
constexpr std::size_t Numeric::kMaxLimbs;

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
    // The lowest limb is never zero, so the number that has more of them is greater.
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
