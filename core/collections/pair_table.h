// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/strings/hash_index.h"

#include <core/values/value.h>

#include <cstdint>
#include <span>
#include <vector>

namespace core {

/// The pairs of a map or a structure: in the order of insertion, found by the hash of their keys. The owner
/// says what a hash is and when keys are equal.
///
///  1. Pairs stand in one sequence in the order of insertion. An erased one holds Undefined twice, its hash
///     is 0. It goes when half of the sequence is erased: erasing takes constant time in the long run.
///  2. Up to kUnindexed pairs are found by walking the sequence. None of them is erased then.
///  3. More are found by the index, which holds the positions of all that are not erased.
class PairTable {
  public:
    struct Pair {
        std::uint64_t hash;
        Value key;
        Value value;
    };

    [[nodiscard]] std::size_t size() const noexcept { return pairs_.size() - erased_; }
    /// All pairs, erased ones (hash 0) among them.
    [[nodiscard]] std::span<const Pair> pairs() const noexcept { return pairs_; }

    /// The pair with that hash, not 0, of which `equal` is true; or null. Valid until the next change.
    template <class Equal>
    [[nodiscard]] Pair* find(std::uint64_t hash, Equal equal) noexcept {
        if (index_.empty()) {
            for (Pair& pair : pairs_) {
                if (pair.hash == hash && equal(pair))
                    return &pair;
            }
            return nullptr;
        }
        Pair* const first = pairs_.data();
        const HashIndex::Position found = index_.find(hash, [=](HashIndex::Position position) {
            return first[position].hash == hash && equal(first[position]);
        });
        return found != HashIndex::kNone ? first + found : nullptr;
    }
    template <class Equal>
    [[nodiscard]] const Pair* find(std::uint64_t hash, Equal equal) const noexcept {
        return const_cast<PairTable*>(this)->find(hash, equal);
    }

    /// Adds a pair whose key is not here. Throws std::bad_alloc; nothing has changed then.
    void append(std::uint64_t hash, Value key, Value value);
    void erase(Pair& pair) noexcept;
    void clear() noexcept;

    /// The pair at a position counted without the erased ones, which go for good.
    [[nodiscard]] Pair& at(std::size_t position) noexcept;
    [[nodiscard]] std::size_t positionOf(const Pair& pair) noexcept;

  private:
    static constexpr std::size_t kUnindexed = 8;

    [[nodiscard]] HashIndex::Position storedPosition(const Pair& pair) const noexcept {
        return static_cast<HashIndex::Position>(&pair - pairs_.data());
    }
    void compact() noexcept;

    std::vector<Pair> pairs_;
    HashIndex index_;
    std::uint32_t erased_ = 0;
};

} // namespace core
