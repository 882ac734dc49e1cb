// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace core::detail {

/// Marks of one gravity, in the order of their offsets, in a tree whose nodes have many children. A node
/// knows how far each of its children, or of its marks, is behind its own beginning: an insertion moves what
/// is behind it in one leaf and in the nodes above, however many marks follow.
///
/// add() takes all the memory that the marks may ever need, so that nothing else fails.
class MarkTree {
  public:
    static constexpr std::uint32_t kNone = 0xFFFF'FFFF;

    /// Adds a mark and returns its index. Throws std::bad_alloc; nothing has changed then.
    std::uint32_t add(std::uint64_t offset);
    void remove(std::uint32_t mark) noexcept;
    void move(std::uint32_t mark, std::uint64_t offset) noexcept;

    /// Whether the index has a mark of that generation.
    [[nodiscard]] bool has(std::uint32_t mark, std::uint32_t generation) const noexcept {
        return mark < marks_.size() && marks_[mark].generation == generation && marks_[mark].used;
    }
    [[nodiscard]] std::uint32_t generation(std::uint32_t mark) const noexcept {
        return marks_[mark].generation;
    }
    /// How often a mark has been moved by hand, which countMove() counts.
    [[nodiscard]] std::uint32_t moves(std::uint32_t mark) const noexcept { return marks_[mark].moves; }
    void countMove(std::uint32_t mark) noexcept { ++marks_[mark].moves; }
    [[nodiscard]] std::uint64_t offset(std::uint32_t mark) const noexcept;
    [[nodiscard]] std::size_t size() const noexcept { return size_; }

    /// A mark and where it stands.
    struct Place {
        std::uint32_t mark = kNone;
        std::uint64_t offset = 0;
    };
    /// The marks from `begin` on that stand in front of `end`; with `behind` those behind `begin` up to
    /// `end`. Throws std::bad_alloc.
    [[nodiscard]] std::vector<Place> find(std::uint64_t begin, std::uint64_t end, bool behind) const;

    /// Moves the marks from `offset` on by `count`; with `behind` only those behind it.
    void insertUnits(std::uint64_t offset, std::uint64_t count, bool behind) noexcept;
    /// Moves the marks between `begin` and `end` to `begin`, and those behind by the difference.
    void removeUnits(std::uint64_t begin, std::uint64_t end) noexcept;
    /// Moves all marks to the beginning.
    void collapse() noexcept;

  private:
    static constexpr std::uint32_t kMost = 32;  ///< entries of a node
    static constexpr std::uint32_t kLeast = 10; ///< of a node that is not the root

    /// A leaf has marks, another node has nodes. No node begins behind what it has, and the first child of a
    /// node begins where the node does.
    struct Node {
        std::uint32_t count = 0;
        std::uint32_t parent = kNone; ///< of an unused node the next one
        bool isLeaf = true;
        /// Where each entry begins or stands, from the beginning of the node on; behind the last one stand
        /// the greatest numbers.
        std::array<std::uint64_t, kMost> at;
        std::array<std::uint32_t, kMost> entries;

        /// The number of entries in front of a place; with `inclusive` also those at it.
        [[nodiscard]] std::uint32_t countBefore(std::uint64_t place, bool inclusive) const noexcept;
        [[nodiscard]] std::uint32_t indexOf(std::uint32_t entry) const noexcept;
        /// Moves the entries from an index on; the distance wraps around.
        void moveFrom(std::uint32_t index, std::uint64_t distance) noexcept;
        void insert(std::uint32_t index, std::uint64_t place, std::uint32_t entry) noexcept;
        void erase(std::uint32_t index) noexcept;
    };
    struct Mark {
        std::uint32_t leaf = kNone; ///< of an unused mark the next one
        std::uint32_t generation = 0;
        std::uint32_t moves = 0;
        bool used = false;
    };
    /// The units that are taken away.
    struct Removal {
        std::uint64_t begin;
        std::uint64_t end;

        /// Where something goes.
        [[nodiscard]] std::uint64_t moved(std::uint64_t offset) const noexcept {
            if (offset <= begin)
                return offset;
            return offset < end ? begin : offset - (end - begin);
        }
    };

    void reserve(std::size_t marks);
    [[nodiscard]] std::uint32_t takeNode(bool isLeaf) noexcept;
    void freeNode(std::uint32_t node) noexcept;
    void link(std::uint32_t mark, std::uint64_t offset) noexcept;
    void unlink(std::uint32_t mark) noexcept;
    void adopt(std::uint32_t node) noexcept;
    void divide(std::uint32_t node) noexcept;
    void balance(std::uint32_t node) noexcept;
    void share(std::uint32_t left, std::uint32_t right, std::uint32_t leftCount) noexcept;
    void findBelow(const Node& node, std::uint64_t origin, const Removal& range, bool behind,
                   std::vector<Place>& found) const;
    void removeBelow(Node& node, std::uint64_t origin, const Removal& removal) noexcept;

    std::vector<Node> nodes_;
    std::vector<Mark> marks_;
    std::uint32_t root_ = kNone;
    std::uint32_t freeNode_ = kNone; ///< the first unused node
    std::uint32_t freeMark_ = kNone; ///< the first unused mark
    std::size_t size_ = 0;
};

} // namespace core::detail
