// SPDX-License-Identifier: Apache-2.0
#include "core/documents/own_nodes.h"

#include "core/documents/entry_row.h"

#include <array>
#include <utility>

namespace core::detail {
namespace {

constexpr std::uint32_t kMostFresh =
    3; // what an edit puts in the place of others: two rests and its own piece

/// The way from the root to a leaf.
struct Way {
    std::array<PieceNode*, PieceNode::kMostHeight> nodes;
    std::array<std::uint32_t, PieceNode::kMostHeight> indices; ///< of the entry that leads on
    std::uint32_t leaf = 0;                                    ///< the number of nodes above the leaf
    std::uint64_t begin = 0;                                   ///< of the leaf

    /// To the leaf that has the unit at `offset`.
    Way(const NodeRef& root, std::uint64_t offset) noexcept {
        PieceNode* node = root.get();
        for (;; ++leaf) {
            nodes[leaf] = node;
            if (node->isLeaf())
                return;
            const std::uint32_t index = node->indexOf(offset - begin);
            indices[leaf] = index;
            begin += node->unitsBefore(index);
            const bool isAboveLeaf = node->height() == 2;
            node = node->node(index);
            if (isAboveLeaf)
                node->prefetch();
        }
    }
    [[nodiscard]] bool isOwn() const noexcept {
        for (std::uint32_t level = 0; level <= leaf; ++level) {
            if (!nodes[level]->isOwn())
                return false;
        }
        return true;
    }
    /// Tells the nodes above of the sum of a node.
    void settleAbove(std::uint32_t level) const noexcept {
        for (; level > 0; --level)
            nodes[level - 1]->setSum(indices[level - 1], nodes[level]->sum());
    }
};

/// Makes a child a node's own.
void own(PieceNode& parent, std::uint32_t index) {
    if (!parent.node(index)->isOwn())
        NodeRef(parent.exchange(index, parent.node(index)->copy().detach()));
}

/// Makes the nodes of a way the tree's own. Throws std::bad_alloc; some may be then.
void own(NodeRef& root, Way& way) {
    if (!root->isOwn())
        root = root->copy();
    way.nodes[0] = root.get();
    for (std::uint32_t level = 0; level < way.leaf; ++level) {
        own(*way.nodes[level], way.indices[level]);
        way.nodes[level + 1] = way.nodes[level]->node(way.indices[level]);
    }
}

/// The neighbour with which a child of a node is merged, as the index of the left one of both.
[[nodiscard]] std::uint32_t left_of_two(const PieceNode& parent, std::uint32_t index) noexcept {
    return index + 1 < parent.count() ? index : index - 1;
}

/// Where in its store a piece begins or ends.
struct Edge {
    const UnitStore* store = nullptr;
    std::uint32_t at = 0;

