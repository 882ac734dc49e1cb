// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/documents/piece.h"

#include <span>

namespace core::detail {

class PieceNode;
using NodeRef = Held<PieceNode>;

/// What a node has in a row: a piece of a store in a leaf, another node elsewhere. Borrowed.
struct NodeEntry {
    union Target {
        UnitStore* store;
        PieceNode* node;
    };
    UnitSum sum;
    Target target{};
    PiecePlace place{}; ///< of a piece

    NodeEntry() noexcept = default;
    /// The entry of a piece, and of a node.
    explicit NodeEntry(const Piece& piece) noexcept : sum(piece.sum()), place(piece.place) {
        target.store = piece.store.get();
    }
    explicit NodeEntry(PieceNode& node) noexcept;
};

/// A node of a tree of pieces, which are all in leaves of one depth. A node knows the units and the line ends
/// that its entries have up to each one: to look for a place touches a line or two of memory a node.
///
/// What lies behind the object is as long as its capacity: the sums, the targets, and in a leaf the places. A
/// leaf of one piece takes no more room than that, because steps hold many of them.
class alignas(std::uint64_t) PieceNode {
  public:
    static constexpr std::uint32_t kMost = 16;       ///< entries
    static constexpr std::uint32_t kLeast = 5;       ///< of a node that is not the root
    static constexpr std::uint32_t kMostHeight = 16; ///< 5 to this power is more than there is memory

    /// Makes an empty node with one holder. Throws std::bad_alloc.
    [[nodiscard]] static NodeRef create(std::uint32_t height, std::uint32_t capacity = kMost);
    /// Makes a node that shares the targets of entries, of which there are 1 to kMost. Throws std::bad_alloc.
    [[nodiscard]] static NodeRef make(std::uint32_t height, std::span<const NodeEntry> entries);
    /// Makes a node with the same entries and the full capacity. Throws std::bad_alloc.
    [[nodiscard]] NodeRef copy() const;

    void hold() const noexcept { holders_.fetch_add(1, std::memory_order_relaxed); }
    void release() const noexcept {
        if (holders_.fetch_sub(1, std::memory_order_acq_rel) == 1)
            destroy();
    }
    /// Whether the caller, who holds a reference, is the only holder.
    [[nodiscard]] bool isUnique() const noexcept { return holders_.load(std::memory_order_acquire) == 1; }
    /// Whether the caller may change the node.
    [[nodiscard]] bool isOwn() const noexcept { return isUnique() && capacity_ == kMost; }

    [[nodiscard]] std::uint32_t height() const noexcept { return height_; } ///< 1 for a leaf
    [[nodiscard]] bool isLeaf() const noexcept { return height_ == 1; }
    [[nodiscard]] std::uint32_t count() const noexcept { return count_; }
    [[nodiscard]] UnitSum sum() const noexcept {
        const Sums& all = sums()[count_ - 1];
        return {all.units, all.ends, beginsLf(0), endsCr(count_ - 1)};
    }

    [[nodiscard]] std::uint64_t unitsBefore(std::uint32_t index) const noexcept {
        return index > 0 ? sums()[index - 1].units : 0;
    }
    [[nodiscard]] std::uint64_t unitsTo(std::uint32_t index) const noexcept { return sums()[index].units; }
    /// The line ends in front of an entry, when the node stands alone.
    [[nodiscard]] std::uint64_t endsBefore(std::uint32_t index) const noexcept {
        return index > 0 ? sums()[index - 1].ends : 0;
    }
    [[nodiscard]] bool beginsLf(std::uint32_t index) const noexcept { return (beginsLf_ >> index & 1) != 0; }
    [[nodiscard]] bool endsCr(std::uint32_t index) const noexcept { return (endsCr_ >> index & 1) != 0; }
    /// The entry that has the unit at an offset; count() behind the last one.
    [[nodiscard]] std::uint32_t indexOf(std::uint64_t offset) const noexcept {
        return firstAbove<&Sums::units>(offset);
    }
    /// The entry in which end `number` begins, from 0, when the node stands alone.
    [[nodiscard]] std::uint32_t indexOfEnd(std::uint64_t number) const noexcept {
        return firstAbove<&Sums::ends>(number);
    }

    [[nodiscard]] UnitSum sumOf(std::uint32_t index) const noexcept {
        return {sums()[index].units - unitsBefore(index),
                sums()[index].ends - endsBefore(index) + (dividesEnd(index) ? 1 : 0), beginsLf(index),
                endsCr(index)};
    }
    [[nodiscard]] NodeEntry entry(std::uint32_t index) const noexcept;
    [[nodiscard]] PieceNode* node(std::uint32_t index) const noexcept { return targets()[index].node; }
    [[nodiscard]] const UnitStore& store(std::uint32_t index) const noexcept {
        return *targets()[index].store;
    }
    [[nodiscard]] PiecePlace place(std::uint32_t index) const noexcept { return places()[index]; }
    [[nodiscard]] Piece piece(std::uint32_t index) const noexcept {
        return {StoreRef::share(targets()[index].store), places()[index], sumOf(index)};
    }
    [[nodiscard]] wstring_view text(std::uint32_t index) const noexcept {
        return {store(index).units() + places()[index].begin,
                static_cast<std::size_t>(unitsTo(index) - unitsBefore(index))};
    }

