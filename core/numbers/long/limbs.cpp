// SPDX-License-Identifier: Apache-2.0
#include "core/numbers/long/limbs.h"

#include "core/numbers/long/pairs.h"

namespace core::limbs {

Limb add_to(std::span<Limb> out, std::span<const Limb> a) noexcept {
    Pair carry = 0;
    std::size_t i = 0;
    for (; i + 2 <= a.size(); i += 2) {
        store_pair(&out[i], add_pair(load_pair(&out[i]), load_pair(&a[i]), carry));
    }
    for (; i < out.size() && (i < a.size() || carry != 0); ++i) {
        const Limb sum = out[i] + (i < a.size() ? a[i] : 0) + static_cast<Limb>(carry);
        carry = sum >= kLimbBase ? 1 : 0;
        out[i] = sum - (carry != 0 ? kLimbBase : 0);
    }
    return static_cast<Limb>(carry);
}

Limb subtract_from(std::span<Limb> out, std::span<const Limb> a) noexcept {
    Pair borrow = 0;
    std::size_t i = 0;
    for (; i + 2 <= a.size(); i += 2) {
        store_pair(&out[i], subtract_pair(load_pair(&out[i]), load_pair(&a[i]), borrow));
    }
    for (; i < out.size() && (i < a.size() || borrow != 0); ++i) {
        const Limb difference = out[i] - (i < a.size() ? a[i] : 0) - static_cast<Limb>(borrow);
        borrow = difference >> 31; // below zero it wraps past 2^31
        out[i] = difference + (borrow != 0 ? kLimbBase : 0);
    }
    return static_cast<Limb>(borrow);
}

} // namespace core::limbs
