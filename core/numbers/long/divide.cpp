// SPDX-License-Identifier: Apache-2.0
#include "core/numbers/long/divide.h"

#include "core/numbers/long/newton.h"
#include "core/numbers/long/reciprocal.h"

#include <algorithm>
#include <cassert>
#include <memory>

namespace core::limbs {
namespace {

/// The words of a × 10^(9 × shift), without building it.
class ShiftedWords {
  public:
    ShiftedWords(std::span<const Limb> a, std::size_t shift) noexcept : a_(a), shift_(shift) {}

    [[nodiscard]] std::size_t limbs() const noexcept { return a_.size() + shift_; }
    [[nodiscard]] Limb limb(std::size_t i) const noexcept {
        return i - shift_ < a_.size() ? a_[i - shift_] : 0; // below the shift the index wraps
    }
    [[nodiscard]] Word operator[](std::size_t i) const noexcept {
        return limb(2 * i) + Word{limb(2 * i + 1)} * kLimbBase;
    }

  private:
    std::span<const Limb> a_;
    std::size_t shift_;
};

void put_word(std::span<Limb> q, std::size_t i, Word word) noexcept {
    if (2 * i < q.size()) {
        q[2 * i] = static_cast<Limb>(word % kLimbBase);
    }
    if (2 * i + 1 < q.size()) {
        q[2 * i + 1] = static_cast<Limb>(word / kLimbBase);
    }
}

[[nodiscard]] DoubleWord value_of(std::span<const Limb> limbs) noexcept {
    DoubleWord value = 0;
    for (std::size_t i = limbs.size(); i-- > 0;) {
        value = value * kLimbBase + limbs[i];
    }
    return value;
}

/// Short division: one quotient word a step, the remainder in machine words. The first remainder is what
/// stands above the lowest `words` words of the dividend: fewer limbs than the divisor has, thus below it.
template <class Divisor>
void divide_short(std::span<Limb> q, const ShiftedWords& a, std::size_t words,
                  const Divisor& divisor) noexcept {
    DoubleWord above = 0;
    for (std::size_t i = a.limbs(); i-- > 2 * words;) {
        above = above * kLimbBase + a.limb(i);
    }
    auto remainder = divisor.shifted(static_cast<typename Divisor::Remainder>(above));
    for (std::size_t i = words; i-- > 0;) {
        put_word(q, i, divisor.step(remainder, a[i]));
    }
}

/// r −= v × q in place, for r of as many words as v and `top` above them; returns whether the result wrapped
/// below zero.
///
/// With ratio = ⌊q × 2^64 / 10^18⌋, the upper half of v[i] × ratio is the upper word of v[i] × q or 1 less.
/// The products do not wait for one another; only the borrows form a chain.
bool subtract_product(Word top, std::span<Word> r, std::span<const Word> v, Word q) noexcept {
    const Word ratio = split_word(DoubleWord{q} << 64).quotient;
    Word carry = 0;
    Word borrow = 0;
    for (std::size_t i = 0; i < v.size(); ++i) {
        const Word high = high_half(product(v[i], ratio));
        const Word low = v[i] * q - high * kWordBase; // below twice the base
        const Word over = low >= kWordBase ? 1 : 0;
        const Word subtrahend = low - (mask(over != 0) & kWordBase) + carry;
        carry = high + over;
        const Word difference = r[i] - subtrahend - borrow; // wraps if negative, and is above −2 × 10^18
        const Word once = mask(difference >> 63 != 0);
        const Word twice = mask((difference + kWordBase) >> 63 != 0);
        r[i] = difference + (once & kWordBase) + (twice & kWordBase);
        borrow = 0 - once - twice;
    }
    return top - carry - borrow != 0;
}

/// One step of long division: q = ⌊r / v⌋ < 10^18 for r of as many words as v and `above` them; r becomes the
/// remainder.
///
/// q is estimated as the top three words of r by the top two words d of v. The estimate is never
/// too small, and too large by at most 1: with u the top three words, u / d − u / (d + 1) < (u / d)
/// / d <= 10^18 / d, and d >= 10^18.
Word divide_step(Word above, std::span<Word> r, std::span<const Word> v, const TwoWordDivisor& top,
                 DoubleWord d) noexcept {
    const std::size_t n = v.size();
    const DoubleWord upper = DoubleWord{above} * kWordBase + r[n - 1];
    Word q = kWordBase - 1;
    if (upper < d) {
        auto rest = top.shifted(upper);
        q = top.step(rest, r[n - 2]);
    }
    if (q != 0 && subtract_product(above, r, v, q)) {
        --q;
        add_to(r, v);
    }
    return q;
}

/// Long division with a window of the dividend as long as the divisor, so that the working area depends on
/// the divisor alone: `v` for its words, which are packed here, and as many for the remainder.
void divide_long(std::span<Limb> q, const ShiftedWords& a, std::span<const Limb> b, std::span<Word> v,
                 std::span<Word> remainder) noexcept {
    const std::size_t n = v.size();
    const std::size_t words = word_count(a.limbs());
    pack(v, b);
    const DoubleWord d = DoubleWord{v[n - 1]} * kWordBase + v[n - 2];
    const TwoWordDivisor top(d);

    const std::size_t first = words >= n ? words - n + 1 : 0; // the words above it are below the divisor
    std::fill(remainder.begin(), remainder.end(), Word{0});
    for (std::size_t i = words; i-- > first;) {
        remainder[i - first] = a[i];
    }
    for (std::size_t i = first; i-- > 0;) {
        const Word above = remainder.back();
        std::copy_backward(remainder.begin(), remainder.end() - 1, remainder.end());
        remainder.front() = a[i];
        put_word(q, i, divide_step(above, remainder, v, top, d));
    }
}

void divide_long(std::span<Limb> q, const ShiftedWords& a, std::span<const Limb> b) {
    constexpr std::size_t kStack = (kStackDivisor + 1) / 2;
    const std::size_t n = word_count(b.size());
    if (b.size() <= kStackDivisor) {
        Word divisor[kStack];
        Word remainder[kStack];
        divide_long(q, a, b, {divisor, n}, {remainder, n});
    } else {
        const std::unique_ptr<Word[]> memory(new Word[2 * n]);
        divide_long(q, a, b, {memory.get(), n}, {memory.get() + n, n});
    }
}

/// x ×= factor; the top word of x takes the carry.
void scale(std::span<Word> x, Word factor) noexcept {
    Word carry = 0;
    for (Word& word : x) {
        const auto [high, low] = split_word(product(word, factor) + carry);
        word = low;
        carry = high;
    }
}

/// Both numbers are multiplied by one factor, so that the divisor's top word is at least half the base. The
/// dividend gets a word on top for that, which also keeps its upper words below the divisor.
void divide_very_long(std::span<Limb> q, const ShiftedWords& a, std::span<const Limb> b) {
    const std::size_t n = word_count(b.size());
    const std::size_t words = word_count(a.limbs());
    const std::size_t quotient = words + 1 - n;
    const std::unique_ptr<Word[]> memory(new Word[n + words + 1 + quotient]);
    const std::span<Word> v(memory.get(), n);
    const std::span<Word> u(memory.get() + n, words + 1);
    const std::span<Word> result(memory.get() + n + words + 1, quotient);
    pack(v, b);
    for (std::size_t i = 0; i < words; ++i) {
        u[i] = a[i];
    }
    u[words] = 0;
    const Word factor = kWordBase / (v.back() + 1);
    scale(v, factor);
    scale(u, factor);
    divide_newton(result, u, v);
    unpack(q, result);
}

} // namespace

void divide_schoolbook(std::span<Word> q, std::span<Word> u, std::span<const Word> v) noexcept {
    const std::size_t n = v.size();
    assert(n >= 2 && q.size() + n == u.size());
    const DoubleWord d = DoubleWord{v[n - 1]} * kWordBase + v[n - 2];
    const TwoWordDivisor top(d);
    for (std::size_t i = q.size(); i-- > 0;) {
        q[i] = divide_step(u[i + n], u.subspan(i, n), v, top, d);
    }
}

void divide(std::span<Limb> q, std::span<const Limb> a, std::size_t shift, std::span<const Limb> b) {
    const ShiftedWords dividend(a, shift);
    const std::size_t spare = b.size() - 1;
    const std::size_t words = dividend.limbs() > spare ? word_count(dividend.limbs() - spare) : 0;
    std::fill(q.begin(), q.end(), Limb{0});
    if (b.size() <= 2) {
        divide_short(q, dividend, words, OneWordDivisor(low_half(value_of(b))));
    } else if (b.size() <= 4) {
        divide_short(q, dividend, words, TwoWordDivisor(value_of(b)));
    } else if (b.size() <= kStackDivisor || dividend.limbs() < b.size() + 2 * kNewtonQuotient) {
        divide_long(q, dividend, b);
    } else {
        divide_very_long(q, dividend, b);
    }
}

} // namespace core::limbs
