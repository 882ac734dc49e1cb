// SPDX-License-Identifier: Apache-2.0
// The product of two long numbers as a cyclic convolution of their words: modulo three primes by
// number-theoretic transforms, then by the Chinese remainder theorem. A sum of at most 2^29 products of two
// words is below 2^149, the product of the primes above 2^182.
#include "core/numbers/long/transform.h"

#include "core/numbers/long/field.h"

#include <algorithm>
#include <array>
#include <bit>
#include <memory>

namespace core::limbs {
namespace {

/// Sizes are 2^k or 3 × 2^k, whichever is smaller.
std::size_t transform_size(std::size_t words) noexcept {
    const std::size_t size = std::bit_ceil(words);
    return size >= 16 && size / 4 * 3 >= words ? size / 4 * 3 : size;
}

/// The transform of one size modulo one prime, in place.
///
/// The forward transform splits x^n − z into (x^(n/2) − w) (x^(n/2) + w) with w² = z, down to single values;
/// the inverse puts them together again. No reordering is needed, since the two run through the same tree. In
/// every layer the s-th block has w = T[s], where T is a product of one root for each bit of s. For n = 3m
/// the first step is x^n − 1 = (x^m − 1) (x^m − ω) (x^m − ω²) with ω³ = 1; within the third e, the roots of
/// the layers are those of T times ω^(2e) and ω^e by turns.
template <class F>
class Transform {
  public:
    explicit Transform(std::size_t size)
        : thirds_(size % 3 == 0), block_(thirds_ ? size / 3 : size),
          roots_(new Word[(thirds_ ? 3 : 1) * (block_ / 2 + 1)]) {}

    void forward(Word* x) {
        makeRoots(false);
        if (!thirds_) {
            split(x, block_, 0, 0, 0);
            return;
        }
        const Word omega = F::root(3);
        for (std::size_t i = 0; i < block_; ++i) {
            const Word a = x[i];
            const Word b = x[i + block_];
            const Word c = x[i + 2 * block_];
            const Word turned = F::multiply(b + F::kPrime - c, omega);
            x[i] = a + b + c;
            x[i + block_] = a + F::kPrime - c + turned;
            x[i + 2 * block_] = a + 3 * F::kPrime - b - turned;
        }
        for (std::size_t third = 0; third < 3; ++third) {
            split(x + third * block_, block_, 0, third, 0);
        }
    }

    /// Undoes forward(), except that the size remains as a factor.
    void inverse(Word* x) {
        makeRoots(true);
        if (!thirds_) {
            join(x, block_, 0, 0, 0);
            return;
        }
        for (std::size_t third = 0; third < 3; ++third) {
            join(x + third * block_, block_, 0, third, 0);
        }
        const Word omega = F::root(3);
        for (std::size_t i = 0; i < block_; ++i) {
            const Word a = x[i];
            const Word b = x[i + block_];
            const Word c = x[i + 2 * block_];
            const Word turned = F::multiply(c + 2 * F::kPrime - b, omega);
            x[i] = F::template reduce<4>(a + b + c);
            x[i + block_] = F::template reduce<4>(a + 2 * F::kPrime - b + turned);
            x[i + 2 * block_] = F::template reduce<4>(a + 4 * F::kPrime - c - turned);
        }
    }

  private:
    /// Below this size a block stays in the cache through all of its layers.
    static constexpr std::size_t kCached = 1 << 12;

    void makeRoots(bool inverse) {
        const std::size_t count = block_ / 2;
        Word* const table = roots_.get();
        table[0] = F::kOne;
        for (std::size_t filled = 1, order = 4; filled < count; filled *= 2, order *= 2) {
            Word root = F::root(order);
            root = inverse ? F::inverse(root) : root;
            for (std::size_t i = 0; i < filled; ++i) {
                table[filled + i] = F::multiplyFully(table[i], root);
            }
        }
        if (thirds_) {
            const Word omega = F::root(3);
            const Word square = F::multiplyFully(omega, omega);
            for (std::size_t i = 0; i < count; ++i) {
                table[count + i] = F::multiplyFully(table[i], inverse ? square : omega);
                table[2 * count + i] = F::multiplyFully(table[i], inverse ? omega : square);
            }
        }
    }

    /// The roots of a layer inside a third.
    [[nodiscard]] const Word* roots(std::size_t third, unsigned layer) const noexcept {
        const std::size_t power = layer % 2 == 0 ? 2 * third % 3 : third;
        return roots_.get() + power * (block_ / 2);
    }

