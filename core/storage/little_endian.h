// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>

/// Numbers on disk begin with their lowest byte, whatever the host's order; compilers make one move of these.
namespace core {

[[nodiscard]] inline std::uint64_t load_number(const std::byte* from, std::size_t width) noexcept {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < width; ++i)
        value |= std::to_integer<std::uint64_t>(from[i]) << 8 * i;
    return value;
}

inline void store_number(std::byte* to, std::uint64_t value, std::size_t width) noexcept {
    for (std::size_t i = 0; i < width; ++i)
        to[i] = static_cast<std::byte>(value >> 8 * i & 0xFF);
}

} // namespace core
