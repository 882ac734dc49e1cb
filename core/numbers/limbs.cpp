// SPDX-License-Identifier: Apache-2.0
#include "core/numbers/limbs.h"

namespace core::limbs {

Limb add_to(std::span<Limb> out, std::span<const Limb> a) noexcept {
    Limb carry = 0;
    std::size_t i = 0;
    for (; i < a.size(); ++i) {
        const Limb sum = out[i] + a[i] + carry;
        carry = sum >= kLimbBase ? 1 : 0;
        out[i] = carry != 0 ? sum - kLimbBase : sum;
    }
    for (; carry != 0 && i < out.size(); ++i) {
        carry = out[i] == kLimbBase - 1 ? 1 : 0;
        out[i] = carry != 0 ? 0 : out[i] + 1;
    }
    return carry;
}

Limb subtract_from(std::span<Limb> out, std::span<const Limb> a) noexcept {
    Limb borrow = 0;
    std::size_t i = 0;
    for (; i < a.size(); ++i) {
        const Limb difference = out[i] - a[i] - borrow; // below zero it wraps past 2^31
        borrow = difference >> 31;
        out[i] = borrow != 0 ? difference + kLimbBase : difference;
    }
    for (; borrow != 0 && i < out.size(); ++i) {
        borrow = out[i] == 0 ? 1 : 0;
        out[i] = borrow != 0 ? kLimbBase - 1 : out[i] - 1;
    }
    return borrow;
}

} // namespace core::limbs