    /// Splits the s-th block of a layer down to single values: two layers at a time,
    /// large blocks depth first.
    void split(Word* x, std::size_t n, std::size_t s, std::size_t third, unsigned layer) {
        if (n > kCached) {
            splitLayers(x, n, n, s, third, layer);
            for (std::size_t i = 0; i < 4; ++i) {
                split(x + i * (n / 4), n / 4, 4 * s + i, third, layer + 2);
            }
            return;
        }
        std::size_t length = n;
        for (; length >= 4; length /= 4) {
            splitLayers(x, n, length, s, third, layer);
            layer += 2;
        }
        if (length == 2) {
            const Word* const w = roots(third, layer) + s * (n / 2);
            for (std::size_t i = 0; i < n / 2; ++i) {
                const Word a = F::template reduce<4>(x[2 * i]);
                const Word b = F::multiply(x[2 * i + 1], w[i]);
                x[2 * i] = a + b;
                x[2 * i + 1] = a + 2 * F::kPrime - b;
            }
        }
    }

    /// Two layers of the blocks of `length` within the s-th block of n. Values are below 8P before and after.
    void splitLayers(Word* x, std::size_t n, std::size_t length, std::size_t s, std::size_t third,
                     unsigned layer) {
        const std::size_t blocks = n / length;
        const std::size_t quarter = length / 4;
        const Word* const upper = roots(third, layer) + s * blocks;
        const Word* const lower = roots(third, layer + 1) + 2 * s * blocks;
        for (std::size_t block = 0; block < blocks; ++block, x += length) {
            const Word w = upper[block];
            const Word w0 = lower[2 * block];
            const Word w1 = lower[2 * block + 1];
            for (std::size_t i = 0; i < quarter; ++i) {
                const Word a = F::template reduce<4>(x[i]);
                const Word b = F::template reduce<4>(x[i + quarter]);
                const Word c = F::multiply(x[i + 2 * quarter], w);
                const Word d = F::multiply(x[i + 3 * quarter], w);
                const Word e = F::multiply(b + d, w0);
                const Word f = F::multiply(b + 2 * F::kPrime - d, w1);
                x[i] = a + c + e;
                x[i + quarter] = a + c + 2 * F::kPrime - e;
                x[i + 2 * quarter] = a + 2 * F::kPrime - c + f;
                x[i + 3 * quarter] = a + 4 * F::kPrime - c - f;
            }
        }
    }

    /// The way back: the same layers in the opposite order.
    void join(Word* x, std::size_t n, std::size_t s, std::size_t third, unsigned layer) {
        if (n > kCached) {
            for (std::size_t i = 0; i < 4; ++i) {
                join(x + i * (n / 4), n / 4, 4 * s + i, third, layer + 2);
            }
            joinLayers(x, n, n, s, third, layer);
            return;
        }
        layer += static_cast<unsigned>(std::bit_width(n)) - 1;
        std::size_t length = n;
        while (length >= 4) {
            length /= 4;
        }
        if (length == 2) {
            const Word* const w = roots(third, --layer) + s * (n / 2);
            for (std::size_t i = 0; i < n / 2; ++i) {
                const Word a = x[2 * i];
                const Word b = x[2 * i + 1];
                x[2 * i] = F::template reduce<2>(a + b);
                x[2 * i + 1] = F::multiply(a + 2 * F::kPrime - b, w[i]);
            }
        }
        for (length *= 4; length <= n; length *= 4) {
            layer -= 2;
            joinLayers(x, n, length, s, third, layer);
        }
    }

    /// Values are below 2P before and after.
    void joinLayers(Word* x, std::size_t n, std::size_t length, std::size_t s, std::size_t third,
                    unsigned layer) {
        const std::size_t blocks = n / length;
        const std::size_t quarter = length / 4;
        const Word* const upper = roots(third, layer) + s * blocks;
        const Word* const lower = roots(third, layer + 1) + 2 * s * blocks;
        for (std::size_t block = 0; block < blocks; ++block, x += length) {
            const Word w = upper[block];
            const Word w0 = lower[2 * block];
            const Word w1 = lower[2 * block + 1];
            for (std::size_t i = 0; i < quarter; ++i) {
                const Word p = x[i];
                const Word q = x[i + quarter];
                const Word r = x[i + 2 * quarter];
                const Word t = x[i + 3 * quarter];
                const Word a = p + q;
                const Word b = F::multiply(p + 2 * F::kPrime - q, w0);
                const Word c = r + t;
                const Word d = F::multiply(r + 2 * F::kPrime - t, w1);
                x[i] = F::template reduce<2>(F::template reduce<4>(a + c));
                x[i + quarter] = F::template reduce<2>(b + d);
                x[i + 2 * quarter] = F::multiply(a + 4 * F::kPrime - c, w);
                x[i + 3 * quarter] = F::multiply(b + 2 * F::kPrime - d, w);
            }
        }
    }

