// SPDX-License-Identifier: Apache-2.0
// Long division at the price of a few long multiplications. W stands for the word base 10^18.
#include "core/numbers/long/newton.h"

#include "core/numbers/long/divide.h"
#include "core/numbers/long/multiply.h"

#include <algorithm>
#include <cassert>
#include <vector>

namespace core::limbs {
namespace {

using Words = std::vector<Word>;
constexpr Word kOne[] = {1};

/// The reciprocal of v, of k words with the top one at least W / 2: k + 1 words that differ
/// from W^(2k) / v by less than 2.
///
/// Newton's iteration doubles the words that are right. Let r be the reciprocal of the upper h words of
/// v, with 2h >= k + 2, and e = W^(k + h) − v r; then |e| < 4 W^k, and r W^(k − h) + r e / W^(2h)
/// differs from W^(2k) / v by 2 W^k (e / W^(k + h))², which is below 32 / W². Cutting off e and the
/// product adds less than 1 + 2 / W.
Words reciprocal(std::span<const Word> v) {
    constexpr std::size_t kSchoolbook = 40;
    const std::size_t k = v.size();
    Words result(k + 1);
    if (k <= kSchoolbook) {
        Words dividend(2 * k + 1, kWordBase - 1);
        dividend.back() = 0;
        divide_schoolbook(result, dividend, v);
        return result;
    }
    const std::size_t h = k / 2 + 1;
    const Words r = reciprocal(v.last(h));
    Words error(k + h + 1);
    multiply(error, v, r);
    const bool above = error.back() != 0; // v r is at least W^(k + h)
    error.resize(k + 1);
    if (!above) {
        // W^(k + 1) − x, by nines
        for (Word& word : error) {
            word = kWordBase - 1 - word;
        }
        add_to(error, kOne);
    }
    const auto upper = std::span<const Word>(error).last(h + 1); // in units of W^(k − h)
    Words correction(2 * h + 2);
    multiply(correction, r, upper);
    std::copy(r.begin(), r.end(), result.end() - static_cast<std::ptrdiff_t>(h + 1));
    const auto step = std::span<const Word>(correction).subspan(3 * h - k);
    if (above) {
        subtract_from(result, step);
    } else {
        add_to(result, step);
    }
    return result;
}

/// One block of quotient words: q = ⌊u / v⌋, where u has q.size() <= v.size() words more than v and its top
/// words are below v; the low words of u become the remainder.
///
/// With b quotient words, the top b + 1 of u times the top b + 2 of the reciprocal give a quotient that is
/// wrong by no more than a few units: what is cut off counts for less than 1 each time, the error of the
/// reciprocal for 2.
void divide_block(std::span<Word> q, std::span<Word> u, std::span<const Word> v,
                  std::span<const Word> reciprocal) {
    const std::size_t n = v.size();
    const std::size_t b = q.size();
    const auto factor = reciprocal.last(std::min(reciprocal.size(), b + 2));
    Words estimate(b + 1 + factor.size());
    multiply(estimate, u.last(b + 1), factor);
    const auto quotient = std::span<const Word>(estimate).subspan(factor.size());
    if (quotient[b] != 0) {
        std::fill(q.begin(), q.end(), kWordBase - 1);
    } else {
        std::copy_n(quotient.begin(), b, q.begin());
    }
    Words product(n + b);
    multiply(product, v, q);
    if (subtract_from(u, product) != 0) {
        do {
            subtract_from(q, kOne);
        } while (add_to(u, v) == 0);
        return;
    }
    const auto below = [&] {
        return std::all_of(u.begin() + static_cast<std::ptrdiff_t>(n), u.end(),
                           [](Word w) { return w == 0; }) &&
               compare(u.first(n), v) < 0;
    };
    while (!below()) {
        subtract_from(u, v);
        add_to(q, kOne);
    }
}

} // namespace

/// Blocks of equal size, no longer than the divisor; the reciprocal has one word more than a block.
void divide_newton(std::span<Word> q, std::span<Word> u, std::span<const Word> v) {
    const std::size_t n = v.size();
    const std::size_t m = q.size();
    assert(m > 0 && u.size() == m + n && v.back() >= kWordBase / 2);
    const std::size_t blocks = (m + n - 1) / n;
    const std::size_t size = (m + blocks - 1) / blocks;
    const Words inverse = reciprocal(v.last(std::min(n, size + 1)));
    std::size_t top = m;
    while (top > 0) {
        const std::size_t b = (top - 1) % size + 1; // the first block takes what is left over
        divide_block(q.subspan(top - b, b), u.subspan(top - b, n + b), v, inverse);
        top -= b;
    }
}

} // namespace core::limbs
