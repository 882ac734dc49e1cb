// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/documents/piece_tree.h"

// Changes of a tree in its own nodes, which takes memory for new pieces only. A node that somebody else
// holds is never touched: a change that would have to is refused, and nothing has changed then.
namespace core::detail {

/// Inserts a piece, or makes a piece longer that it continues, and returns whether it did. Throws
/// std::bad_alloc; nothing has changed then.
[[nodiscard]] bool insert_in_place(NodeRef& root, std::uint64_t offset, const Piece& piece);
/// Removes units that lie in one piece and returns them; null when it is refused. Throws std::bad_alloc;
/// nothing has changed then.
[[nodiscard]] NodeRef remove_in_place(NodeRef& root, std::uint64_t offset, std::uint64_t count);

/// A node and the offset of its piece.
struct FoundNode {
    PieceNode* node = nullptr;
    std::uint64_t begin = 0;
};
/// The node whose piece ends at `offset`, when nobody else holds it or a node above it; null otherwise.
[[nodiscard]] FoundNode own_node_before(const NodeRef& root, std::uint64_t offset) noexcept;
/// Sets the sums of a node whose piece has changed at its end, and of those above it.
void settle(const NodeRef& root, FoundNode changed) noexcept;

} // namespace core::detail
