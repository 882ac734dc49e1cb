// SPDX-License-Identifier: Apache-2.0
#include "core/numbers/long/limbs.h"

#include <core/numbers/errors.h>
#include <core/numbers/numeric.h>

#include <bit>
#include <cmath>

namespace core {
namespace {

constexpr double kMaxPowerDigits = 100'000'000;

/// About how many decimal digits an exact power has.
double power_digits(const Numeric& base, std::uint32_t exponent) noexcept {
    std::int64_t length = 0;
    std::int64_t precision = 0;
    base.lengthAndPrecision(length, precision);
    const auto limbs = base.limbs();
    double top = 0;
    std::size_t used = 0;
    for (; used < limbs.size() && used < 3; ++used) {
        top = top * limbs::kLimbBase + limbs[limbs.size() - 1 - used];
    }
    constexpr auto kDigits = static_cast<double>(limbs::kLimbDigits);
    const double places = static_cast<double>(limbs.size() - used) - base.fractionLimbs();
    const double magnitude = std::log10(top) + places * kDigits; // of zero: below every number
    const double whole = magnitude >= 0 ? std::floor(magnitude * exponent) + 1 : 0;
    return whole + static_cast<double>(precision) * exponent;
}

} // namespace

/// Squares and multiplies from the highest bit down.
Numeric Numeric::powerOf(const Numeric& base, std::uint32_t exponent) {
    Numeric result = 1;
    for (auto bit = static_cast<unsigned>(std::bit_width(exponent)); bit-- > 0;) {
        result *= result;
        if ((exponent >> bit & 1) != 0) {
            result *= base;
        }
    }
    return result;
}

Numeric Numeric::pow(const Numeric& exponent) const {
    using Error = NumericException::Error;
    constexpr std::int64_t kMaxExponentDigits = 9;
    std::int64_t length = 0;
    std::int64_t precision = 0;
    exponent.lengthAndPrecision(length, precision);
    if (precision == 0 && length <= kMaxExponentDigits) {
        const auto power = static_cast<std::uint32_t>(exponent.abs().toInteger());
        if (power_digits(*this, power) > kMaxPowerDigits) {
            throw NumericException(Error::overflow);
        }
        Numeric result = powerOf(*this, power);
        return exponent.sign() < 0 ? 1 / result : result;
    }
    if (sign() < 0) {
        throw NumericException(Error::negativePower);
    }
    if (sign() == 0 && exponent.sign() < 0) {
        throw NumericException(Error::divideByZero);
    }
    const double result = std::pow(static_cast<double>(*this), static_cast<double>(exponent));
    if (!std::isfinite(result)) {
        throw NumericException(Error::overflow);
    }
    return result;
}

} // namespace core
