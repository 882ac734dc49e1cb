// SPDX-License-Identifier: Apache-2.0
#include "core/documents/piece_node.h"

#include <array>
#include <new>

namespace core::detail {

NodeRef PieceNode::create(std::uint32_t height, std::uint32_t capacity) {
    constexpr std::size_t kInner = 2 * sizeof(std::uint64_t) + sizeof(Target);
    const std::size_t bytes = capacity * (kInner + (height == 1 ? sizeof(PiecePlace) : 0));
    return NodeRef(new (::operator new(sizeof(PieceNode) + bytes)) PieceNode(height, capacity));
}

NodeRef PieceNode::make(std::uint32_t height, std::span<const NodeEntry> entries) {
    NodeRef made = create(height, height == 1 && entries.size() == 1 ? 1 : kMost);
    for (const NodeEntry& entry : entries) {
        if (height == 1)
            entry.target.store->hold();
        else
            entry.target.node->hold();
    }
    made.get()->fill(entries);
    return made;
}

NodeRef PieceNode::copy() const {
    NodeRef made = create(height_);
    std::array<NodeEntry, kMost> row;
    for (std::uint32_t i = 0; i < count_; ++i) {
        row[i] = entry(i);
        if (isLeaf())
            row[i].target.store->hold();
        else
            row[i].target.node->hold();
    }
    made->fill(std::span(row).first(count_));
    return made;
}

void PieceNode::release() const noexcept {
    if (holders_.fetch_sub(1, std::memory_order_acq_rel) != 1)
        return;
    for (std::uint32_t i = 0; i < count_; ++i) {
        if (isLeaf())
            targets()[i].store->release();
        else
            targets()[i].node->release();
    }
    auto* const self = const_cast<PieceNode*>(this);
    self->~PieceNode();
    ::operator delete(self);
}

void PieceNode::fill(std::span<const NodeEntry> entries) noexcept {
    count_ = static_cast<std::uint16_t>(entries.size());
    beginsLf_ = endsCr_ = 0;
    std::uint64_t units = 0;
    std::uint64_t ends = 0;
    for (std::uint32_t i = 0; i < count_; ++i) {
        const NodeEntry& entry = entries[i];
        beginsLf_ |= std::uint32_t{entry.sum.beginsLf} << i;
        endsCr_ |= std::uint32_t{entry.sum.endsCr} << i;
        this->units()[i] = units += entry.sum.units;
        this->ends()[i] = ends += entry.sum.ends - (dividesEnd(i) ? 1 : 0);
        targets()[i] = entry.target;
        if (isLeaf())
            places()[i] = entry.place;
    }
}

void PieceNode::setSum(std::uint32_t index, const UnitSum& sum) noexcept {
    const UnitSum old = sumOf(index);
    const bool hasNext = index + 1U < count_;
    // What the entry adds, and then what the next one does, changes with what they begin and end with.
    const std::uint64_t own = old.ends - (dividesEnd(index) ? 1 : 0);
    const std::uint64_t next = hasNext && dividesEnd(index + 1) ? 1 : 0;
    const std::uint32_t bit = std::uint32_t{1} << index;
    beginsLf_ = sum.beginsLf ? beginsLf_ | bit : beginsLf_ & ~bit;
    endsCr_ = sum.endsCr ? endsCr_ | bit : endsCr_ & ~bit;
    const std::uint64_t moreUnits = sum.units - old.units; // wraps around
    std::uint64_t moreEnds = sum.ends - (dividesEnd(index) ? 1 : 0) - own;
    units()[index] += moreUnits;
    ends()[index] += moreEnds;
    moreEnds += next - (hasNext && dividesEnd(index + 1) ? 1 : 0);
    for (std::uint32_t i = index + 1; i < count_; ++i) {
        units()[i] += moreUnits;
        ends()[i] += moreEnds;
    }
}

} // namespace core::detail
