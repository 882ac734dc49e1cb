// SPDX-License-Identifier: Apache-2.0
#include "core/strings/table_hash.h"

#include "core/strings/folded_reader.h"

#include <core/runtime/random.h>

#include <cstring>

namespace core {
namespace {

/// The last step: the length, so that texts with zero units at the end differ.
std::uint64_t finish(std::uint64_t hash, std::size_t length) noexcept {
    return table_hash_step(hash, length);
}

} // namespace

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
    return finish(hash, bytes.size());
}

std::uint64_t table_hash_nocase(wstring_view name) noexcept {
    const FoldTable& fold = FoldTable::instance();
    std::uint64_t hash = table_hash_seed();
    std::size_t i = 0;
    for (; i + 4 <= name.size(); i += 4) {
        const std::uint64_t a = fold[name[i]];
        const std::uint64_t b = fold[name[i + 1]];
        const std::uint64_t c = fold[name[i + 2]];
        const std::uint64_t d = fold[name[i + 3]];
        constexpr wchar kLong = FoldTable::kLong;
        if ((a == kLong) | (b == kLong) | (c == kLong) | (d == kLong))
            break;
        hash = table_hash_step(hash, a | b << 16 | c << 32 | d << 48);
    }
    std::size_t length = i;
    std::uint64_t word = 0;
    FoldedReader rest(name.substr(i));
    for (int c = rest.next(); c >= 0; c = rest.next()) {
        word |= static_cast<std::uint64_t>(c) << (length % 4 * 16);
        if (++length % 4 == 0) {
            hash = table_hash_step(hash, word);
            word = 0;
        }
    }
    if (length % 4 != 0)
        hash = table_hash_step(hash, word);
    return finish(hash, length);
}

} // namespace core
