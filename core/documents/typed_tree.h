// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/documents/piece_tree.h"

namespace core::detail {

/// A text whose piece at the place where somebody types is open: it grows and shrinks at its end, and the
/// nodes above it learn of that when somebody asks for the tree. Typing a character does not walk the tree.
class TypedTree {
  public:
    [[nodiscard]] std::uint64_t size() const noexcept {
        return tree_.size() + (open_.store ? open_.size() - settled_ : 0);
    }
    /// The text as it is now, with no open piece: who copies it shares the nodes.
    [[nodiscard]] const PieceTree& get() noexcept {
        close();
        return tree_;
    }
    void set(PieceTree tree) noexcept {
        close();
        tree_ = std::move(tree);
    }
    /// As PieceTree::replace().
    [[nodiscard]] PieceTree replace(std::uint64_t offset, std::uint64_t count, const PieceTree& text) {
        close();
        return tree_.replace(offset, count, text);
    }

    /// Opens the piece that ends at `offset` and returns it, unless somebody else holds nodes on the way to
    /// it; null then. What the piece knows of its end is set when it is closed. Valid until another function
    /// is called.
    [[nodiscard]] const Piece* open(std::uint64_t offset) noexcept;
    /// Makes the open piece longer by units of its store.
    void grow(std::uint32_t count) noexcept { open_.end += count; }
    /// Makes the open piece shorter; at least one unit stays.
    void shrink(std::uint32_t count) noexcept { open_.end -= count; }

  private:
    void close() noexcept;

    PieceTree tree_;
    Piece open_;                ///< nobody else holds its leaf or a node above; without a store none is open
    std::uint64_t begin_ = 0;   ///< where the open piece begins
    std::uint32_t settled_ = 0; ///< the size of the open piece that the nodes know of
};

} // namespace core::detail
