// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/numbers/numeric.h>

#include <cstring>

/// The inline bodies of Numeric, apart from its interface.
namespace core {

template <NumericInteger T>
Numeric::Numeric(T value) noexcept {
    const auto bits = static_cast<std::uint64_t>(value);
    const bool negative = std::is_signed_v<T> && value < T{};
    setInteger(negative ? 0 - bits : bits, negative);
}

inline Numeric::Numeric(Numeric&& other) noexcept {
    steal(other);
}

/// Takes the value of `other` into a number without a heap store.
inline void Numeric::steal(Numeric& other) noexcept {
    count_ = other.count_;
    fraction_ = other.fraction_;
    sign_ = other.sign_;
    if (other.limbs_ == other.inline_) {
        std::memcpy(inline_, other.inline_, sizeof inline_);
        return;
    }
    capacity_ = other.capacity_;
    limbs_ = other.limbs_;
    other.capacity_ = kInlineLimbs;
    other.limbs_ = other.inline_;
    std::memset(other.inline_, 0, sizeof other.inline_);
    other.count_ = 0;
    other.fraction_ = 0;
    other.sign_ = kPositive;
}

inline Numeric& Numeric::operator=(Numeric&& other) noexcept {
    if (this != &other) {
        release();
        capacity_ = kInlineLimbs;
        limbs_ = inline_;
        steal(other);
    }
    return *this;
}

inline bool Numeric::equals(const Numeric& other) const noexcept {
    return count_ == other.count_ && fraction_ == other.fraction_ && sign_ == other.sign_ &&
           std::memcmp(limbs_, other.limbs_, limbCount() * sizeof(Limb)) == 0;
}

} // namespace core
