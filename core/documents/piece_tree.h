// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/documents/unit_store.h"

#include <cstdint>
#include <span>
#include <vector>

/// A text as a balanced tree of pieces. Nodes never change while more than one holder can see them, so that a
/// copy of a tree is one counted reference, whatever its length, and any thread may read it.
namespace core::detail {

/// What is known of some units without looking at them.
struct UnitSum {
    std::uint64_t units = 0;
    std::uint64_t ends = 0; ///< line ends, when the units stand alone
    bool beginsLf = false;  ///< whether the first unit is LF
    bool endsCr = false;    ///< whether the last unit is CR
};

/// The sum of units that stand one behind the other: a CR and an LF that meet are one end.
[[nodiscard]] inline UnitSum operator+(const UnitSum& left, const UnitSum& right) noexcept {
    if (left.units == 0)
        return right;
    if (right.units == 0)
        return left;
    return {left.units + right.units, left.ends + right.ends - (left.endsCr && right.beginsLf ? 1 : 0),
            left.beginsLf, right.endsCr};
}

/// A range of a store, never empty.
struct Piece {
    StoreRef store;
    std::uint32_t begin = 0;
    std::uint32_t end = 0;
    std::uint32_t ends = 0; ///< line ends, when the piece stands alone
    bool beginsLf = false;
    bool endsCr = false;

    Piece() noexcept = default;
    Piece(StoreRef from, std::uint32_t first, std::uint32_t last) noexcept
        : store(std::move(from)), begin(first), end(last), ends(store->countEnds(first, last)),
          beginsLf(store->units()[first] == u'\n'), endsCr(store->units()[last - 1] == u'\r') {}

    [[nodiscard]] std::uint32_t size() const noexcept { return end - begin; }
    [[nodiscard]] wstring_view text() const noexcept { return {store->units() + begin, size()}; }
    [[nodiscard]] UnitSum sum() const noexcept { return {size(), ends, beginsLf, endsCr}; }
    /// Whether `next` goes on in the store where this piece ends.
    [[nodiscard]] bool continues(const Piece& next) const noexcept {
        return store.get() == next.store.get() && end == next.begin;
    }
    /// Takes in a piece that continues this one.
    void append(const Piece& next) noexcept {
        ends = static_cast<std::uint32_t>((sum() + next.sum()).ends);
        end = next.end;
        endsCr = next.endsCr;
    }
    /// Keeps the units in front of `middle`, an offset in the store, and returns the others.
    [[nodiscard]] Piece cut(std::uint32_t middle) noexcept {
        Piece rest(store, middle, end);
        end = middle;
        endsCr = store->units()[middle - 1] == u'\r';
        ends -= rest.ends - (endsCr && rest.beginsLf ? 1 : 0);
        return rest;
    }
};

class PieceNode;
using NodeRef = Held<PieceNode>;

/// A piece, and the pieces in front of it and behind it.
class PieceNode {
  public:
    PieceNode(NodeRef before, Piece own, NodeRef behind) noexcept;

    void hold() const noexcept { holders_.fetch_add(1, std::memory_order_relaxed); }
    void release() const noexcept {
        if (holders_.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete this;
    }
    /// Whether the caller, who holds a reference, is the only holder.
    [[nodiscard]] bool isUnique() const noexcept { return holders_.load(std::memory_order_acquire) == 1; }
    /// Sets sum and height after a change of the piece or below.
    void update() noexcept;

    NodeRef left;
    NodeRef right;
    Piece piece;
    UnitSum sum;
    std::uint64_t before = 0; ///< units of the left side, so that looking down touches no node beside the way
    std::int32_t height = 0;

  private:
    mutable std::atomic<std::uint32_t> holders_{1};
};

[[nodiscard]] inline std::int32_t height_of(const NodeRef& node) noexcept {
    return node ? node->height : 0;
}
[[nodiscard]] inline UnitSum sum_of(const NodeRef& node) noexcept {
    return node ? node->sum : UnitSum{};
}

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
    [[nodiscard]] UnitSum sum() const noexcept { return root_ ? root_->sum : UnitSum{}; }
    [[nodiscard]] std::uint64_t size() const noexcept { return sum().units; }

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

/// Units that stand together in memory, and the offset of the first in the text. Borrowed from the tree.
struct UnitRun {
    wstring_view text;
    std::uint64_t offset = 0;

    /// The units from an offset in the text on, which must lie in the run or at its end.
    [[nodiscard]] wstring_view from(std::uint64_t at) const noexcept {
        return text.substr(static_cast<std::size_t>(at - offset));
    }
};

// Questions about a text; `root` may be null, as that of an empty text is.

/// The run that has the unit at `offset`; empty at the end of the text.
[[nodiscard]] UnitRun run_at(const PieceNode* root, std::uint64_t offset) noexcept;
/// How many line ends begin in front of `offset`.
[[nodiscard]] std::uint64_t ends_before(const PieceNode* root, std::uint64_t offset) noexcept;
/// The offset of the first unit of end `number`, from 0; there must be so many.
[[nodiscard]] std::uint64_t end_offset(const PieceNode* root, std::uint64_t number) noexcept;

} // namespace core::detail
