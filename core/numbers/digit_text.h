// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/numbers/long/limbs.h"
#include "core/runtime/digit_pairs.h"

#include <bit>
#include <cstring>
#include <type_traits>

/// Decimal digits in text of one- or two-byte characters, four at a time in one register.
namespace core::limbs {

template <class Char>
[[nodiscard]] constexpr bool is_decimal(Char c) noexcept {
    return c >= Char{'0'} && c <= Char{'9'};
}

/// Four characters of a text, the first in the lowest lane, with '0' taken off: digits are 0 ... 9.
template <class Char>
class FourDigits {
  public:
    using Bits = std::conditional_t<sizeof(Char) == 1, std::uint32_t, std::uint64_t>;
    static constexpr unsigned kLane = 8 * sizeof(Char);

    explicit FourDigits(const Char* p) noexcept {
        if constexpr (std::endian::native == std::endian::little) {
            std::memcpy(&bits_, p, sizeof bits_);
        } else {
            for (unsigned i = 0; i < 4; ++i) {
                bits_ |= static_cast<Bits>(p[i]) << (kLane * i);
            }
        }
        bits_ ^= repeated('0');
    }

    /// How many of the four are digits before one is not. What carries into a lane comes from a lower one
    /// that is not a digit itself.
    [[nodiscard]] unsigned leadingDigits() const noexcept {
        constexpr Bits top = Bits{1} << (kLane - 1);
        const Bits others = ((bits_ + repeated(top - 10)) | bits_) & repeated(top);
        return static_cast<unsigned>(std::countr_zero(others)) / kLane;
    }

    /// The number that the digits spell, without the first `skip`.
    [[nodiscard]] Limb value(std::size_t skip = 0) const noexcept {
        const Bits digits = skip == 4 ? 0 : bits_ >> (kLane * skip) << (kLane * skip);
        const Bits pairs = (digits * 10 + (digits >> kLane)) & (Bits{0xFF} | Bits{0xFF} << (2 * kLane));
        return static_cast<Limb>((pairs + (pairs * 100 << (2 * kLane))) >> (2 * kLane));
    }

  private:
    static constexpr Bits repeated(Bits lane) noexcept {
        return lane * (static_cast<Bits>(-1) / ((Bits{1} << kLane) - 1));
    }

    Bits bits_ = 0;
};

/// The end of the run of digits that begins at `p`.
template <class Char>
[[nodiscard]] const Char* digits_end(const Char* p, const Char* end) noexcept {
    while (end - p >= 4) {
        const unsigned count = FourDigits<Char>(p).leadingDigits();
        if (count != 4) {
            return p + count;
        }
        p += 4;
    }
    while (p != end && is_decimal(*p)) {
        ++p;
    }
    return p;
}

/// The number that `count` <= 9 digits spell.
template <class Char>
[[nodiscard]] Limb read_digits(const Char* p, std::size_t count) noexcept {
    if (count < 4) {
        Limb value = 0;
        for (std::size_t i = 0; i < count; ++i) {
            value = value * 10 + static_cast<Limb>(p[i] - Char{'0'});
        }
        return value;
    }
    const Limb head = FourDigits<Char>(p).value();
    if (count == kLimbDigits) {
        return head * 100'000 + FourDigits<Char>(p + 4).value() * 10 + static_cast<Limb>(p[8] - Char{'0'});
    }
    // Two groups of four that overlap in 8 − count digits.
    return head * kPowers[count - 4] + FourDigits<Char>(p + count - 4).value(8 - count);
}

/// Writes all nine digits of `limb` and returns their end.
///
/// limb / 10^8 as a fixed-point number gives the first digit; each multiplication of what stands behind the
/// point by 100 brings two more in front of it. The number is too large by at most 2^−32, which has grown to
/// less than 1/40 of the last digit when that appears.
template <class Char>
Char* write_limb(Char* out, Limb limb) noexcept {
    constexpr std::uint64_t scale = ((std::uint64_t{1} << 57) + 99'999'999) / 100'000'000;
    std::uint64_t fixed = (limb * scale >> 25) + 1;
    *out++ = static_cast<Char>('0' + (fixed >> 32));
    for (int i = 0; i < 4; ++i, out += 2) {
        fixed = (fixed & 0xFFFFFFFF) * 100;
        write_pair(out, static_cast<std::size_t>(fixed >> 32));
    }
    return out;
}

/// Writes the first `count` digits of nine and no more.
template <class Char>
void write_cut_off(Char* out, Limb limb, std::size_t count) noexcept {
    Char digits[kLimbDigits];
    write_limb(digits, limb);
    std::memcpy(out, digits, count * sizeof(Char));
}

/// Writes the first `count` digits of nine and returns their end; where there is `room`,
/// the others may follow them.
template <class Char>
Char* write_leading(Char* out, bool room, Limb limb, std::size_t count) noexcept {
    if (room) [[likely]] {
        write_limb(out, limb);
    } else {
        write_cut_off(out, limb, count);
    }
    return out + count;
}

} // namespace core::limbs
