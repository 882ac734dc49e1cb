// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/types.h>

#include <cstddef>
#include <cstdint>
#include <span>

/// Hashes for tables in memory. Data from outside may be chosen so that the hashes that the language fixes
/// collide; these are spread over all 64 bits and depend on a random seed, so a table that uses them stays
/// fast. They differ from run to run: never store one. Safe on any thread.
namespace core {

/// One step of such a hash: takes 64 more bits into `hash`.
[[nodiscard]] inline std::uint64_t table_hash_step(std::uint64_t hash, std::uint64_t word) noexcept {
    // Both halves of the double product: every bit taken in reaches every bit of the result.
    constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15;
#if defined(__SIZEOF_INT128__)
    __extension__ using Product = unsigned __int128;
    const Product product = static_cast<Product>(hash ^ word) * kFactor;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
#else
    const std::uint64_t x = hash ^ word;
    const std::uint64_t low = (x & 0xFFFFFFFF) * (kFactor & 0xFFFFFFFF);
    const std::uint64_t middle = (x >> 32) * (kFactor & 0xFFFFFFFF) + (low >> 32);
    const std::uint64_t other = (x & 0xFFFFFFFF) * (kFactor >> 32) + (middle & 0xFFFFFFFF);
    return x * kFactor ^ ((x >> 32) * (kFactor >> 32) + (middle >> 32) + (other >> 32));
#endif
}

/// Where every such hash begins: random, the same for the life of the program.
[[nodiscard]] std::uint64_t table_hash_seed() noexcept;

[[nodiscard]] std::uint64_t table_hash(std::span<const std::byte> bytes) noexcept;
[[nodiscard]] inline std::uint64_t table_hash(wstring_view text) noexcept {
    return table_hash(std::as_bytes(std::span(text)));
}
/// Of the full case folding: names that compare_nocase calls equal have equal hashes.
[[nodiscard]] CORE_API std::uint64_t table_hash_nocase(wstring_view name) noexcept;

} // namespace core
