// SPDX-License-Identifier: Apache-2.0
#include "core/documents/mark_tree.h"

#include <algorithm>

namespace core::detail {
namespace {

constexpr std::uint64_t kNowhere = ~std::uint64_t{0};

} // namespace

/// Without a branch to guess: first by eighths, then in one of them.
std::uint32_t MarkTree::Node::countBefore(std::uint64_t place, bool inclusive) const noexcept {
    constexpr std::uint32_t kPart = 8;
    const std::uint64_t limit = inclusive ? place : place - 1; // the last place that counts
    if (!inclusive && place == 0)
        return 0;
    std::uint32_t begin = 0;
    for (std::uint32_t i = kPart - 1; i < kMost - 1; i += kPart)
        begin += at[i] <= limit ? kPart : 0;
    std::uint32_t before = begin;
    for (std::uint32_t i = 0; i < kPart; ++i)
        before += at[begin + i] <= limit ? 1 : 0;
    return before;
}

std::uint32_t MarkTree::Node::indexOf(std::uint32_t entry) const noexcept {
    return static_cast<std::uint32_t>(std::find(entries.begin(), entries.end(), entry) - entries.begin());
}

void MarkTree::Node::moveFrom(std::uint32_t index, std::uint64_t distance) noexcept {
    for (std::uint32_t i = index; i < count; ++i)
        at[i] += distance;
}

void MarkTree::Node::insert(std::uint32_t index, std::uint64_t place, std::uint32_t entry) noexcept {
    std::copy_backward(at.begin() + index, at.begin() + count, at.begin() + count + 1);
    std::copy_backward(entries.begin() + index, entries.begin() + count, entries.begin() + count + 1);
    at[index] = place;
    entries[index] = entry;
    ++count;
}

void MarkTree::Node::erase(std::uint32_t index) noexcept {
    std::copy(at.begin() + index + 1, at.begin() + count, at.begin() + index);
    std::copy(entries.begin() + index + 1, entries.begin() + count, entries.begin() + index);
    at[--count] = kNowhere;
}

std::uint32_t MarkTree::add(std::uint64_t offset) {
    reserve(size_ + 1);
    std::uint32_t mark = freeMark_;
    if (mark == kNone) {
        marks_.emplace_back();
        mark = static_cast<std::uint32_t>(marks_.size() - 1);
    } else {
        freeMark_ = marks_[mark].leaf;
    }
    marks_[mark].used = true;
    ++marks_[mark].generation;
    link(mark, offset);
    ++size_;
    return mark;
}

void MarkTree::remove(std::uint32_t mark) noexcept {
    unlink(mark);
    marks_[mark].used = false;
    marks_[mark].leaf = freeMark_;
    freeMark_ = mark;
    --size_;
}

void MarkTree::move(std::uint32_t mark, std::uint64_t offset) noexcept {
    unlink(mark);
    link(mark, offset);
}

std::uint64_t MarkTree::offset(std::uint32_t mark) const noexcept {
    std::uint32_t entry = mark;
    std::uint64_t offset = 0;
    for (std::uint32_t node = marks_[mark].leaf; node != kNone; node = nodes_[node].parent) {
        offset += nodes_[node].at[nodes_[node].indexOf(entry)];
        entry = node;
    }
    return offset;
}

std::vector<MarkTree::Place> MarkTree::find(std::uint64_t begin, std::uint64_t end, bool behind) const {
    std::vector<Place> found;
    if (root_ != kNone && begin < end)
        findBelow(nodes_[root_], 0, {begin, end}, behind, found);
    return found;
}

void MarkTree::findBelow(const Node& node, std::uint64_t origin, const Removal& range, bool behind,
                         std::vector<Place>& found) const {
    const auto isIn = [&](std::uint64_t at) { return behind ? at <= range.end : at < range.end; };
    std::uint32_t index = origin <= range.begin ? node.countBefore(range.begin - origin, behind) : 0;
    if (!node.isLeaf && index > 0) // the node in front may have some, too
        --index;
    for (; index < node.count && isIn(origin + node.at[index]); ++index) {
        if (node.isLeaf)
            found.push_back({node.entries[index], origin + node.at[index]});
        else
            findBelow(nodes_[node.entries[index]], origin + node.at[index], range, behind, found);
    }
}

void MarkTree::insertUnits(std::uint64_t offset, std::uint64_t count, bool behind) noexcept {
    for (std::uint32_t at = root_; at != kNone;) {
        Node& node = nodes_[at];
        const std::uint32_t staying = node.countBefore(offset, behind);
        if (node.isLeaf) {
            node.moveFrom(staying, count);
            return;
        }
        // The last node that stays may have marks that move; the first one is never behind where it begins.
        const std::uint32_t way = std::max(staying, 1U) - 1;
        node.moveFrom(way + 1, count);
        offset -= node.at[way];
        at = node.entries[way];
        for (std::size_t byte = 0; byte < sizeof(node.at) + 64; byte += 64) // all at once
            __builtin_prefetch(reinterpret_cast<const std::byte*>(&nodes_[at]) + byte);
    }
}

void MarkTree::removeUnits(std::uint64_t begin, std::uint64_t end) noexcept {
    if (root_ != kNone)
        removeBelow(nodes_[root_], 0, {begin, end});
}

/// `origin` is where the node began before.
void MarkTree::removeBelow(Node& node, std::uint64_t origin, const Removal& removal) noexcept {
    const std::uint64_t newOrigin = removal.moved(origin);
    for (std::uint32_t i = 0; i < node.count; ++i) {
        const std::uint64_t old = origin + node.at[i];
        const bool isInFront = i + 1 < node.count && origin + node.at[i + 1] <= removal.begin;
        if (!node.isLeaf && !isInFront && old < removal.end)
            removeBelow(nodes_[node.entries[i]], old, removal);
        node.at[i] = removal.moved(old) - newOrigin;
    }
}

void MarkTree::collapse() noexcept {
    for (Node& node : nodes_)
        std::fill_n(node.at.begin(), node.count, 0);
}

/// Takes the memory for so many marks, however they may come to stand: only the root may have fewer than
/// kLeast.
void MarkTree::reserve(std::size_t marks) {
    const std::size_t most = marks / kLeast + marks / (std::size_t{kLeast} * (kLeast - 1)) + 4;
    if (nodes_.capacity() < most)
        nodes_.reserve(most * 2);
}

std::uint32_t MarkTree::takeNode(bool isLeaf) noexcept {
    std::uint32_t node = freeNode_;
    if (node == kNone) {
        node = static_cast<std::uint32_t>(nodes_.size());
        nodes_.emplace_back(); // reserved
    } else {
        freeNode_ = nodes_[node].parent;
    }
    nodes_[node].parent = kNone;
    nodes_[node].isLeaf = isLeaf;
    nodes_[node].at.fill(kNowhere);
    return node;
}

void MarkTree::freeNode(std::uint32_t node) noexcept {
    nodes_[node].count = 0;
    nodes_[node].parent = freeNode_;
    freeNode_ = node;
}

/// Puts a mark behind all that do not stand behind `offset`.
void MarkTree::link(std::uint32_t mark, std::uint64_t offset) noexcept {
    if (root_ == kNone)
        root_ = takeNode(true);
    std::uint32_t at = root_;
    for (;;) {
        Node& node = nodes_[at];
        if (node.count == kMost) { // full nodes are divided on the way, so that there is room above
            divide(at);
            at = node.parent;
            offset += nodes_[at].at[nodes_[at].indexOf(static_cast<std::uint32_t>(&node - nodes_.data()))];
            continue;
        }
        const std::uint32_t index = node.countBefore(offset, true);
        if (node.isLeaf) {
            node.insert(index, offset, mark);
            marks_[mark].leaf = at;
            return;
        }
        offset -= node.at[index - 1];
        at = node.entries[index - 1];
    }
}

void MarkTree::unlink(std::uint32_t mark) noexcept {
    const std::uint32_t leaf = marks_[mark].leaf;
    nodes_[leaf].erase(nodes_[leaf].indexOf(mark));
    balance(leaf);
}

/// Tells the entries of a node where they are.
void MarkTree::adopt(std::uint32_t node) noexcept {
    const Node& parent = nodes_[node];
    for (std::uint32_t i = 0; i < parent.count; ++i)
        (parent.isLeaf ? marks_[parent.entries[i]].leaf : nodes_[parent.entries[i]].parent) = node;
}

/// Makes two nodes of one. The node above has room.
void MarkTree::divide(std::uint32_t node) noexcept {
    if (nodes_[node].parent == kNone) {
        root_ = takeNode(false);
        nodes_[root_].insert(0, 0, node);
        nodes_[node].parent = root_;
    }
    const std::uint32_t right = takeNode(nodes_[node].isLeaf);
    const std::uint32_t above = nodes_[node].parent;
    Node& parent = nodes_[above];
    const std::uint32_t index = parent.indexOf(node);
    parent.insert(index + 1, parent.at[index], right);
    nodes_[right].parent = above;
    share(node, right, nodes_[node].count / 2);
}

/// Divides the entries of two neighbours, so that the left one has so many of them. The right one begins with
/// its first entry then.
void MarkTree::share(std::uint32_t left, std::uint32_t right, std::uint32_t leftCount) noexcept {
    Node& first = nodes_[left];
    Node& second = nodes_[right];
    Node& parent = nodes_[first.parent];
    const std::uint32_t index = parent.indexOf(left);
    const std::uint64_t distance = parent.at[index + 1] - parent.at[index];
    second.moveFrom(0, distance); // all from the beginning of the left one on
    while (first.count < leftCount) {
        first.insert(first.count, second.at[0], second.entries[0]);
        second.erase(0);
    }
    while (first.count > leftCount) {
        second.insert(0, first.at[first.count - 1], first.entries[first.count - 1]);
        first.erase(first.count - 1);
    }
    const std::uint64_t begin = second.count > 0 ? second.at[0] : distance;
    second.moveFrom(0, std::uint64_t{0} - begin);
    parent.at[index + 1] = parent.at[index] + begin;
    adopt(left);
    adopt(right);
}

/// Merges a node that has lost an entry with a neighbour, or takes some of its entries, if it has too few.
void MarkTree::balance(std::uint32_t node) noexcept {
    if (node == root_) {
        if (nodes_[node].count > (nodes_[node].isLeaf ? 0U : 1U))
            return;
        root_ = nodes_[node].isLeaf ? kNone : nodes_[node].entries[0];
        if (root_ != kNone)
            nodes_[root_].parent = kNone;
        freeNode(node);
        return;
    }
    if (nodes_[node].count >= kLeast)
        return;
    const std::uint32_t above = nodes_[node].parent;
    Node& parent = nodes_[above];
    const std::uint32_t index = parent.indexOf(node);
    const std::uint32_t leftIndex = index + 1 < parent.count ? index : index - 1;
    const std::uint32_t left = parent.entries[leftIndex];
    const std::uint32_t right = parent.entries[leftIndex + 1];
    const std::uint32_t count = nodes_[left].count + nodes_[right].count;
    if (count > kMost) {
        share(left, right, count / 2);
        return;
    }
    share(left, right, count);
    parent.erase(leftIndex + 1);
    freeNode(right);
    balance(above);
}

} // namespace core::detail
