// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/numbers.h>

#include <boost/multiprecision/cpp_int.hpp>

#include <algorithm>
#include <random>
#include <string>

/// A slow, obvious decimal number beside which Numeric is tested: digits × 10^(−9 × fraction limbs), by
/// Boost.Multiprecision.
namespace model {

using boost::multiprecision::cpp_int;
using core::Numeric;

inline cpp_int power(const cpp_int& base, std::int64_t exponent) {
    return boost::multiprecision::pow(base, static_cast<unsigned>(exponent));
}

inline const cpp_int kBase = 1'000'000'000;

/// The value of `n` times 10^(9 × scale), which must be whole.
inline cpp_int scaled(const Numeric& n, std::int64_t scale) {
    cpp_int value = 0;
    for (std::size_t i = n.limbs().size(); i-- > 0;) {
        value = value * kBase + n.limbs()[i];
    }
    value *= power(kBase, scale - n.fractionLimbs());
    return n.sign() < 0 ? cpp_int(-value) : value;
}

/// value × 10^(−9 × scale), made through text so that it depends on nothing under test except the reader.
inline Numeric number(const cpp_int& value, std::int64_t scale) {
    std::string digits = cpp_int(abs(value)).str();
    const auto places = static_cast<std::size_t>(std::max<std::int64_t>(scale, 0) * 9);
    if (digits.size() <= places) {
        digits.insert(0, places + 1 - digits.size(), '0');
    }
    digits.insert(digits.size() - places, ".");
    if (scale < 0) {
        digits.insert(digits.size() - 1, static_cast<std::size_t>(-scale * 9), '0');
    }
    return Numeric::fromString((value < 0 ? "-" : "") + digits);
}

/// The three invariants of the representation.
inline bool is_normal(const Numeric& n) {
    const auto limbs = n.limbs();
    if (limbs.empty()) {
        return n.fractionLimbs() == 0 && n.sign() == 0;
    }
    return limbs.front() != 0 && limbs.back() != 0 && std::ranges::max(limbs) < kBase;
}

/// Random numbers whose limbs are often the troublesome ones: 0, 1, halves and nines.
class Generator {
  public:
    explicit Generator(std::uint32_t seed) : random_(seed) {}

    std::uint32_t below(std::uint32_t bound) { return static_cast<std::uint32_t>(random_() % bound); }

    std::uint32_t limb() {
        static constexpr std::uint32_t kCorners[] = {0,           1,           499'999'999,
                                                     500'000'000, 500'000'001, 999'999'999};
        return below(2) == 0 ? kCorners[below(6)] : below(1'000'000'000);
    }

    /// Up to `limbs` limbs with the point at most `reach` limbs away from either end.
    Numeric operator()(std::uint32_t limbs, std::uint32_t reach = 2) {
        const std::uint32_t count = below(limbs + 1);
        cpp_int value = 0;
        for (std::uint32_t i = 0; i < count; ++i) {
            value = value * kBase + limb();
        }
        const auto scale = static_cast<std::int64_t>(below(count + 2 * reach + 1)) - reach;
        return number(below(2) == 0 ? value : cpp_int(-value), scale);
    }

  private:
    std::mt19937 random_;
};

} // namespace model
