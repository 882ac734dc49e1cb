// SPDX-License-Identifier: Apache-2.0
#include "core/numbers/long/multiply.h"

#include "core/numbers/long/scratch.h"
#include "core/numbers/long/transform.h"

#include <algorithm>
#include <cassert>

namespace core::limbs {
namespace {

/// Up to this many limbs in the shorter factor, column sums of limb products fit 64
/// bits: 18 × 10^18 and the carry.
constexpr std::size_t kLimbColumns = 17;

/// Column by column, each column summed before it is reduced.
void multiply_columns(std::span<Limb> out, std::span<const Limb> a, std::span<const Limb> b) noexcept {
    std::uint64_t sum = 0;
    const std::size_t columns = out.size() - 1;
    for (std::size_t k = 0; k < columns; ++k) {
        const std::size_t first = k < b.size() ? 0 : k - b.size() + 1;
        const std::size_t last = std::min(k + 1, a.size());
        for (std::size_t i = first; i < last; ++i) {
            sum += std::uint64_t{a[i]} * b[k - i];
        }
        out[k] = static_cast<Limb>(sum % kLimbBase);
        sum /= kLimbBase;
    }
    out[columns] = static_cast<Limb>(sum);
}

/// The same on words, for factors of which the shorter has at most 256. A column is summed in two chains and
/// meets the carry last, so that it does not wait for the reduction of the column before.
void multiply_columns(std::span<Word> out, std::span<const Word> a, std::span<const Word> b) noexcept {
    DoubleWord carry = 0;
    const std::size_t columns = out.size() - 1;
    for (std::size_t k = 0; k < columns; ++k) {
        const std::size_t first = k < b.size() ? 0 : k - b.size() + 1;
        std::size_t count = std::min(k + 1, a.size()) - first;
        const Word* p = a.data() + first;
        const Word* q = b.data() + (k - first);
        DoubleWord even = 0;
        DoubleWord odd = 0;
        for (; count >= 4; count -= 4, p += 4, q -= 4) {
            even += product(p[0], q[0]);
            odd += product(p[1], q[-1]);
            even += product(p[2], q[-2]);
            odd += product(p[3], q[-3]);
        }
        for (; count != 0; --count, ++p, --q) {
            even += product(*p, *q);
        }
        carry += even + odd;
        out[k] = reduce_column(carry);
    }
    out[columns] = low_half(carry);
}

/// Words of working area for multiply_halves() on factors of n words: 4m + 1 a level, m half of n rounded up.
constexpr std::size_t halves_scratch(std::size_t n) noexcept {
    return 4 * n + 256;
}

/// out = a × b for factors of equal size, by Karatsuba's method: with a = a1 W + a0 and b = b1 W + b0, the
/// middle of the product is a0 b0 + a1 b1 − (a1 − a0) (b1 − b0).
void multiply_halves(std::span<Word> out, std::span<const Word> a, std::span<const Word> b,
                     std::span<Word> scratch) noexcept {
    const std::size_t n = a.size();
    if (n < kHalvesThreshold) {
        multiply_columns(out, a, b);
        return;
    }
    const std::size_t m = (n + 1) / 2;
    const auto difference = [m](std::span<Word> target, std::span<const Word> x) {
        const auto low = x.first(m);
        const auto high = x.subspan(m);
        const bool negative = [&] {
            return low.size() > high.size() && low.back() != 0 ? false
                                                               : compare(high, low.first(high.size())) > 0;
        }();
        const auto greater = negative ? high : low;
        const auto smaller = negative ? low.first(high.size()) : high;
        std::fill(std::copy(greater.begin(), greater.end(), target.begin()), target.end(), Word{0});
        subtract_from(target, smaller);
        return negative;
    };
    const auto differences = out.first(2 * m);
    const bool negative = difference(differences.first(m), a) != difference(differences.subspan(m), b);
    const auto crossed = scratch.first(2 * m);
    const auto rest = scratch.subspan(2 * m);
    multiply_halves(crossed, differences.first(m), differences.subspan(m), rest);
    multiply_halves(out.first(2 * m), a.first(m), b.first(m), rest);
    multiply_halves(out.subspan(2 * m), a.subspan(m), b.subspan(m), rest);

    const auto middle = rest.first(2 * m + 1);
    std::copy_n(out.begin(), 2 * m, middle.begin());
    middle.back() = 0;
    add_to(middle, out.subspan(2 * m));
    if (negative) {
        add_to(middle, crossed);
    } else {
        subtract_from(middle, crossed);
    }
    // The last word of the middle is zero where the product has no place for it.
    const auto target = out.subspan(m);
    add_to(target, std::span<const Word>(middle).first(std::min(middle.size(), target.size())));
}

/// Slices of the longer factor as long as the shorter, each product added at its place.
void multiply_slices(std::span<Word> out, std::span<const Word> a, std::span<const Word> b) {
    const std::size_t n = b.size();
    const std::size_t words = 2 * n + halves_scratch(n);
    const std::unique_ptr<Word[]> memory(new Word[words]);
    const std::span<Word> part(memory.get(), 2 * n);
    const auto scratch = std::span<Word>(memory.get(), words).subspan(2 * n);
    std::fill(out.begin(), out.end(), Word{0});
    for (std::size_t i = 0; i < a.size(); i += n) {
        const auto slice = a.subspan(i, std::min(n, a.size() - i));
        const auto product = part.first(n + slice.size());
        if (slice.size() == n) {
            multiply_halves(product, slice, b, scratch);
        } else {
            multiply(product, b, slice);
        }
        add_to(out.subspan(i), product);
    }
}

} // namespace

void multiply(std::span<Word> out, std::span<const Word> a, std::span<const Word> b) {
    assert(out.size() == a.size() + b.size());
    if (a.size() < b.size()) {
        std::swap(a, b);
    }
    if (b.size() < kHalvesThreshold) {
        multiply_columns(out, a, b);
    } else if (b.size() < kTransformThreshold) {
        multiply_slices(out, a, b);
    } else {
        multiply_by_transform(out, a, b);
    }
}

void multiply(std::span<Limb> out, std::span<const Limb> a, std::span<const Limb> b) {
    assert(out.size() == a.size() + b.size());
    if (std::min(a.size(), b.size()) <= kLimbColumns) {
        multiply_columns(out, a, b);
        return;
    }
    constexpr std::size_t kStack = 128;
    const bool square = a.data() == b.data() && a.size() == b.size();
    const std::size_t na = word_count(a.size());
    const std::size_t nb = word_count(b.size());
    Scratch<Word, kStack> factors(na + (square ? 0 : nb));
    Scratch<Word, kStack> result(na + nb);
    const auto wa = factors.span().first(na);
    const auto wb = square ? wa : factors.span().subspan(na);
    pack(wa, a);
    if (!square) {
        pack(wb, b);
    }
    multiply(result.span(), wa, wb);
    unpack(out, result.span());
}

} // namespace core::limbs
