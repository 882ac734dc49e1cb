// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/documents/piece_node.h"

#include <cstdint>
#include <span>

/// A text as a balanced tree of pieces. Nodes never change while more than one holder can see them, so that a
/// copy of a tree is one counted reference, whatever its length, and any thread may read it.
namespace core::detail {

struct Splice;

/// A text. A value: changes leave copies as they are. Offsets must be in the text.
class PieceTree {
  public:
    PieceTree() noexcept = default;
    /// Takes a root over; it may be null.
    explicit PieceTree(NodeRef root) noexcept : root_(std::move(root)) {}
    /// The text of pieces in a row. Throws std::bad_alloc.
    explicit PieceTree(std::span<const Piece> pieces);

    [[nodiscard]] const NodeRef& root() const noexcept { return root_; }
    [[nodiscard]] UnitSum sum() const noexcept { return sum_of(root_); }
    [[nodiscard]] std::uint64_t size() const noexcept { return root_ ? root_->sum().units : 0; }

    /// Replaces `count` units and returns them, in the nodes as they are where nobody else sees them. Throws
    /// std::bad_alloc; the text is as it was then.
    [[nodiscard]] PieceTree replace(std::uint64_t offset, std::uint64_t count, const PieceTree& text);
    /// This text and `text` behind it. Throws std::bad_alloc.
    [[nodiscard]] PieceTree followedBy(const PieceTree& text) const;
    /// The units of a range. Throws std::bad_alloc.
    [[nodiscard]] PieceTree part(std::uint64_t offset, std::uint64_t count) const;
    /// The text with each of the ranges replaced, which stand in ascending order and do not overlap. Looks at
    /// every piece once, which is less than to cut for each when there are many. Throws std::bad_alloc.
    [[nodiscard]] PieceTree replaced(std::span<const Splice> splices) const;
    /// Puts a piece in front of a text of one piece that continues it, when nobody else sees that text;
    /// returns whether it did.
    bool growFront(const Piece& piece) noexcept;

  private:
    friend class TypedTree;
    NodeRef root_;
};

/// The replacement of `count` units at `offset` by a text.
struct Splice {
    std::uint64_t offset = 0;
    std::uint64_t count = 0;
    PieceTree text{};
};

} // namespace core::detail
