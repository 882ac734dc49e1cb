// SPDX-License-Identifier: Apache-2.0
#pragma once

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <cstddef>
#include <cstdint>
#include <span>

namespace core {

/// What table layout 2 says of all that it holds. The library's code is compiled in, so that a program that
/// links this one needs nothing more.
[[nodiscard]] inline std::uint64_t checksum(std::span<const std::byte> bytes) noexcept {
    return XXH3_64bits(bytes.data(), bytes.size());
}

/// The checksum of what comes in pieces.
class Checksum {
  public:
    Checksum() noexcept { XXH3_64bits_reset(&state_); }
    void add(std::span<const std::byte> bytes) noexcept {
        XXH3_64bits_update(&state_, bytes.data(), bytes.size());
    }
    [[nodiscard]] std::uint64_t value() const noexcept { return XXH3_64bits_digest(&state_); }

  private:
    XXH3_state_t state_;
};

} // namespace core
