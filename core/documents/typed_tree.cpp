// SPDX-License-Identifier: Apache-2.0
#include "core/documents/typed_tree.h"

namespace core::detail {

const Piece* TypedTree::open(std::uint64_t offset) noexcept {
    if (open_.node == nullptr || open_.begin + open_.node->piece.size() != offset) {
        close();
        open_ = own_node_before(tree_.root_, offset);
        if (open_.node == nullptr)
            return nullptr;
        settled_ = open_.node->piece.size();
    }
    return &open_.node->piece;
}

void TypedTree::close() noexcept {
    if (open_.node == nullptr)
        return;
    if (Piece& piece = open_.node->piece; piece.size() != settled_) {
        piece = Piece(std::move(piece.store), piece.begin, piece.end); // which counts its ends
        settle(tree_.root_, open_);
    }
    open_ = {};
}

} // namespace core::detail
