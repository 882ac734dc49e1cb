// SPDX-License-Identifier: Apache-2.0
#include "core/numbers/digit_text.h"
#include "core/numbers/numeric_store.h"

#include <core/numbers/errors.h>
#include <core/numbers/numeric.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace core {

using namespace limbs;

namespace {

/// Limbs that hold all the digits of a floating type, wherever the point cuts them.
template <class Float>
constexpr std::size_t
    kLimbsOf = (std::numeric_limits<Float>::max_digits10 + 2 * kLimbDigits - 2) / kLimbDigits;

/// The number nearest to a text of digits, "e" and an exponent: infinite or zero when it is out of range. As
/// there is no point in it, the C library's locale does not matter.
template <class Float>
Float nearest(const char* text) noexcept {
    const int before = errno;
    const Float value = [text] {
        if constexpr (std::is_same_v<Float, double>) {
            return std::strtod(text, nullptr);
        } else {
            return std::strtold(text, nullptr);
        }
    }();
    errno = before;
    return value;
}

} // namespace

void Numeric::setInteger(std::uint64_t magnitude, bool negative) noexcept {
    if (magnitude == 0) {
        return;
    }
    sign_ = negative ? kNegative : kPositive;
    while (magnitude % kBase == 0) {
        magnitude /= kBase;
        --fraction_;
    }
    for (; magnitude != 0; magnitude /= kBase) {
        inline_[count_++] = static_cast<Limb>(magnitude % kBase);
    }
}

/// The digits and the exponent of the shortest decimal become whole limbs and a place of the point.
template <class Float>
void Numeric::setFloating(Float value) {
    constexpr auto kExactIntegers = static_cast<Float>(1e15);
    constexpr auto kDigits = static_cast<std::int32_t>(kLimbDigits);
    if (!std::isfinite(value)) {
        using Error = NumericException::Error;
        throw NumericException(std::isnan(value) ? Error::notANumber : Error::overflow);
    }
    const Float magnitude = std::fabs(value);
    if (magnitude < kExactIntegers && magnitude == std::floor(magnitude)) {
        setInteger(static_cast<std::uint64_t>(magnitude), std::signbit(value));
        return;
    }
    std::array<char, 64> text; // d.ddde±xx
    const char* const end =
        std::to_chars(text.data(), text.data() + text.size(), magnitude, std::chars_format::scientific).ptr;
    const char* const mark = std::find<const char*>(text.data(), end, 'e');
    std::int32_t exponent = 0;
    std::from_chars(mark + (mark[1] == '+' ? 2 : 1), end, exponent);
    char* digits_end = std::remove(text.data(), text.data() + (mark - text.data()), '.');
    exponent -= static_cast<std::int32_t>(digits_end - text.data()) - 1; // now that of the last digit

    // value = digits × 10^exponent = digits × 10^filler × 10^(−9 × fraction)
    const std::int32_t fraction = exponent >= 0 ? -(exponent / kDigits) : (kDigits - 1 - exponent) / kDigits;
    digits_end = std::fill_n(digits_end, exponent + fraction * kDigits, '0');
    *this = fromString(std::string_view(text.data(), static_cast<std::size_t>(digits_end - text.data())));
    fraction_ += fraction;
    sign_ = std::signbit(value) ? kNegative : kPositive;
}

Numeric::Numeric(double value) {
    setFloating(value);
}

Numeric::Numeric(long double value) {
    setFloating(value);
}

/// Modulo 2^64 the zeros implied by eight limbs make everything zero, since 10^9 is a multiple of 2^9: only
/// the eight lowest whole limbs count.
std::uint64_t Numeric::toInteger() const noexcept {
    std::uint64_t value = 0;
    const std::int64_t first = std::max<std::int64_t>(fraction_, 0);
    const std::int64_t last = std::min<std::int64_t>(count_, std::int64_t{fraction_} + 8);
    for (std::int64_t i = last; i-- > first;) {
        value = value * kBase + limbs_[i];
    }
    for (std::int64_t i = std::max(fraction_, -8); i < 0; ++i) {
        value *= kBase;
    }
    return negative() ? 0 - value : value;
}

template <class Float>
Float Numeric::toFloating() const noexcept {
    // Exact while both the limbs and the divisor are exact in the type.
    if (count_ <= 2 && fraction_ >= 0 && fraction_ <= 2) {
        constexpr std::uint64_t kExact = std::uint64_t{1} << std::min(std::numeric_limits<Float>::digits, 63);
        constexpr std::array<Float, 3> kScale = {1, 1e9, 1e18};
        const std::uint64_t value = limbs_[0] + std::uint64_t{limbs_[1]} * kBase;
        if (value <= kExact) {
            const Float quotient = static_cast<Float>(value) / kScale[static_cast<std::size_t>(fraction_)];
            return negative() ? -quotient : quotient;
        }
    }
    // Else by the decimal reader, which rounds once: limb, limb, limb, "e", exponent.
    std::array<char, 80> text;
    char* out = text.data();
    const std::size_t used = std::min(limbCount(), kLimbsOf<Float>);
    for (std::size_t i = 0; i < used; ++i) {
        out = write_limb(out, limbs_[limbCount() - 1 - i]);
    }
    *out++ = 'e';
    const std::int64_t exponent = (std::int64_t{count_} - fraction_ - static_cast<std::int64_t>(used)) *
                                  static_cast<std::int64_t>(kLimbDigits);
    *std::to_chars(out, text.data() + text.size() - 1, exponent).ptr = '\0';
    const auto value = nearest<Float>(text.data());
    return negative() ? -value : value;
}

Numeric::operator double() const noexcept {
    return toFloating<double>();
}

Numeric::operator long double() const noexcept {
    return toFloating<long double>();
}

} // namespace core
