// SPDX-License-Identifier: Apache-2.0
#include <core/numbers/shown_numeric.h>

#include <algorithm>

namespace core {

std::string detail::ascii_of(const Numeric& number) {
    const wstring text = number.toString(); // ASCII alone
    std::string bytes(text.size(), '\0');
    std::transform(text.begin(), text.end(), bytes.begin(),
                   [](wchar unit) { return static_cast<char>(unit); });
    return bytes;
}

/// Equal numbers have equal limbs, so these are all that counts.
std::size_t hash_value(const Numeric& number) noexcept {
    constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15;
    std::uint64_t hash = static_cast<std::uint64_t>(number.sign()) + 2;
    const auto take = [&hash](std::uint64_t word) {
        hash = (hash ^ word) * kFactor;
        hash ^= hash >> 32U;
    };
    take(static_cast<std::uint32_t>(number.fractionLimbs()));
    for (const Numeric::Limb limb : number.limbs())
        take(limb);
    return static_cast<std::size_t>(hash);
}

} // namespace core
