// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/number_sums.h"

namespace core {

std::optional<std::int64_t> WordSum::word() const noexcept {
    const std::int64_t carried = high_ + static_cast<std::int64_t>(low_ >> kHalfBits);
    if (carried != static_cast<std::int32_t>(carried))
        return std::nullopt;
    const std::int64_t sum = carried * kHalf + static_cast<std::uint32_t>(low_);
    return sum != CellColumn::kEmptyWord ? std::optional(sum) : std::nullopt;
}

Numeric WordSum::value(std::uint32_t scale) const {
    if (const auto sum = word())
        return Numeric::fromScaled(*sum, scale);
    const std::int64_t carried = high_ + static_cast<std::int64_t>(low_ >> kHalfBits);
    return Numeric::fromScaled(carried, scale) * kHalf +
           Numeric::fromScaled(static_cast<std::uint32_t>(low_), scale);
}

} // namespace core
