// SPDX-License-Identifier: Apache-2.0
#include "core/lists/token_write.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdlib>

namespace core::detail {
namespace {

constexpr int kDigits = 16;

/// Of a normal positive number.
int binary_exponent(double value) noexcept {
    return static_cast<int>(std::bit_cast<std::uint64_t>(value) >> 52) - 1023;
}

/// A positive value to sixteen significant digits, correctly rounded: 0.d0d1...d15 x 10^point.
struct Sixteen {
    char digits[2 * kDigits] = {}; // twice as many as there are, so that they can be copied from any place
    int point = 0;

    explicit Sixteen(double value) noexcept {
        if (!scale(value))
            convert(value);
    }

  private:
    /// Scales by a power of ten that a double holds exactly, and knows the error of the product: so the
    /// sixteen digits before the point are known, except for values too close to the middle between two. An
    /// eighth of the time of the general conversion.
    bool scale(double value) noexcept {
        static constexpr double kPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                             1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                             1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
        constexpr double kLimit = 1e16;
        if (!(value >= 1e-6 && value < 1e15))
            return false;
        // At most one too small: 1233 / 4096 is just below the logarithm of 2.
        int exponent = (binary_exponent(value) * 1233) >> 12;
        if (value * kPowers[kDigits - 1 - exponent] > kLimit)
            ++exponent;
        const double power = kPowers[kDigits - 1 - exponent];
        const double product = value * power;
        if (product >= kLimit)
            return false;
        const double error = std::fma(value, power, -product);
        auto whole = static_cast<std::uint64_t>(product);
        const double fraction = (product - static_cast<double>(whole)) + error;
        if (std::fabs(fraction) == 0.5)
            return false;
        whole += fraction > 0.5 ? 1 : 0;
        whole -= fraction < -0.5 ? 1 : 0;
        if (std::to_chars(digits, digits + kDigits, whole).ec != std::errc())
            return false; // rounded up to 10^16
        point = exponent + 1;
        return true;
    }

    void convert(double value) noexcept {
        char text[32]; // d.ddddddddddddddde-308
        const auto [end, error] =
            std::to_chars(text, text + sizeof text, value, std::chars_format::scientific, kDigits - 1);
        digits[0] = text[0];
        std::copy_n(text + 2, kDigits - 1, digits + 1);
        const char* const mark = text + 1 + kDigits;
        std::from_chars(mark + (mark[1] == '+' ? 2 : 1), end, point);
        ++point;
    }
};

} // namespace

wchar* format_double(wchar* out, double value) noexcept {
    if (value == 0) {
        *out++ = u'0';
        return out;
    }
    if (value < 0)
        *out++ = u'-';
    const Sixteen decimal(std::fabs(value));
    const char* const digits = decimal.digits;
    int count = kDigits;
    while (digits[count - 1] == '0')
        --count;

    const bool plain = decimal.point > 0 && decimal.point <= count;
    const int point = plain ? decimal.point : 1;
    // Always as many as there may be: what is too much is written over or left behind.
    std::copy_n(digits, kDigits, out);
    if (point < count) {
        out[point] = u'.';
        std::copy_n(digits + point, kDigits, out + point + 1);
        ++out;
    }
    out += count;
    if (plain)
        return out;
    *out++ = u'e';
    const int exponent = decimal.point - 1;
    return format_integer(out, exponent < 0, static_cast<std::uint64_t>(std::abs(exponent)));
}

} // namespace core::detail