    /// Begins to fetch what a leaf has from memory, all at once.
    void prefetch() const noexcept {
        for (std::size_t byte = 0; byte < sizeof(PieceNode) + std::size_t{kMost} * 32; byte += 64)
            __builtin_prefetch(reinterpret_cast<const std::byte*>(this) + byte);
    }

    // changes of a node that the caller may change; no reference is added or taken away

    /// Puts entries in the place of those from `first` to `last`, for which there must be room.
    void splice(std::uint32_t first, std::uint32_t last, std::span<const NodeEntry> entries) noexcept;
    /// Puts entries in the place of all.
    void fill(std::span<const NodeEntry> entries) noexcept { splice(0, count_, entries); }
    /// Sets the sum of an entry.
    void setSum(std::uint32_t index, const UnitSum& sum) noexcept;
    /// Puts another node in the place of an entry that has the same sum, and returns the old one.
    [[nodiscard]] PieceNode* exchange(std::uint32_t index, PieceNode* node) noexcept {
        return std::exchange(targets()[index].node, node);
    }

  private:
    using Target = NodeEntry::Target;

    /// What the entries up to one have, when the node stands alone.
    struct Sums {
        std::uint64_t units;
        std::uint64_t ends;
    };

    PieceNode(std::uint32_t height, std::uint32_t capacity) noexcept;
    void destroy() const noexcept;

    [[nodiscard]] Sums* sums() noexcept { return reinterpret_cast<Sums*>(this + 1); }
    [[nodiscard]] const Sums* sums() const noexcept { return reinterpret_cast<const Sums*>(this + 1); }
    [[nodiscard]] Target* targets() noexcept { return reinterpret_cast<Target*>(sums() + capacity_); }
    [[nodiscard]] const Target* targets() const noexcept {
        return reinterpret_cast<const Target*>(sums() + capacity_);
    }
    [[nodiscard]] PiecePlace* places() noexcept {
        return reinterpret_cast<PiecePlace*>(targets() + capacity_);
    }
    [[nodiscard]] const PiecePlace* places() const noexcept {
        return reinterpret_cast<const PiecePlace*>(targets() + capacity_);
    }
    /// Whether the LF at the beginning of an entry belongs to the CR at the end of the one in front.
    [[nodiscard]] bool dividesEnd(std::uint32_t index) const noexcept {
        return index > 0 && beginsLf(index) && endsCr(index - 1);
    }
    /// The first entry up to which there is more than a value. Behind the last one stand the greatest
    /// numbers, so that sums are compared without a branch to guess: first those that end a quarter, then a
    /// quarter.
    template <std::uint64_t Sums::*kSum>
    [[nodiscard]] std::uint32_t firstAbove(std::uint64_t value) const noexcept {
        const Sums* const all = sums();
        if (capacity_ != kMost)
            return all[0].*kSum <= value ? 1 : 0;
        constexpr std::uint32_t kQuarter = kMost / 4;
        std::uint32_t begin = 0;
        for (std::uint32_t i = 1; i < 4; ++i)
            begin += all[i * kQuarter - 1].*kSum <= value ? kQuarter : 0;
        std::uint32_t index = begin;
        for (std::uint32_t i = 0; i < kQuarter; ++i)
            index += all[begin + i].*kSum <= value ? 1 : 0;
        return index;
    }
    void addFrom(std::uint32_t index, Sums more) noexcept;

    mutable std::atomic<std::uint32_t> holders_{1};
    std::uint8_t height_;
    std::uint8_t capacity_;
    std::uint16_t count_ = 0;
    std::uint32_t beginsLf_ = 0; ///< a bit an entry
    std::uint32_t endsCr_ = 0;
};

inline NodeEntry::NodeEntry(PieceNode& node) noexcept : sum(node.sum()) {
    target.node = &node;
}

inline NodeEntry PieceNode::entry(std::uint32_t index) const noexcept {
    NodeEntry entry;
    entry.sum = sumOf(index);
    entry.target = targets()[index];
    if (isLeaf())
        entry.place = places()[index];
    return entry;
}

[[nodiscard]] inline UnitSum sum_of(const NodeRef& node) noexcept {
    return node ? node->sum() : UnitSum{};
}

} // namespace core::detail
