// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <new>
#include <utility>
#include <vector>

namespace core {

/// Finds entries of a sequence by the hash of their keys. The caller owns the sequence, which may be anything
/// that is numbered; the index keeps one position a key. It never looks at the sequence itself: to grow, and
/// to search for what is absent, takes the index alone.
///
///  1. There are no slots, or a power of two of them. At most two thirds are in use.
///  2. A slot in use has a position and a tag: the upper half of a hash, made odd. The tag of a free one is
///  0.
///  3. The highest bits of a tag say at which slot a search begins, its home. No free slot stands between
///     the home of a tag and its slot.
///
/// A search walks along neighbours, so the upper halves of hashes must be spread, and depend on a seed where
/// keys come from outside: those of table_hash.h do. An index that was moved from can only be assigned to.
class HashIndex {
  public:
    using Position = std::uint32_t;
    static constexpr Position kNone = ~Position{0};

    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    [[nodiscard]] bool empty() const noexcept { return size_ == 0; }

    /// The position with that hash for which `equal(position)` is true; kNone if none exists. `equal` is
    /// asked about few others.
    template <class Equal>
    [[nodiscard]] Position find(std::uint64_t hash, Equal equal) const;

    /// Fetches the slot where a search for that hash begins, so that the search need not wait for it.
    void prefetch(std::uint64_t hash) const noexcept {
        if (!slots_.empty())
            __builtin_prefetch(&slots_[homeOf(tagOf(hash))]);
    }

    /// Makes room for `count` positions in all. Throws std::bad_alloc, also above kMost; nothing has changed
    /// then.
    void reserve(std::size_t count);
    /// Adds a position whose key is not here. Throws what reserve() throws, nothing when room is reserved.
    void add(std::uint64_t hash, Position position);
    /// Removes a position, which is here with that hash.
    void remove(std::uint64_t hash, Position position) noexcept;
    /// Replaces a position, which is here with that hash, because its entry stands elsewhere now.
    void move(std::uint64_t hash, Position from, Position to) noexcept;
    /// Removes all positions and gives the memory back.
    void clear() noexcept { *this = HashIndex(); }

  private:
    /// Positions; so few that a tag can name every home, and that their memory can be asked for.
    static constexpr std::size_t kMost = std::size_t{1} << (sizeof(std::size_t) > 4 ? 30 : 26);
    static constexpr std::uint32_t kFree = 0;
    struct Slot {
        std::uint32_t tag;
        Position position;
    };

    [[nodiscard]] static std::uint32_t tagOf(std::uint64_t hash) noexcept {
        return static_cast<std::uint32_t>(hash >> 32) | 1;
    }
    [[nodiscard]] std::size_t homeOf(std::uint32_t tag) const noexcept { return tag >> shift_; }
    [[nodiscard]] std::size_t next(std::size_t slot) const noexcept {
        return (slot + 1) & (slots_.size() - 1);
    }
    [[nodiscard]] std::size_t slotOf(std::uint64_t hash, Position position) const noexcept;
    void enter(Slot slot) noexcept;
    void grow(std::size_t count);

    std::vector<Slot> slots_;
    std::size_t size_ = 0;
    unsigned shift_ = 0; ///< from a tag to its home
};

template <class Equal>
inline HashIndex::Position HashIndex::find(std::uint64_t hash, Equal equal) const {
    if (slots_.empty())
        return kNone;
    const Slot* const slots = slots_.data();
    const std::size_t mask = slots_.size() - 1;
    const std::uint32_t tag = tagOf(hash);
    for (std::size_t i = homeOf(tag); slots[i].tag != kFree; i = (i + 1) & mask) {
        if (slots[i].tag == tag && equal(slots[i].position))
            return slots[i].position;
    }
    return kNone;
}

inline void HashIndex::reserve(std::size_t count) {
    if (3 * count > 2 * slots_.size())
        grow(count);
}

inline void HashIndex::grow(std::size_t count) {
    constexpr std::size_t kFewestSlots = 8;
    if (count > kMost)
        throw std::bad_alloc();
    HashIndex larger;
    larger.slots_.resize(std::bit_ceil(std::max(count + count / 2 + 1, kFewestSlots)));
    larger.shift_ = 32 - static_cast<unsigned>(std::countr_zero(larger.slots_.size()));
    larger.size_ = size_;
    // The old slots are met in the order of their new homes, so both sequences are walked forwards.
    for (const Slot& slot : slots_) {
        if (slot.tag != kFree)
            larger.enter(slot);
    }
    *this = std::move(larger);
}

inline void HashIndex::add(std::uint64_t hash, Position position) {
    reserve(size_ + 1);
    enter({tagOf(hash), position});
    ++size_;
}

inline void HashIndex::enter(Slot slot) noexcept {
    std::size_t i = homeOf(slot.tag);
    while (slots_[i].tag != kFree)
        i = next(i);
    slots_[i] = slot;
}

inline std::size_t HashIndex::slotOf(std::uint64_t hash, Position position) const noexcept {
    std::size_t i = homeOf(tagOf(hash));
    while (slots_[i].position != position)
        i = next(i);
    return i;
}

inline void HashIndex::remove(std::uint64_t hash, Position position) noexcept {
    const std::size_t mask = slots_.size() - 1;
    std::size_t gap = slotOf(hash, position);
    // What stands behind the gap moves into it when its search would end there, and leaves a gap itself.
    for (std::size_t i = next(gap); slots_[i].tag != kFree; i = next(i)) {
        if (((i - homeOf(slots_[i].tag)) & mask) >= ((i - gap) & mask)) {
            slots_[gap] = slots_[i];
            gap = i;
        }
    }
    slots_[gap].tag = kFree;
    --size_;
}

inline void HashIndex::move(std::uint64_t hash, Position from, Position to) noexcept {
    slots_[slotOf(hash, from)].position = to;
}

} // namespace core
