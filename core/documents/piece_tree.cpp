// SPDX-License-Identifier: Apache-2.0
#include "core/documents/piece_tree.h"

#include "core/documents/own_nodes.h"

#include <algorithm>
#include <utility>

// The tree is an AVL tree that is cut and joined. Joining two trees walks down the side of the higher one as
// far as they differ in height, so that cutting and joining cost the logarithm of the number of pieces. All
// of it makes new nodes; what is simple, and in nodes that nobody shares, own_nodes.h does without.
namespace core::detail {
namespace {

[[nodiscard]] NodeRef make(NodeRef left, Piece piece, NodeRef right) {
    return NodeRef(new PieceNode(std::move(left), std::move(piece), std::move(right)));
}

/// (a, k, (b, m, c)) as ((a, k, b), m, c).
[[nodiscard]] NodeRef lift_right(const NodeRef& left, const Piece& piece, const NodeRef& right) {
    return make(make(left, piece, right->left), right->piece, right->right);
}
/// ((a, k, b), m, c) as (a, k, (b, m, c)).
[[nodiscard]] NodeRef lift_left(const NodeRef& left, const Piece& piece, const NodeRef& right) {
    return make(left->left, left->piece, make(left->right, piece, right));
}

/// Joins when `left` is higher by two or more.
[[nodiscard]] NodeRef join_right(const NodeRef& left, const Piece& piece, const NodeRef& right) {
    const NodeRef& inner = left->right;
    if (height_of(inner) <= height_of(right) + 1) {
        if (std::max(height_of(inner), height_of(right)) <= height_of(left->left))
            return make(left->left, left->piece, make(inner, piece, right));
        return lift_right(left->left, left->piece, lift_left(inner, piece, right));
    }
    const NodeRef joined = join_right(inner, piece, right);
    if (height_of(joined) <= height_of(left->left) + 1)
        return make(left->left, left->piece, joined);
    return lift_right(left->left, left->piece, joined);
}

/// Joins when `right` is higher by two or more.
[[nodiscard]] NodeRef join_left(const NodeRef& left, const Piece& piece, const NodeRef& right) {
    const NodeRef& inner = right->left;
    if (height_of(inner) <= height_of(left) + 1) {
        if (std::max(height_of(inner), height_of(left)) <= height_of(right->right))
            return make(make(left, piece, inner), right->piece, right->right);
        return lift_left(lift_right(left, piece, inner), right->piece, right->right);
    }
    const NodeRef joined = join_left(left, piece, inner);
    if (height_of(joined) <= height_of(right->right) + 1)
        return make(joined, right->piece, right->right);
    return lift_left(joined, right->piece, right->right);
}

[[nodiscard]] NodeRef join(const NodeRef& left, const Piece& piece, const NodeRef& right) {
    if (height_of(left) > height_of(right) + 1)
        return join_right(left, piece, right);
    if (height_of(right) > height_of(left) + 1)
        return join_left(left, piece, right);
    return make(left, piece, right);
}

/// The tree without its last piece.
[[nodiscard]] NodeRef without_last(const NodeRef& node) {
    return node->right ? join(node->left, node->piece, without_last(node->right)) : node->left;
}
/// The tree without its first piece.
[[nodiscard]] NodeRef without_first(const NodeRef& node) {
    return node->left ? join(without_first(node->left), node->piece, node->right) : node->right;
}

[[nodiscard]] const Piece& last_piece(const NodeRef& node) noexcept {
    const PieceNode* last = node.get();
    while (last->right)
        last = last->right.get();
    return last->piece;
}
[[nodiscard]] const Piece& first_piece(const NodeRef& node) noexcept {
    const PieceNode* first = node.get();
    while (first->left)
        first = first->left.get();
    return first->piece;
}

/// Two trees with a piece between them. Pieces that were cut, and come together again, become one.
[[nodiscard]] NodeRef insert_between(NodeRef left, Piece piece, NodeRef right) {
    if (left && last_piece(left).continues(piece)) {
        Piece joined = last_piece(left);
        joined.append(piece);
        piece = std::move(joined);
        left = without_last(left);
    }
    if (right && piece.continues(first_piece(right))) {
        piece.append(first_piece(right));
        right = without_first(right);
    }
    return join(left, piece, right);
}

[[nodiscard]] NodeRef concatenate(const NodeRef& left, const NodeRef& right) {
    if (!left)
        return right;
    if (!right)
        return left;
    return insert_between(without_last(left), last_piece(left), right);
}

struct Halves {
    NodeRef left;
    NodeRef right;
};

[[nodiscard]] Halves cut(const NodeRef& node, std::uint64_t offset) {
    if (!node)
        return {};
    const std::uint64_t before = node->before;
    const Piece& piece = node->piece;
    if (offset <= before) {
        Halves halves = cut(node->left, offset);
        return {std::move(halves.left), join(halves.right, piece, node->right)};
    }
    if (offset >= before + piece.size()) {
        Halves halves = cut(node->right, offset - before - piece.size());
        return {join(node->left, piece, halves.left), std::move(halves.right)};
    }
    const std::uint32_t middle = piece.begin + static_cast<std::uint32_t>(offset - before);
    return {join(node->left, Piece(piece.store, piece.begin, middle), NodeRef()),
            join(NodeRef(), Piece(piece.store, middle, piece.end), node->right)};
}

[[nodiscard]] NodeRef build(std::span<const Piece> pieces) {
    if (pieces.empty())
        return {};
    const std::size_t middle = pieces.size() / 2;
    NodeRef left = build(pieces.first(middle));
    return make(std::move(left), pieces[middle], build(pieces.subspan(middle + 1)));
}

void add(std::vector<Piece>& pieces, const Piece& piece) {
    if (!pieces.empty() && pieces.back().continues(piece))
        pieces.back().append(piece);
    else
        pieces.push_back(piece);
}

/// Adds the pieces of the units in [begin, end) of a subtree.
void collect(const PieceNode* node, std::uint64_t begin, std::uint64_t end, std::vector<Piece>& pieces) {
    if (node == nullptr || begin >= end)
        return;
    const std::uint64_t before = node->before;
    const std::uint64_t behind = before + node->piece.size();
    if (begin < before)
        collect(node->left.get(), begin, std::min(end, before), pieces);
    if (begin < behind && end > before) {
        const Piece& piece = node->piece;
        const auto first = piece.begin + static_cast<std::uint32_t>(std::max(begin, before) - before);
        const auto last = piece.begin + static_cast<std::uint32_t>(std::min(end, behind) - before);
        if (first == piece.begin && last == piece.end)
            add(pieces, piece);
        else
            add(pieces, Piece(piece.store, first, last));
    }
    if (end > behind)
        collect(node->right.get(), std::max(begin, behind) - behind, end - behind, pieces);
}

} // namespace

PieceNode::PieceNode(NodeRef before, Piece own, NodeRef behind) noexcept
    : left(std::move(before)), right(std::move(behind)), piece(std::move(own)) {
    update();
}

void PieceNode::update() noexcept {
    before = left ? left->sum.units : 0;
    sum = sum_of(left) + piece.sum() + sum_of(right);
    height = std::max(height_of(left), height_of(right)) + 1;
}

PieceTree::PieceTree(std::span<const Piece> pieces) : root_(build(pieces)) {}

PieceTree PieceTree::replace(std::uint64_t offset, std::uint64_t count, const PieceTree& text) {
    const bool onePiece = text.root_ && text.root_->height == 1;
    if (count == 0 && onePiece && insert_in_place(root_, offset, text.root_->piece))
        return {};
    if (count != 0 && !text.root_) {
        if (NodeRef removed = remove_in_place(root_, offset, count))
            return PieceTree(std::move(removed));
    }
    const Halves first = cut(root_, offset);
    Halves second = count != 0 ? cut(first.right, count) : Halves{NodeRef(), first.right};
    if (onePiece)
        root_ = insert_between(first.left, text.root_->piece, second.right);
    else
        root_ = concatenate(concatenate(first.left, text.root_), second.right);
    return PieceTree(std::move(second.left));
}

PieceTree PieceTree::followedBy(const PieceTree& text) const {
    return PieceTree(concatenate(root_, text.root_));
}

PieceTree PieceTree::part(std::uint64_t offset, std::uint64_t count) const {
    std::vector<Piece> pieces;
    collect(root_.get(), offset, offset + count, pieces);
    return PieceTree(pieces);
}

PieceTree PieceTree::replaced(std::span<const Splice> splices) const {
    std::vector<Piece> pieces;
    std::uint64_t done = 0;
    for (const Splice& splice : splices) {
        collect(root_.get(), done, splice.offset, pieces);
        collect(splice.text.root_.get(), 0, splice.text.size(), pieces);
        done = splice.offset + splice.count;
    }
    collect(root_.get(), done, size(), pieces);
    return PieceTree(pieces);
}

bool PieceTree::growFront(const Piece& piece) noexcept {
    if (!root_ || root_->height != 1 || !root_->isUnique() || !piece.continues(root_->piece))
        return false;
    Piece joined = piece;
    joined.append(root_->piece);
    root_->piece = std::move(joined);
    root_->update();
    return true;
}

UnitRun run_at(const PieceNode* root, std::uint64_t offset) noexcept {
    std::uint64_t base = 0;
    for (const PieceNode* node = root; node != nullptr;) {
        const std::uint64_t begin = base + node->before;
        if (offset < begin) {
            node = node->left.get();
        } else if (offset < begin + node->piece.size()) {
            return {node->piece.text(), begin};
        } else {
            base = begin + node->piece.size();
            node = node->right.get();
        }
    }
    return {{}, offset};
}

std::uint64_t ends_before(const PieceNode* root, std::uint64_t offset) noexcept {
    UnitSum before;
    for (const PieceNode* node = root; node != nullptr;) {
        const Piece& piece = node->piece;
        if (offset < node->before) {
            node = node->left.get();
            continue;
        }
        before = before + sum_of(node->left);
        offset -= node->before;
        if (offset == 0)
            break;
        if (offset < piece.size()) {
            const auto end = piece.begin + static_cast<std::uint32_t>(offset);
            before =
                before + UnitSum{offset, piece.store->countEnds(piece.begin, end), piece.beginsLf, false};
            break;
        }
        before = before + piece.sum();
        offset -= piece.size();
        node = node->right.get();
    }
    return before.ends;
}

std::uint64_t end_offset(const PieceNode* root, std::uint64_t number) noexcept {
    std::uint64_t base = 0;
    bool behindCr = false; // whether the unit in front of `base` is CR
    for (const PieceNode* node = root; node != nullptr;) {
        const UnitSum left = sum_of(node->left);
        const std::uint64_t leftEnds = left.ends - (behindCr && left.beginsLf ? 1 : 0);
        if (number < leftEnds) {
            node = node->left.get();
            continue;
        }
        number -= leftEnds;
        base += left.units;
        behindCr = left.units != 0 ? left.endsCr : behindCr;
        const Piece& piece = node->piece;
        const UnitSum own = piece.sum();
        const std::uint32_t divided = behindCr && own.beginsLf ? 1 : 0; // this LF ends what the CR began
        if (number < own.ends - divided)
            return base +
                   piece.store->findEnd(piece.begin, piece.end,
                                        static_cast<std::uint32_t>(number) + divided) -
                   piece.begin;
        number -= own.ends - divided;
        base += own.units;
        behindCr = own.endsCr;
        node = node->right.get();
    }
    return base;
}

} // namespace core::detail
