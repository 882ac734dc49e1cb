// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/documents/piece_node.h"

#include <optional>

// Changes of a tree in its own nodes. Those on the way that somebody else holds, too, are copied first, which
// changes nothing that can be seen; all memory is taken before anything changes.
namespace core::detail {

/// What came of an edit.
struct LeafEdit {
    bool done = false; ///< whether the edit was within a leaf; nothing has changed otherwise
    NodeRef removed{}; ///< a leaf of the units that were removed; null when there were none
};

/// Replaces units of a text that is not empty by a piece, or by nothing when it is null, if they lie in one
/// leaf. Pieces that come together in a leaf become one. Throws std::bad_alloc; the text is as it was then.
[[nodiscard]] LeafEdit replace_in_leaf(NodeRef& root, std::uint64_t offset, std::uint64_t count,
                                       const Piece* piece);

/// The piece that ends at `offset`, which is greater than 0, when nobody else holds its leaf or a node above.
[[nodiscard]] std::optional<Piece> own_piece_before(const NodeRef& root, std::uint64_t offset) noexcept;
/// Sets the sums of the piece that begins at an offset, and of the nodes above it, after own_piece_before()
/// has returned the piece and it has become another length.
void settle(const NodeRef& root, std::uint64_t begin, const Piece& piece) noexcept;

} // namespace core::detail
