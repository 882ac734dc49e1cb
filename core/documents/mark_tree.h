// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace core::detail {

/// Marks of one gravity, in the order of their offsets. A mark knows how far it is behind the one in front,
/// so that an insertion changes one mark, however many follow. A treap, balanced by random priorities; the
/// marks are found by their index.
class MarkTree {
  public:
    static constexpr std::uint32_t kNone = 0xFFFF'FFFF;

    /// Adds a mark and returns its index. Throws std::bad_alloc; nothing has changed then.
    std::uint32_t add(std::uint64_t offset);
    void remove(std::uint32_t mark) noexcept;
    void move(std::uint32_t mark, std::uint64_t offset) noexcept;

    /// Whether the index has a mark of that generation.
    [[nodiscard]] bool has(std::uint32_t mark, std::uint32_t generation) const noexcept {
        return mark < nodes_.size() && nodes_[mark].generation == generation && nodes_[mark].used;
    }
    [[nodiscard]] std::uint32_t generation(std::uint32_t mark) const noexcept {
        return nodes_[mark].generation;
    }
    /// How often a mark has been moved by hand, which countMove() counts.
    [[nodiscard]] std::uint32_t moves(std::uint32_t mark) const noexcept { return nodes_[mark].moves; }
    void countMove(std::uint32_t mark) noexcept { ++nodes_[mark].moves; }
    [[nodiscard]] std::uint64_t offset(std::uint32_t mark) const noexcept;
    [[nodiscard]] std::size_t size() const noexcept { return size_; }

    /// The first mark at `offset` or behind it; with `behind` only those behind it. kNone if no mark is
    /// there.
    [[nodiscard]] std::uint32_t firstFrom(std::uint64_t offset, bool behind) const noexcept;
    /// The mark behind a mark; kNone behind the last one.
    [[nodiscard]] std::uint32_t next(std::uint32_t mark) const noexcept;

    /// Moves the marks from `offset` on by `count`; with `behind` only those behind it.
    void insertUnits(std::uint64_t offset, std::uint64_t count, bool behind) noexcept;
    /// Moves the marks between `begin` and `end` to `begin`, and those behind by the difference.
    void removeUnits(std::uint64_t begin, std::uint64_t end) noexcept;
    /// Moves all marks to the beginning.
    void collapse() noexcept;

  private:
    struct Node {
        std::uint64_t gap = 0; ///< units from the mark in front
        std::uint64_t before =
            0; ///< the gaps of the left subtree, so that looking down touches no other node
        std::uint32_t left = kNone;
        std::uint32_t right = kNone;
        std::uint32_t parent = kNone;
        std::uint32_t priority = 0;
        std::uint32_t generation = 0;
        std::uint32_t moves = 0;
        bool used = false;
    };

    void addGap(std::uint32_t node, std::uint64_t difference) noexcept;
    void replaceChild(std::uint32_t parent, std::uint32_t child, std::uint32_t by) noexcept;
    void lift(std::uint32_t node) noexcept;
    void link(std::uint32_t node, std::uint64_t offset) noexcept;
    void unlink(std::uint32_t node) noexcept;

    std::vector<Node> nodes_;
    std::uint32_t root_ = kNone;
    std::uint32_t free_ = kNone; ///< the first unused node; they are linked by `right`
    std::uint32_t random_ = 0x9E37'79B9;
    std::size_t size_ = 0;
};

} // namespace core::detail
