// SPDX-License-Identifier: Apache-2.0
#include "core/documents/piece_tree.h"

#include "core/documents/entry_row.h"
#include "core/documents/own_nodes.h"

#include <algorithm>
#include <utility>
#include <vector>

// Trees are cut and joined. Joining two walks down the side of the higher one as far as they differ in
// height, so that cutting and joining cost the logarithm of the number of pieces. All of it makes new nodes;
// an edit within a leaf, which most are, is made in place by own_nodes.cpp.
namespace core::detail {
namespace {

constexpr std::uint32_t kFilled =
    PieceNode::kMost * 3 / 4; // entries of new nodes, so that some more find room

/// Nodes of one height beside each other; the second may be null.
struct Pair {
    NodeRef first;
    NodeRef second;
};

[[nodiscard]] Pair make_pair(std::uint32_t height, const EntryRow& row) {
    if (row.count() <= PieceNode::kMost)
        return {PieceNode::make(height, row.all()), NodeRef()};
    const std::uint32_t middle = row.count() / 2;
    return {PieceNode::make(height, row.all().first(middle)),
            PieceNode::make(height, row.all().subspan(middle))};
}

void add(EntryRow& row, const Pair& pair) noexcept {
    row.add(NodeEntry(*pair.first.get()));
    if (pair.second)
        row.add(NodeEntry(*pair.second.get()));
}

/// Joins two nodes in one or two of the greater height.
[[nodiscard]] Pair join(const PieceNode& left, const PieceNode& right) {
    EntryRow row;
    if (left.height() == right.height()) {
        row.add(left);
        row.add(right);
        return make_pair(left.height(), row);
    }
    if (left.height() > right.height()) {
        const std::uint32_t last = left.count() - 1;
        const Pair joined = join(*left.node(last), right);
        row.add(left, 0, last);
        add(row, joined);
        return make_pair(left.height(), row);
    }
    const Pair joined = join(left, *right.node(0));
    add(row, joined);
    row.add(right, 1, right.count());
    return make_pair(right.height(), row);
}

[[nodiscard]] NodeRef join(const NodeRef& left, const NodeRef& right) {
    if (!left || !right)
        return left ? left : right;
    Pair pair = join(*left.get(), *right.get());
    if (!pair.second)
        return std::move(pair.first);
    EntryRow row;
    add(row, pair);
    return PieceNode::make(pair.first->height() + 1, row.all());
}

/// The tree of some entries of a node.
[[nodiscard]] NodeRef tree_of(const PieceNode& node, std::uint32_t begin, std::uint32_t end) {
    if (begin == end)
        return {};
    if (!node.isLeaf() && end - begin == 1)
        return NodeRef::share(node.node(begin));
    EntryRow row;
    row.add(node, begin, end);
    return PieceNode::make(node.height(), row.all());
}

struct Halves {
    NodeRef left;
    NodeRef right;
};

[[nodiscard]] Halves cut(const PieceNode& node, std::uint64_t offset) {
    const std::uint32_t count = node.count();
    const std::uint32_t index = node.indexOf(offset);
    const std::uint64_t inside = offset - node.unitsBefore(index);
    if (inside == 0)
        return {tree_of(node, 0, index), tree_of(node, index, count)};
    if (!node.isLeaf()) {
        const Halves halves = cut(*node.node(index), inside);
        return {join(tree_of(node, 0, index), halves.left),
                join(halves.right, tree_of(node, index + 1, count))};
    }
    Piece before = node.piece(index);
    const Piece behind = before.cut(before.begin() + static_cast<std::uint32_t>(inside));
    EntryRow left;
    left.add(node, 0, index);
    left.add(NodeEntry(before));
    EntryRow right;
    right.add(NodeEntry(behind));
    right.add(node, index + 1, count);
    return {PieceNode::make(1, left.all()), PieceNode::make(1, right.all())};
}

[[nodiscard]] Halves cut(const NodeRef& root, std::uint64_t offset) {
    if (!root || offset == 0)
        return {NodeRef(), root};
    return offset == root->sum().units ? Halves{root, NodeRef()} : cut(*root.get(), offset);
}

[[nodiscard]] Piece first_piece(const NodeRef& root) noexcept {
    const PieceNode* node = root.get();
    while (!node->isLeaf())
        node = node->node(0);
    return node->piece(0);
}
[[nodiscard]] Piece last_piece(const NodeRef& root) noexcept {
    const PieceNode* node = root.get();
    while (!node->isLeaf())
        node = node->node(node->count() - 1);
    return node->piece(node->count() - 1);
}

/// Two texts as one. Pieces that were cut, and come together again, become one.
[[nodiscard]] NodeRef concatenate(const NodeRef& left, NodeRef right) {
    if (!left || !right)
        return left ? left : right;
    const Piece last = last_piece(left);
    if (!last.continues(first_piece(right)))
        return join(left, right);
    static_cast<void>(replace_in_leaf(right, 0, 0, &last)); // which is always within a leaf
    return join(cut(left, left->sum().units - last.size()).left, right);
}

/// A tree of the nodes of one height.
[[nodiscard]] NodeRef build(std::vector<NodeRef> nodes) {
    while (nodes.size() > 1) {
        std::vector<NodeRef> above;
        const std::size_t parents = (nodes.size() + kFilled - 1) / kFilled;
        above.reserve(parents);
        for (std::size_t i = 0, at = 0; i < parents; ++i) {
            EntryRow row;
            for (const std::size_t end = nodes.size() * (i + 1) / parents; at < end; ++at)
                row.add(NodeEntry(*nodes[at].get()));
            above.push_back(PieceNode::make(nodes.front()->height() + 1, row.all()));
        }
        nodes = std::move(above);
    }
    return nodes.empty() ? NodeRef() : std::move(nodes.front());
}

[[nodiscard]] NodeRef build(std::span<const Piece> pieces) {
    if (pieces.size() == 1) {
        const NodeEntry only(pieces.front());
        return PieceNode::make(1, {&only, 1});
    }
    std::vector<NodeRef> leaves;
    const std::size_t count = (pieces.size() + kFilled - 1) / kFilled;
    leaves.reserve(count);
    for (std::size_t i = 0, at = 0; i < count; ++i) {
        EntryRow row;
        for (const std::size_t end = pieces.size() * (i + 1) / count; at < end; ++at)
            row.add(NodeEntry(pieces[at]));
        leaves.push_back(PieceNode::make(1, row.all()));
    }
    return build(std::move(leaves));
}

void add(std::vector<Piece>& pieces, Piece piece) {
    if (!pieces.empty() && pieces.back().continues(piece))
        pieces.back().append(piece);
    else
        pieces.push_back(std::move(piece));
}

/// Adds the pieces of the units in [begin, end) of a subtree.
void collect(const PieceNode& node, std::uint64_t begin, std::uint64_t end, std::vector<Piece>& pieces) {
    for (std::uint32_t i = node.indexOf(begin); i < node.count() && node.unitsBefore(i) < end; ++i) {
        const std::uint64_t before = node.unitsBefore(i);
        const std::uint64_t from = std::max(begin, before) - before;
        const std::uint64_t to = std::min(end, node.unitsTo(i)) - before;
        if (!node.isLeaf()) {
            collect(*node.node(i), from, to, pieces);
            continue;
        }
        Piece piece = node.piece(i);
        const std::uint32_t first = piece.begin();
        if (to < piece.size())
            static_cast<void>(piece.cut(first + static_cast<std::uint32_t>(to)));
        if (from > 0)
            piece = piece.cut(first + static_cast<std::uint32_t>(from));
        add(pieces, std::move(piece));
    }
}

void collect(const NodeRef& root, std::uint64_t begin, std::uint64_t end, std::vector<Piece>& pieces) {
    if (root && begin < end)
        collect(*root.get(), begin, end, pieces);
}

} // namespace

PieceTree::PieceTree(std::span<const Piece> pieces) : root_(build(pieces)) {}

PieceTree PieceTree::replace(std::uint64_t offset, std::uint64_t count, const PieceTree& text) {
    if (!root_) {
        root_ = text.root_;
        return {};
    }
    const NodeRef& inserted = text.root_;
    if (!inserted || (inserted->isLeaf() && inserted->count() == 1)) {
        Piece piece;
        if (inserted)
            piece = inserted->piece(0);
        if (LeafEdit edit = replace_in_leaf(root_, offset, count, inserted ? &piece : nullptr); edit.done)
            return PieceTree(std::move(edit.removed));
    }
    const Halves first = cut(root_, offset);
    Halves second = count != 0 ? cut(first.right, count) : Halves{NodeRef(), first.right};
    root_ = concatenate(concatenate(first.left, inserted), second.right);
    return PieceTree(std::move(second.left));
}

PieceTree PieceTree::followedBy(const PieceTree& text) const {
    return PieceTree(concatenate(root_, text.root_));
}

PieceTree PieceTree::part(std::uint64_t offset, std::uint64_t count) const {
    std::vector<Piece> pieces;
    collect(root_, offset, offset + count, pieces);
    return PieceTree(pieces);
}

PieceTree PieceTree::replaced(std::span<const Splice> splices) const {
    std::vector<Piece> pieces;
    std::uint64_t done = 0;
    for (const Splice& splice : splices) {
        collect(root_, done, splice.offset, pieces);
        collect(splice.text.root_, 0, splice.text.size(), pieces);
        done = splice.offset + splice.count;
    }
    collect(root_, done, size(), pieces);
    return PieceTree(pieces);
}

bool PieceTree::growFront(const Piece& piece) noexcept {
    if (!root_ || !root_->isLeaf() || root_->count() != 1 || !root_->isUnique())
        return false;
    Piece joined = piece;
    if (!joined.continues(root_->piece(0)))
        return false;
    joined.append(root_->piece(0));
    const NodeEntry entry(joined);
    root_->fill({&entry, 1}); // of the same store, whose reference the node keeps
    return true;
}

} // namespace core::detail