    [[nodiscard]] bool meets(const Edge& other) const noexcept {
        return store != nullptr && store == other.store && at == other.at;
    }
};
[[nodiscard]] Edge begin_of(const Piece& piece) noexcept {
    return {piece.store.get(), piece.begin()};
}
[[nodiscard]] Edge end_of(const Piece& piece) noexcept {
    return {piece.store.get(), piece.end};
}
[[nodiscard]] Edge begin_of(const PieceNode& leaf, std::uint32_t index) noexcept {
    return index < leaf.count() ? Edge{&leaf.store(index), leaf.place(index).begin} : Edge{};
}
[[nodiscard]] Edge end_of(const PieceNode& leaf, std::uint32_t index) noexcept {
    const std::uint64_t size = leaf.unitsTo(index) - leaf.unitsBefore(index);
    return {&leaf.store(index), leaf.place(index).begin + static_cast<std::uint32_t>(size)};
}

/// The entries from `first` to `last` go, others come.
struct EntryChange {
    std::uint32_t first = 0;
    std::uint32_t last = 0;
    std::span<const NodeEntry> entries;
};

/// What an edit does to a leaf: some pieces go, others come.
class Change {
  public:
    /// Finds out what the replacement of the units in [begin, end), offsets in the leaf, is. Throws
    /// std::bad_alloc.
    Change(const PieceNode& leaf, std::uint64_t begin, std::uint64_t end, const Piece* piece)
        : first_(leaf.indexOf(begin)), last_(first_) {
        Piece before; // the rests of the pieces that are cut
        Piece behind;
        if (begin < end) {
            remove(leaf, begin, end, before, behind);
        } else if (const std::uint64_t front = leaf.unitsBefore(first_);
                   front < begin && first_ < leaf.count()) {
            before = leaf.piece(last_++);
            behind = before.cut(before.begin() + static_cast<std::uint32_t>(begin - front));
        }
        // Neighbours that meet what comes.
        const Edge next = piece != nullptr ? begin_of(*piece)
                          : behind.store   ? begin_of(behind)
                                           : begin_of(leaf, last_);
        if (!before.store && first_ > 0 && end_of(leaf, first_ - 1).meets(next))
            before = leaf.piece(--first_);
        const Edge front = piece != nullptr ? end_of(*piece) : before.store ? end_of(before) : Edge{};
        if (!behind.store && front.meets(begin_of(leaf, last_)))
            behind = leaf.piece(last_++);
        if (before.store)
            add(std::move(before));
        if (piece != nullptr)
            add(*piece);
        if (behind.store)
            add(std::move(behind));
    }

    /// The number of pieces that a leaf has behind the change.
    [[nodiscard]] std::uint32_t count(const PieceNode& leaf) const noexcept {
        return leaf.count() - (last_ - first_) + freshCount_;
    }
    /// Takes the references of the pieces that come and lets those go that they replace; valid as long as
    /// this.
    [[nodiscard]] EntryChange make(const PieceNode& leaf) noexcept {
        for (std::uint32_t i = 0; i < freshCount_; ++i) {
            entries_[i] = NodeEntry(fresh_[i]);
            static_cast<void>(fresh_[i].store.detach());
        }
        for (std::uint32_t i = first_; i < last_; ++i)
            leaf.store(i).release();
        return {first_, last_, std::span(entries_).first(freshCount_)};
    }
    [[nodiscard]] NodeRef takeRemoved() noexcept { return std::move(removed_); }

  private:
    void remove(const PieceNode& leaf, std::uint64_t begin, std::uint64_t end, Piece& before, Piece& behind) {
        last_ = leaf.indexOf(end - 1) + 1;
        const bool isOne = last_ - first_ == 1;
        Piece head = leaf.piece(first_);
        Piece tail = isOne ? Piece() : leaf.piece(last_ - 1);
        Piece& ending = isOne ? head : tail;
        if (end < leaf.unitsTo(last_ - 1))
            behind =
                ending.cut(ending.begin() + static_cast<std::uint32_t>(end - leaf.unitsBefore(last_ - 1)));
        if (const std::uint64_t front = leaf.unitsBefore(first_); front < begin) {
            Piece rest = head.cut(head.begin() + static_cast<std::uint32_t>(begin - front));
            before = std::exchange(head, std::move(rest));
        }
        EntryRow row;
        row.add(NodeEntry(head));
        if (!isOne) {
            row.add(leaf, first_ + 1, last_ - 1);
            row.add(NodeEntry(tail));
        }
        removed_ = PieceNode::make(1, row.all());
    }
    void add(Piece piece) noexcept {
        if (freshCount_ > 0 && fresh_[freshCount_ - 1].continues(piece))
            fresh_[freshCount_ - 1].append(piece);
        else
            fresh_[freshCount_++] = std::move(piece);
    }

