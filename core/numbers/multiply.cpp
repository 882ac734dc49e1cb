// SPDX-License-Identifier: Apache-2.0
#include "core/numbers/scratch.h"
#include "core/numbers/words.h"

#include <algorithm>
#include <cassert>

namespace core::limbs {
namespace {

/// Up to this many limbs in the shorter factor, column sums of limb products fit 64 bits: 18 × 10^18 and the
/// carry.
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

/// The same on words, for factors of which the shorter has at most 256.
void multiply_columns(std::span<Word> out, std::span<const Word> a, std::span<const Word> b) noexcept {
    DoubleWord sum = 0;
    const std::size_t columns = out.size() - 1;
    for (std::size_t k = 0; k < columns; ++k) {
        const std::size_t first = k < b.size() ? 0 : k - b.size() + 1;
        const std::size_t last = std::min(k + 1, a.size());
        for (std::size_t i = first; i < last; ++i) {
            sum += product(a[i], b[k - i]);
        }
        out[k] = reduce_column(sum);
    }
    out[columns] = low_half(sum);
}

constexpr std::size_t kMaxColumns = 256;

} // namespace

void multiply(std::span<Word> out, std::span<const Word> a, std::span<const Word> b) {
    assert(out.size() == a.size() + b.size());
    if (a.size() < b.size()) {
        std::swap(a, b);
    }
    if (b.size() <= kMaxColumns) {
        multiply_columns(out, a, b);
        return;
    }
    // Slices of the shorter factor, each added at its place.
    std::fill(out.begin(), out.end(), Word{0});
    Scratch<Word, 1> part(a.size() + kMaxColumns);
    for (std::size_t i = 0; i < b.size(); i += kMaxColumns) {
        const auto slice = b.subspan(i, std::min(kMaxColumns, b.size() - i));
        const auto sum = part.span().first(a.size() + slice.size());
        multiply_columns(sum, a, slice);
        add_to(out.subspan(i), sum);
    }
}

void multiply(std::span<Limb> out, std::span<const Limb> a, std::span<const Limb> b) {
    assert(out.size() == a.size() + b.size());
    if (std::min(a.size(), b.size()) <= kLimbColumns) {
        multiply_columns(out, a, b);
        return;
    }
    constexpr std::size_t kStack = 128;
    const std::size_t na = word_count(a.size());
    const std::size_t nb = word_count(b.size());
    Scratch<Word, kStack> factors(na + nb);
    Scratch<Word, kStack> result(na + nb);
    const auto wa = factors.span().first(na);
    const auto wb = factors.span().subspan(na);
    pack(wa, a);
    pack(wb, b);
    multiply(result.span(), wa, wb);
    unpack(out, result.span());
}

} // namespace core::limbs
