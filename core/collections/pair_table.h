// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/value.h>

#include <cstdint>
#include <span>
#include <vector>

namespace core {

/// The pairs of a map or a structure: in the order of insertion, found by the hash of their keys. What a hash
/// is and when keys are equal is for the owner to say.
///
///  1. Pairs stand in one row in the order of insertion. An erased one has hash 0 and holds Undefined twice;
///     it goes when half of the row is erased, so that erasing costs constant time in the long run.
///  2. Up to kUnindexed pairs are found by walking the row, of which none is then erased.
///  3. More are found by the slots, a power of two of them, at most two thirds in use. A slot holds the upper
///     half of a pair's hash and its place; the highest bits of a hash say where its search begins, and no
///     free slot stands between there and its slot. Growing and searching for what is not there touch no
///     pair.
class PairTable {
  public:
    struct Pair {
        std::uint64_t hash;
        Value key;
        Value value;
    };

    [[nodiscard]] std::size_t size() const noexcept { return pairs_.size() - erased_; }
    /// All pairs, erased ones (hash 0) among them.
    [[nodiscard]] std::span<const Pair> row() const noexcept { return pairs_; }

    /// The pair with that hash, not 0, of which `equal` is true; or null. Valid until the next change.
    template <class Equal>
    [[nodiscard]] Pair* find(std::uint64_t hash, Equal equal) noexcept {
        if (slots_.empty()) {
            for (Pair& pair : pairs_) {
                if (pair.hash == hash && equal(pair))
                    return &pair;
            }
            return nullptr;
        }
        const std::uint32_t tag = tag_of(hash);
        const std::size_t mask = slots_.size() - 1;
        for (std::size_t i = home(tag); slots_[i].tag != kFree; i = (i + 1) & mask) {
            if (slots_[i].tag != tag)
                continue;
            Pair& pair = pairs_[slots_[i].place];
            if (pair.hash == hash && equal(pair))
                return &pair;
        }
        return nullptr;
    }
    template <class Equal>
    [[nodiscard]] const Pair* find(std::uint64_t hash, Equal equal) const noexcept {
        return const_cast<PairTable*>(this)->find(hash, equal);
    }

    /// Adds a pair whose key is not here.
    void append(std::uint64_t hash, Value key, Value value);
    void erase(Pair& pair) noexcept;
    void clear() noexcept;

    /// The pair at a position counted without the erased ones, which go for good.
    [[nodiscard]] Pair& at(std::size_t position) noexcept;
    [[nodiscard]] std::size_t positionOf(const Pair& pair) noexcept;

  private:
    static constexpr std::size_t kUnindexed = 8;
    static constexpr std::size_t kMaxPairs = std::size_t{1} << 30; // so that a tag needs no more than 31 bits
    static constexpr std::uint32_t kFree = 0;
    struct Slot {
        std::uint32_t tag;   // kFree, or odd
        std::uint32_t place; // in the row
    };

    static std::uint32_t tag_of(std::uint64_t hash) noexcept {
        return static_cast<std::uint32_t>(hash >> 32) | 1;
    }
    [[nodiscard]] std::size_t home(std::uint32_t tag) const noexcept { return tag >> shift_; }
    [[nodiscard]] std::size_t slotOf(const Pair& pair) const noexcept;
    static void enter(std::vector<Slot>& slots, unsigned shift, Slot slot) noexcept;
    void grow();
    void leave(std::size_t slot) noexcept;
    void compact() noexcept;

    std::vector<Pair> pairs_;
    std::vector<Slot> slots_;
    std::uint32_t erased_ = 0;
    unsigned shift_ = 0; // of a tag, to its home
};

} // namespace core
