// SPDX-License-Identifier: Apache-2.0
#include "core/documents/own_nodes.h"

#include <algorithm>
#include <utility>

namespace core::detail {
namespace {

/// Where an insertion leads.
struct Landing {
    bool isOwn = true;           ///< whether nobody else holds a node on the way
    FoundNode divided;           ///< the piece that the offset divides
    PieceNode* before = nullptr; ///< otherwise the pieces at its sides
    PieceNode* behind = nullptr;
};

[[nodiscard]] Landing land(const NodeRef& root, std::uint64_t offset) noexcept {
    Landing landing;
    std::uint64_t base = 0;
    for (PieceNode* node = root.get(); node != nullptr;) {
        if (!node->isUnique()) {
            landing.isOwn = false;
            break;
        }
        const std::uint64_t begin = base + node->before;
        const std::uint64_t end = begin + node->piece.size();
        if (offset <= begin) {
            if (offset == begin)
                landing.behind = node;
            node = node->left.get();
            continue;
        }
        if (offset < end) {
            landing.divided = {node, begin};
            offset = end; // what is behind the offset is inserted behind the piece
        } else if (offset == end) {
            landing.before = node;
        }
        base = end;
        node = node->right.get();
    }
    return landing;
}

void turn_right(NodeRef& slot) noexcept {
    NodeRef top = std::move(slot->left);
    slot->left = std::move(top->right);
    slot->update();
    top->right = std::move(slot);
    slot = std::move(top);
}
void turn_left(NodeRef& slot) noexcept {
    NodeRef top = std::move(slot->right);
    slot->right = std::move(top->left);
    slot->update();
    top->left = std::move(slot);
    slot = std::move(top);
}

/// Sets sum and height after a change below that has made one side higher or lower by one.
void balance(NodeRef& slot) noexcept {
    PieceNode& node = *slot.get();
    const std::int32_t left = height_of(node.left);
    const std::int32_t right = height_of(node.right);
    if (left > right + 1) {
        if (height_of(node.left->left) < height_of(node.left->right)) {
            turn_left(node.left);
            node.left->update();
        }
        turn_right(slot);
    } else if (right > left + 1) {
        if (height_of(node.right->right) < height_of(node.right->left)) {
            turn_right(node.right);
            node.right->update();
        }
        turn_left(slot);
    }
    slot->update();
}

/// Inserts a node where a piece begins or ends. Only nodes on the way turn.
void insert(NodeRef& slot, std::uint64_t offset, NodeRef& node) noexcept {
    if (!slot) {
        slot = std::move(node);
        return;
    }
    const std::uint64_t before = slot->before;
    if (offset <= before)
        insert(slot->left, offset, node);
    else
        insert(slot->right, offset - before - slot->piece.size(), node);
    balance(slot);
}

/// Whether erase() would touch only nodes that nobody else holds. Those beside the way turn, too.
[[nodiscard]] bool can_erase(const NodeRef& root, std::uint64_t offset) noexcept {
    for (const PieceNode* node = root.get();;) {
        if (!node->isUnique())
            return false;
        const std::uint64_t before = node->before;
        const bool goesLeft = offset < before;
        if (!goesLeft && offset < before + node->piece.size()) {
            if (!node->left || !node->right)
                return true;
            offset = 0; // the first piece behind it takes its place
        } else if (!goesLeft) {
            offset -= before + node->piece.size();
        }
        const NodeRef& way = goesLeft ? node->left : node->right;
        const NodeRef& other = goesLeft ? node->right : node->left;
        if (height_of(other) > height_of(way)) {
            const NodeRef& inner = goesLeft ? other->left : other->right;
            if (!other->isUnique() || (inner && !inner->isUnique()))
                return false;
        }
        node = way.get();
    }
}

/// Takes out the node whose piece has the unit at `offset`.
void erase(NodeRef& slot, std::uint64_t offset) noexcept {
    const std::uint64_t before = slot->before;
    if (offset < before) {
        erase(slot->left, offset);
    } else if (offset >= before + slot->piece.size()) {
        erase(slot->right, offset - before - slot->piece.size());
    } else if (!slot->left || !slot->right) {
        NodeRef child = std::move(slot->left ? slot->left : slot->right);
        slot = std::move(child);
        return;
    } else {
        const PieceNode* first = slot->right.get();
        while (first->left)
            first = first->left.get();
        slot->piece = first->piece;
        erase(slot->right, 0);
    }
    balance(slot);
}

void settle_below(PieceNode& node, std::uint64_t offset, const PieceNode* changed) noexcept {
    if (&node != changed) {
        const std::uint64_t before = node.before;
        if (offset < before)
            settle_below(*node.left.get(), offset, changed);
        else
            settle_below(*node.right.get(), offset - before - node.piece.size(), changed);
    }
    node.update();
}

[[nodiscard]] NodeRef make(Piece piece) {
    return NodeRef(new PieceNode(NodeRef(), std::move(piece), NodeRef()));
}

} // namespace

FoundNode own_node_before(const NodeRef& root, std::uint64_t offset) noexcept {
    std::uint64_t base = 0;
    for (PieceNode* node = root.get(); node != nullptr && node->isUnique();) {
        const std::uint64_t begin = base + node->before;
        const std::uint64_t end = begin + node->piece.size();
        if (offset == end)
            return {node, begin};
        base = offset > end ? end : base;
        node = offset > end ? node->right.get() : node->left.get();
    }
    return {};
}

void settle(const NodeRef& root, FoundNode changed) noexcept {
    settle_below(*root.get(), changed.begin, changed.node);
}

bool insert_in_place(NodeRef& root, std::uint64_t offset, const Piece& piece) {
    const Landing landing = land(root, offset);
    if (!landing.isOwn)
        return false;
    const bool behind = landing.divided.node == nullptr && landing.behind != nullptr &&
                        piece.continues(landing.behind->piece);
    if (landing.before != nullptr && landing.before->piece.continues(piece)) {
        Piece more = piece;
        if (behind) { // what was cut comes together again
            more.append(landing.behind->piece);
            if (!can_erase(root, offset))
                return false;
            erase(root, offset);
        }
        const FoundNode before = own_node_before(root, offset);
        before.node->piece.append(more);
        settle(root, before);
        return true;
    }
    if (behind) {
        Piece joined = piece;
        joined.append(landing.behind->piece);
        landing.behind->piece = std::move(joined);
        settle(root, {landing.behind, offset});
        return true;
    }
    NodeRef fresh = make(piece);
    if (const FoundNode divided = landing.divided; divided.node != nullptr) {
        Piece left = divided.node->piece;
        NodeRef rest = make(left.cut(left.begin + static_cast<std::uint32_t>(offset - divided.begin)));
        divided.node->piece = std::move(left);
        settle(root, divided);
        insert(root, offset, rest);
    }
    insert(root, offset, fresh);
    return true;
}

NodeRef remove_in_place(NodeRef& root, std::uint64_t offset, std::uint64_t count) {
    FoundNode found;
    for (PieceNode* node = root.get(); node != nullptr && found.node == nullptr;) {
        if (!node->isUnique())
            return {};
        const std::uint64_t begin = found.begin + node->before;
        const std::uint64_t end = begin + node->piece.size();
        if (offset < begin) {
            node = node->left.get();
        } else if (offset < end) {
            found = {node, begin};
        } else {
            found.begin = end;
            node = node->right.get();
        }
    }
    if (found.node == nullptr || offset + count > found.begin + found.node->piece.size())
        return {};
    Piece left = found.node->piece;
    const std::uint32_t first = left.begin + static_cast<std::uint32_t>(offset - found.begin);
    const std::uint32_t last = first + static_cast<std::uint32_t>(count);
    if (first == left.begin && last == left.end) {
        if (!can_erase(root, offset))
            return {};
        NodeRef removed = make(std::move(left));
        erase(root, offset);
        return removed;
    }
    Piece rest;
    if (last != left.end)
        rest = left.cut(last);
    if (first == left.begin) {
        NodeRef removed = make(std::move(left));
        found.node->piece = std::move(rest);
        settle(root, found);
        return removed;
    }
    NodeRef removed = make(left.cut(first));
    if (rest.size() == 0) {
        found.node->piece = std::move(left);
        settle(root, found);
        return removed;
    }
    // Both sides stay; the nodes on the way to where the right one goes must be the tree's own, too.
    if (!land(root, offset + count).isOwn)
        return {};
    NodeRef behind = make(std::move(rest));
    found.node->piece = std::move(left);
    settle(root, found);
    insert(root, offset, behind);
    return removed;
}

} // namespace core::detail
