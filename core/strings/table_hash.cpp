// SPDX-License-Identifier: Apache-2.0
#include "core/strings/table_hash.h"

#include <core/runtime/random.h>

#include <cstring>

namespace core {
std::uint64_t table_hash_seed() noexcept {
    static const std::uint64_t seed = [] {
        std::uint64_t bits = 0;
        current_random().fill(std::as_writable_bytes(std::span(&bits, 1)));
        return bits;
    }();
    return seed;
}

std::uint64_t table_hash(std::span<const std::byte> bytes) noexcept {
    std::uint64_t hash = table_hash_seed();
    std::size_t i = 0;
    std::uint64_t word = 0;
    for (; i + sizeof word <= bytes.size(); i += sizeof word) {
        std::memcpy(&word, bytes.data() + i, sizeof word);
        hash = table_hash_step(hash, word);
    }
    if (i < bytes.size()) {
        word = 0;
        std::memcpy(&word, bytes.data() + i, bytes.size() - i);
        hash = table_hash_step(hash, word);
    }
    // The length, so that texts with zero units at the end differ.
    return table_hash_step(hash, bytes.size());
}

} // namespace core
