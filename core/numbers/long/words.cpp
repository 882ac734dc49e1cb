// SPDX-License-Identifier: Apache-2.0
#include "core/numbers/long/words.h"

#include <algorithm>
#include <cassert>

namespace core::limbs {

void pack(std::span<Word> out, std::span<const Limb> a) noexcept {
    assert(out.size() >= word_count(a.size()));
    std::size_t i = 0;
    for (; 2 * i + 1 < a.size(); ++i) {
        out[i] = a[2 * i] + Word{a[2 * i + 1]} * kLimbBase;
    }
    if (2 * i < a.size()) {
        out[i] = a[2 * i];
        ++i;
    }
    std::fill(out.begin() + static_cast<std::ptrdiff_t>(i), out.end(), Word{0});
}

void unpack(std::span<Limb> out, std::span<const Word> a) noexcept {
    std::size_t i = 0;
    for (; i < a.size() && 2 * i + 1 < out.size(); ++i) {
        const Word high = a[i] / kLimbBase;
        out[2 * i] = static_cast<Limb>(a[i] - high * kLimbBase);
        out[2 * i + 1] = static_cast<Limb>(high);
    }
    if (i < a.size() && 2 * i < out.size()) {
        out[2 * i] = static_cast<Limb>(a[i] % kLimbBase);
        ++i;
    }
    if (2 * i < out.size()) {
        std::fill(out.begin() + static_cast<std::ptrdiff_t>(2 * i), out.end(), Limb{0});
    }
}

Word add_to(std::span<Word> out, std::span<const Word> a) noexcept {
    Word carry = 0;
    std::size_t i = 0;
    for (; i < a.size(); ++i) {
        const Word sum = out[i] + a[i] + carry;
        carry = sum >= kWordBase ? 1 : 0;
        out[i] = sum - (mask(carry != 0) & kWordBase);
    }
    for (; carry != 0 && i < out.size(); ++i) {
        carry = out[i] == kWordBase - 1 ? 1 : 0;
        out[i] = carry != 0 ? 0 : out[i] + 1;
    }
    return carry;
}

Word subtract_from(std::span<Word> out, std::span<const Word> a) noexcept {
    Word borrow = 0;
    std::size_t i = 0;
    for (; i < a.size(); ++i) {
        const Word difference = out[i] - a[i] - borrow; // below zero it wraps past 2^63
        borrow = difference >> 63;
        out[i] = difference + (mask(borrow != 0) & kWordBase);
    }
    for (; borrow != 0 && i < out.size(); ++i) {
        borrow = out[i] == 0 ? 1 : 0;
        out[i] = borrow != 0 ? kWordBase - 1 : out[i] - 1;
    }
    return borrow;
}

int compare(std::span<const Word> a, std::span<const Word> b) noexcept {
    for (std::size_t i = a.size(); i-- > 0;) {
        if (a[i] != b[i]) {
            return a[i] < b[i] ? -1 : 1;
        }
    }
    return 0;
}

} // namespace core::limbs