    std::uint32_t first_; ///< the pieces from here
    std::uint32_t last_;  ///< to here go
    std::array<Piece, kMostFresh> fresh_;
    std::array<NodeEntry, kMostFresh> entries_;
    std::uint32_t freshCount_ = 0;
    NodeRef removed_;
};

/// Makes a change in nodes that are the tree's own.
class Rebuilding {
  public:
    /// Takes all memory. Throws std::bad_alloc.
    Rebuilding(NodeRef& root, Way& way, std::uint32_t leafCount) : root_(root), way_(way) {
        own(root, way);
        std::uint32_t level = way.leaf;
        if (leafCount > PieceNode::kMost) {
            spares_.emplace();
            spares_->nodes[level] = PieceNode::create(1);
            for (; level > 0 && way.nodes[level - 1]->count() == PieceNode::kMost; --level)
                spares_->nodes[level - 1] = PieceNode::create(way.nodes[level - 1]->height());
            if (level == 0)
                spares_->root = PieceNode::create(root->height() + 1);
        }
        for (std::uint32_t count = leafCount; level > 0 && count < PieceNode::kLeast; --level) {
            PieceNode& parent = *way.nodes[level - 1];
            const std::uint32_t index = way.indices[level - 1];
            const std::uint32_t left = left_of_two(parent, index);
            own(parent, left == index ? index + 1 : left);
            count = parent.count() - 1;
        }
    }
    /// Gives the leaf its pieces, and the nodes above what follows.
    void make(Change& change) noexcept {
        bool isDivided = put(way_.leaf, change.make(*way_.nodes[way_.leaf]));
        for (std::uint32_t level = way_.leaf; level > 0; --level) {
            PieceNode& node = *way_.nodes[level];
            PieceNode& parent = *way_.nodes[level - 1];
            const std::uint32_t index = way_.indices[level - 1];
            if (isDivided)
                isDivided = put(level - 1, {index, index + 1, halves(node, level)});
            else if (node.count() < PieceNode::kLeast)
                merge(parent, left_of_two(parent, index));
            else
                parent.setSum(index, node.sum());
        }
        settleRoot(isDivided);
    }

  private:
    /// Changes a node, whose spare gets the second half of too many entries; returns whether it did.
    [[nodiscard]] bool put(std::uint32_t level, const EntryChange& change) noexcept {
        PieceNode& node = *way_.nodes[level];
        if (node.count() - (change.last - change.first) + change.entries.size() <= PieceNode::kMost) {
            node.splice(change.first, change.last, change.entries);
            return false;
        }
        EntryRow row;
        row.add(node, 0, change.first);
        for (const NodeEntry& entry : change.entries)
            row.add(entry);
        row.add(node, change.last, node.count());
        row.divide(node, *spares_->nodes[level].get(), row.count() / 2);
        return true;
    }
    /// The entries of a node and of its second half, whose reference goes with it. Valid until the next call.
    [[nodiscard]] std::span<const NodeEntry> halves(PieceNode& node, std::uint32_t level) noexcept {
        spares_->halves = {NodeEntry(node), NodeEntry(*spares_->nodes[level].detach())};
        return spares_->halves;
    }
    /// Makes one of two nodes, or divides their entries between them.
    static void merge(PieceNode& parent, std::uint32_t left) noexcept {
        PieceNode& first = *parent.node(left);
        PieceNode& second = *parent.node(left + 1);
        EntryRow row;
        row.add(first);
        row.add(second);
        if (row.count() > PieceNode::kMost) {
            row.divide(first, second, row.count() / 2);
            parent.setSum(left, first.sum());
            parent.setSum(left + 1, second.sum());
        } else {
            first.fill(row.all());
            second.fill({});
            second.release();
            const NodeEntry both(first);
            parent.splice(left, left + 2, {&both, 1});
        }
    }
    void settleRoot(bool isDivided) noexcept {
        if (isDivided) {
            spares_->root->fill(halves(*root_.detach(), 0));
            root_ = std::move(spares_->root);
        }
        while (!root_->isLeaf() && root_->count() == 1) {
            NodeRef only(root_->node(0));
            root_->fill({});
            root_ = std::move(only);
        }
        if (root_->count() == 0)
            root_ = NodeRef();
    }

