// SPDX-License-Identifier: Apache-2.0
#include "core/documents/piece_search.h"

namespace core::detail {
namespace {

/// The node at an index. What a leaf has is fetched all at once: in a text that was edited long, no cache
/// holds it.
const PieceNode* child(const PieceNode& node, std::uint32_t index) noexcept {
    const PieceNode* const next = node.node(index);
    if (node.height() == 2)
        next->prefetch();
    return next;
}

} // namespace

UnitRun run_at(const PieceNode* root, std::uint64_t offset) noexcept {
    if (root == nullptr || offset >= root->sum().units)
        return {{}, offset};
    std::uint64_t left = offset;
    for (const PieceNode* node = root;;) {
        const std::uint32_t index = node->indexOf(left);
        left -= node->unitsBefore(index);
        if (node->isLeaf())
            return {node->text(index), offset - left};
        node = child(*node, index);
    }
}

std::uint64_t line_of(const PieceNode* root, std::uint64_t offset) noexcept {
    std::uint64_t ends = 0;
    bool behindCr = false; // whether the unit in front of the node is CR
    const PieceNode* node = root;
    std::uint32_t index = 0;
    for (;;) {
        index = node->indexOf(offset);
        offset -= node->unitsBefore(index);
        if (index > 0) {
            ends += node->endsBefore(index) - (behindCr && node->beginsLf(0) ? 1 : 0);
            behindCr = node->endsCr(index - 1);
        }
        if (node->isLeaf())
            break;
        node = child(*node, index);
    }
    const bool divided = behindCr && node->beginsLf(index); // this LF ends what the CR began
    if (offset == 0)
        return ends - (divided ? 1 : 0);
    const UnitStore& store = node->store(index);
    const PiecePlace place = node->place(index);
    const std::uint32_t at = place.begin + static_cast<std::uint32_t>(offset);
    ends += store.endsBefore(at) - place.rank;
    // The store knows the units in front of the piece, which the text does not have there.
    if (node->beginsLf(index) && store.dividesEnd(place.begin))
        ++ends;
    return ends - (divided ? 1 : 0) - (store.dividesEnd(at) ? 1 : 0);
}

FoundEnd find_end(const PieceNode* root, std::uint64_t line) noexcept {
    std::uint64_t begin = 0;
    bool behindCr = false;
    const PieceNode* node = root;
    std::uint32_t index = 0;
    for (;;) {
        const std::uint64_t number = line + (behindCr && node->beginsLf(0) ? 1 : 0);
        index = node->indexOfEnd(number);
        if (index > 0) {
            line = number - node->endsBefore(index);
            behindCr = node->endsCr(index - 1);
        }
        begin += node->unitsBefore(index);
        if (node->isLeaf())
            break;
        node = child(*node, index);
    }
    const UnitStore& store = node->store(index);
    const PiecePlace place = node->place(index);
    const UnitSum sum = node->sumOf(index);
    const std::uint32_t behind = place.begin + static_cast<std::uint32_t>(sum.units);
    auto number = static_cast<std::uint32_t>(line) + (behindCr && sum.beginsLf ? 1 : 0);
    std::uint32_t at = place.begin;
    // An LF that ends a line at the beginning of the piece, and in the store the CR in front of it does.
    const std::uint32_t divided = sum.beginsLf && store.dividesEnd(at) ? 1 : 0;
    if (number >= divided)
        at =
            store.findEnd(at, behind, place.rank, place.rank + static_cast<std::uint32_t>(sum.ends) - divided,
                          place.rank + number - divided);
    const std::uint64_t offset = begin + (at - place.begin);
    if (!store.hasCr() || !store.isCr(at))
        return {offset, 1};
    const bool isLast = at + 1 == behind;
    const wstring_view next =
        isLast ? run_at(root, offset + 1).text : wstring_view(store.units() + at + 1, 1);
    return {offset, !next.empty() && next.front() == u'\n' ? 2U : 1U};
}

} // namespace core::detail
