// SPDX-License-Identifier: Apache-2.0
#include "core/documents/piece_node.h"

#include <array>
#include <cstring>
#include <new>

namespace core::detail {
namespace {

constexpr std::uint64_t kNoSum = ~std::uint64_t{0};

/// The bits below an index, which is less than 32.
[[nodiscard]] std::uint32_t below(std::uint32_t bits, std::uint32_t index) noexcept {
    return bits & ((std::uint32_t{1} << index) - 1);
}

} // namespace

NodeRef PieceNode::create(std::uint32_t height, std::uint32_t capacity) {
    constexpr std::size_t kInner = sizeof(Sums) + sizeof(Target);
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

PieceNode::PieceNode(std::uint32_t height, std::uint32_t capacity) noexcept
    : height_(static_cast<std::uint8_t>(height)), capacity_(static_cast<std::uint8_t>(capacity)) {
    for (std::uint32_t i = 0; i < capacity; ++i)
        sums()[i] = {kNoSum, kNoSum};
}

void PieceNode::destroy() const noexcept {
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

void PieceNode::splice(std::uint32_t first, std::uint32_t last, std::span<const NodeEntry> entries) noexcept {
    const std::uint32_t tail = count_ - last;
    const auto next = first + static_cast<std::uint32_t>(entries.size()); // where the tail goes
    const bool hasTail = tail > 0;
    const Sums old{unitsBefore(last), endsBefore(last) - (hasTail && dividesEnd(last) ? 1 : 0)};
    if (next != last) {
        std::memmove(sums() + next, sums() + last, tail * sizeof(Sums));
        std::memmove(targets() + next, targets() + last, tail * sizeof(Target));
        if (isLeaf())
            std::memmove(places() + next, places() + last, tail * sizeof(PiecePlace));
        for (std::uint32_t i = next + tail; i < count_; ++i)
            sums()[i] = {kNoSum, kNoSum};
        count_ = static_cast<std::uint16_t>(next + tail);
    }
    beginsLf_ = below(beginsLf_, first) | (hasTail ? beginsLf_ >> last << next : 0);
    endsCr_ = below(endsCr_, first) | (hasTail ? endsCr_ >> last << next : 0);
    Sums all{unitsBefore(first), endsBefore(first)};
    for (std::uint32_t i = first; i < next; ++i) {
        const NodeEntry& entry = entries[i - first];
        beginsLf_ |= std::uint32_t{entry.sum.beginsLf} << i;
        endsCr_ |= std::uint32_t{entry.sum.endsCr} << i;
        all.units += entry.sum.units;
        all.ends += entry.sum.ends - (dividesEnd(i) ? 1 : 0);
        sums()[i] = all;
        targets()[i] = entry.target;
        if (isLeaf())
            places()[i] = entry.place;
    }
    if (hasTail)
        addFrom(next, {all.units - old.units, all.ends - old.ends - (dividesEnd(next) ? 1 : 0)});
}

void PieceNode::setSum(std::uint32_t index, const UnitSum& sum) noexcept {
    const UnitSum old = sumOf(index);
    Sums more{sum.units - old.units, sum.ends - old.ends}; // wraps around
    if (sum.beginsLf == old.beginsLf && sum.endsCr == old.endsCr) {
        addFrom(index, more);
        return;
    }
    // What the entry adds, and then what the next one does, changes with what they begin and end with.
    const bool hasNext = index + 1U < count_;
    const std::uint64_t own = dividesEnd(index) ? 1 : 0;
    const std::uint64_t next = hasNext && dividesEnd(index + 1) ? 1 : 0;
    const std::uint32_t bit = std::uint32_t{1} << index;
    beginsLf_ = sum.beginsLf ? beginsLf_ | bit : beginsLf_ & ~bit;
    endsCr_ = sum.endsCr ? endsCr_ | bit : endsCr_ & ~bit;
    more.ends += own - (dividesEnd(index) ? 1 : 0);
    addFrom(index, more);
    addFrom(index + 1, {0, next - (hasNext && dividesEnd(index + 1) ? 1 : 0)});
}

void PieceNode::addFrom(std::uint32_t index, Sums more) noexcept {
    for (std::uint32_t i = index; i < count_; ++i) {
        sums()[i].units += more.units;
        sums()[i].ends += more.ends;
    }
}

} // namespace core::detail