    bool thirds_;
    std::size_t block_;
    std::unique_ptr<Word[]> roots_;
};

/// The words of the convolution modulo one prime, each in 0 ... P − 1.
template <class F>
std::unique_ptr<Word[]> convolve(std::size_t size, std::span<const Word> a, std::span<const Word> b,
                                 std::span<Word> work) {
    const auto load = [size](Word* x, std::span<const Word> words) {
        std::fill(std::copy(words.begin(), words.end(), x), x + size, Word{0});
    };
    Transform<F> transform(size);
    std::unique_ptr<Word[]> result(new Word[size]);
    Word* const x = result.get();
    load(x, a);
    transform.forward(x);
    const Word* y = x;
    if (a.data() != b.data() || a.size() != b.size()) {
        load(work.data(), b);
        transform.forward(work.data());
        y = work.data();
    }
    // 2^128 / size: one 2^64 for each of the two multiplications.
    const Word scale = F::multiplyFully(F::inverse(F::enter(size)), F::kSquare);
    for (std::size_t i = 0; i < size; ++i) {
        x[i] = F::multiply(x[i], F::multiplyFully(y[i], scale));
    }
    transform.inverse(x);
    for (std::size_t i = 0; i < size; ++i) {
        x[i] = F::template reduce<1>(F::template reduce<2>(x[i])); // below 4P before
    }
    return result;
}

/// Finds the numbers that leave r1, r2, r3 (Garner's algorithm) and carries their upper parts on.
void recombine(std::span<Word> out, const Word* r1, const Word* r2, const Word* r3) noexcept {
    constexpr Word p1 = FirstField::kPrime;
    constexpr Word p2 = SecondField::kPrime;
    constexpr Word p3 = ThirdField::kPrime;
    static_assert(p1 < 2 * p3 && p2 < 2 * p3);
    const Word p1_in_second = SecondField::inverse(SecondField::enter(p1));
    const Word p1_in_third = ThirdField::inverse(ThirdField::enter(p1));
    const Word p2_in_third = ThirdField::inverse(ThirdField::enter(p2));
    DoubleWord carry = 0;
    for (std::size_t i = 0; i < out.size(); ++i) {
        // value = r1 + p1 × (x2 + p2 × x3)
        const Word x2 = SecondField::multiplyFully(r2[i] + 2 * p2 - r1[i], p1_in_second);
        const Word third = ThirdField::multiplyFully(r3[i] + 2 * p3 - r1[i], p1_in_third);
        const Word x3 = ThirdField::multiplyFully(third + 2 * p3 - x2, p2_in_third);
        const DoubleWord inner = product(p2, x3) + x2;
        const DoubleWord low = product(p1, low_half(inner)) + r1[i];
        const DoubleWord sum = DoubleWord{low_half(low)} + low_half(carry);
        const DoubleWord high =
            product(p1, high_half(inner)) + high_half(low) + high_half(carry) + high_half(sum);
        const auto upper = split_word(high);
        const auto lower = split_word((DoubleWord{upper.remainder} << 64) | low_half(sum));
        out[i] = lower.remainder;
        carry = (DoubleWord{upper.quotient} << 64) + lower.quotient;
    }
}

} // namespace

void multiply_by_transform(std::span<Word> out, std::span<const Word> a, std::span<const Word> b) {
    const std::size_t size = transform_size(out.size());
    std::unique_ptr<Word[]> work(new Word[size]);
    const std::span<Word> second(work.get(), size);
    const auto r1 = convolve<FirstField>(size, a, b, second);
    const auto r2 = convolve<SecondField>(size, a, b, second);
    const auto r3 = convolve<ThirdField>(size, a, b, second);
    recombine(out, r1.get(), r2.get(), r3.get());
}

} // namespace core::limbs