    /// What nodes are divided with.
    struct Spares {
        std::array<NodeRef, PieceNode::kMostHeight> nodes; ///< the second halves
        NodeRef root;
        std::array<NodeEntry, 2> halves;
    };

    NodeRef& root_;
    Way& way_;
    std::optional<Spares> spares_;
};

/// Moves pieces from one leaf to the next or back, so that the units from `begin` to `end`, offsets in the
/// leaf of the way that go on behind it, are in one leaf; returns whether it did. Throws std::bad_alloc;
/// nothing that can be seen has changed in any case.
[[nodiscard]] bool gather(NodeRef& root, Way& way, std::uint64_t begin, std::uint64_t end) {
    if (way.leaf == 0)
        return false;
    const std::uint32_t index = way.indices[way.leaf - 1];
    PieceNode& parent = *way.nodes[way.leaf - 1];
    const std::uint64_t size = way.nodes[way.leaf]->sum().units;
    if (index + 1 == parent.count() || end > size + parent.node(index + 1)->sum().units)
        return false;
    const std::uint32_t leftCount = way.nodes[way.leaf]->count();
    const std::uint32_t count = leftCount + parent.node(index + 1)->count();
    // The leaves part in front of the first of the pieces or behind the last.
    const std::uint32_t first = way.nodes[way.leaf]->indexOf(begin);
    const std::uint32_t last = leftCount + parent.node(index + 1)->indexOf(end - size - 1) + 1;
    const auto fits = [count](std::uint32_t middle) {
        return middle >= PieceNode::kLeast && middle <= PieceNode::kMost &&
               count - middle >= PieceNode::kLeast && count - middle <= PieceNode::kMost;
    };
    if (!fits(first) && !fits(last))
        return false;
    own(root, way);
    PieceNode& above = *way.nodes[way.leaf - 1];
    own(above, index + 1);
    PieceNode& left = *above.node(index);
    PieceNode& right = *above.node(index + 1);
    EntryRow row;
    row.add(left);
    row.add(right);
    row.divide(left, right, fits(first) ? first : last);
    above.setSum(index, left.sum());
    above.setSum(index + 1, right.sum());
    return true;
}

} // namespace

LeafEdit replace_in_leaf(NodeRef& root, std::uint64_t offset, std::uint64_t count, const Piece* piece) {
    // What is inserted between two leaves goes to the first one, whose last piece it may continue.
    Way way(root, count == 0 && offset > 0 ? offset - 1 : offset);
    const PieceNode& leaf = *way.nodes[way.leaf];
    const std::uint64_t begin = offset - way.begin;
    if (begin + count > leaf.sum().units)
        return gather(root, way, begin, begin + count) ? replace_in_leaf(root, offset, count, piece)
                                                       : LeafEdit{};
    Change change(leaf, begin, begin + count, piece);
    Rebuilding(root, way, change.count(leaf)).make(change);
    return {true, change.takeRemoved()};
}

std::optional<Piece> own_piece_before(const NodeRef& root, std::uint64_t offset) noexcept {
    if (!root)
        return std::nullopt;
    const Way way(root, offset - 1);
    const PieceNode& leaf = *way.nodes[way.leaf];
    const std::uint32_t index = leaf.indexOf(offset - 1 - way.begin);
    if (!way.isOwn() || leaf.unitsTo(index) != offset - way.begin)
        return std::nullopt;
    return leaf.piece(index);
}

void settle(const NodeRef& root, std::uint64_t begin, const Piece& piece) noexcept {
    const Way way(root, begin);
    PieceNode& leaf = *way.nodes[way.leaf];
    leaf.setSum(leaf.indexOf(begin - way.begin), piece.sum());
    way.settleAbove(way.leaf);
}

} // namespace core::detail
