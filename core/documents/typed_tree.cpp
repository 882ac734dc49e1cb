// SPDX-License-Identifier: Apache-2.0
#include "core/documents/typed_tree.h"

#include "core/documents/own_nodes.h"

namespace core::detail {

const Piece* TypedTree::open(std::uint64_t offset) noexcept {
    if (open_.store && begin_ + open_.size() == offset)
        return &open_;
    close();
    std::optional<Piece> found = offset > 0 ? own_piece_before(tree_.root_, offset) : std::nullopt;
    if (!found)
        return nullptr;
    open_ = *std::move(found);
    settled_ = open_.size();
    begin_ = offset - settled_;
    return &open_;
}

void TypedTree::close() noexcept {
    if (!open_.store)
        return;
    if (open_.size() != settled_) {
        open_.count();
        settle(tree_.root_, begin_, open_);
    }
    open_ = Piece();
}

} // namespace core::detail
