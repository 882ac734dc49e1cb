// SPDX-License-Identifier: Apache-2.0
#include "core/documents/mark_tree.h"

// Differences of offsets are unsigned and wrap around, so that the same addition moves forwards and back.
namespace core::detail {

std::uint32_t MarkTree::add(std::uint64_t offset) {
    std::uint32_t mark = free_;
    if (mark == kNone) {
        nodes_.emplace_back();
        mark = static_cast<std::uint32_t>(nodes_.size() - 1);
    } else {
        free_ = nodes_[mark].right;
    }
    Node& node = nodes_[mark];
    node.used = true;
    ++node.generation;
    random_ ^= random_ << 13;
    random_ ^= random_ >> 17;
    random_ ^= random_ << 5;
    node.priority = random_;
    link(mark, offset);
    ++size_;
    return mark;
}

void MarkTree::remove(std::uint32_t mark) noexcept {
    unlink(mark);
    nodes_[mark].used = false;
    nodes_[mark].right = free_;
    free_ = mark;
    --size_;
}

void MarkTree::move(std::uint32_t mark, std::uint64_t offset) noexcept {
    unlink(mark);
    link(mark, offset);
}

std::uint64_t MarkTree::offset(std::uint32_t mark) const noexcept {
    std::uint64_t offset = nodes_[mark].before + nodes_[mark].gap;
    for (std::uint32_t node = mark; nodes_[node].parent != kNone; node = nodes_[node].parent) {
        const Node& parent = nodes_[nodes_[node].parent];
        if (parent.right == node)
            offset += parent.before + parent.gap;
    }
    return offset;
}

std::uint32_t MarkTree::firstFrom(std::uint64_t offset, bool behind) const noexcept {
    std::uint64_t before = 0;
    std::uint32_t found = kNone;
    for (std::uint32_t at = root_; at != kNone;) {
        const Node& node = nodes_[at];
        const std::uint64_t own = before + node.before + node.gap;
        if (behind ? own > offset : own >= offset) {
            found = at;
            at = node.left;
        } else {
            before = own;
            at = node.right;
        }
    }
    return found;
}

std::uint32_t MarkTree::next(std::uint32_t mark) const noexcept {
    if (std::uint32_t node = nodes_[mark].right; node != kNone) {
        while (nodes_[node].left != kNone)
            node = nodes_[node].left;
        return node;
    }
    std::uint32_t node = mark;
    while (nodes_[node].parent != kNone && nodes_[nodes_[node].parent].right == node)
        node = nodes_[node].parent;
    return nodes_[node].parent;
}

void MarkTree::insertUnits(std::uint64_t offset, std::uint64_t count, bool behind) noexcept {
    if (const std::uint32_t first = firstFrom(offset, behind); first != kNone)
        addGap(first, count);
}

void MarkTree::removeUnits(std::uint64_t begin, std::uint64_t end) noexcept {
    std::uint32_t mark = firstFrom(begin, true);
    if (mark == kNone)
        return;
    std::uint64_t old = offset(mark); // where the mark stood
    std::uint64_t taken = begin;      // up to where the removed units have been taken from the gaps
    while (old < end) {
        addGap(mark, taken - old);
        taken = old;
        mark = next(mark);
        if (mark == kNone)
            return;
        old += nodes_[mark].gap;
    }
    addGap(mark, taken - end);
}

void MarkTree::collapse() noexcept {
    for (Node& node : nodes_) {
        node.gap = 0;
        node.before = 0;
    }
}

void MarkTree::addGap(std::uint32_t node, std::uint64_t difference) noexcept {
    nodes_[node].gap += difference;
    for (std::uint32_t above = nodes_[node].parent; above != kNone; above = nodes_[node].parent) {
        if (nodes_[above].left == node)
            nodes_[above].before += difference;
        node = above;
    }
}

void MarkTree::replaceChild(std::uint32_t parent, std::uint32_t child, std::uint32_t by) noexcept {
    if (parent == kNone)
        root_ = by;
    else if (nodes_[parent].left == child)
        nodes_[parent].left = by;
    else
        nodes_[parent].right = by;
    if (by != kNone)
        nodes_[by].parent = parent;
}

/// Turns a node and its parent, so that the node is above.
void MarkTree::lift(std::uint32_t node) noexcept {
    const std::uint32_t parent = nodes_[node].parent;
    replaceChild(nodes_[parent].parent, parent, node);
    const bool wasLeft = nodes_[parent].left == node;
    std::uint32_t& inner = wasLeft ? nodes_[node].right : nodes_[node].left;
    (wasLeft ? nodes_[parent].left : nodes_[parent].right) = inner;
    if (inner != kNone)
        nodes_[inner].parent = parent;
    inner = parent;
    nodes_[parent].parent = node;
    if (wasLeft)
        nodes_[parent].before -= nodes_[node].before + nodes_[node].gap;
    else
        nodes_[node].before += nodes_[parent].before + nodes_[parent].gap;
}

/// Puts a node behind all marks that do not stand behind `offset`.
void MarkTree::link(std::uint32_t mark, std::uint64_t offset) noexcept {
    std::uint64_t before = 0; // offset of the mark in front
    std::uint32_t behind = kNone;
    std::uint32_t parent = kNone;
    bool left = false;
    for (std::uint32_t at = root_; at != kNone;) {
        const Node& node = nodes_[at];
        const std::uint64_t own = before + node.before + node.gap;
        parent = at;
        left = own > offset;
        if (left)
            behind = at;
        else
            before = own;
        at = left ? node.left : node.right;
    }
    Node& node = nodes_[mark];
    node.left = node.right = kNone;
    node.parent = parent;
    node.gap = node.before = 0;
    if (parent == kNone)
        root_ = mark;
    else
        (left ? nodes_[parent].left : nodes_[parent].right) = mark;
    const std::uint64_t gap = offset - before;
    addGap(mark, gap);
    if (behind != kNone)
        addGap(behind, std::uint64_t{0} - gap);
    while (nodes_[mark].parent != kNone && nodes_[nodes_[mark].parent].priority < nodes_[mark].priority)
        lift(mark);
}

/// Takes a node out; the marks behind it stay where they are.
void MarkTree::unlink(std::uint32_t mark) noexcept {
    const std::uint64_t gap = nodes_[mark].gap;
    if (const std::uint32_t behind = next(mark); behind != kNone)
        addGap(behind, gap);
    addGap(mark, std::uint64_t{0} - gap);
    while (nodes_[mark].left != kNone && nodes_[mark].right != kNone) {
        const std::uint32_t left = nodes_[mark].left;
        const std::uint32_t right = nodes_[mark].right;
        lift(nodes_[left].priority > nodes_[right].priority ? left : right);
    }
    const std::uint32_t child = nodes_[mark].left != kNone ? nodes_[mark].left : nodes_[mark].right;
    replaceChild(nodes_[mark].parent, mark, child);
}

} // namespace core::detail
