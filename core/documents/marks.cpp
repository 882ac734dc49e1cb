// SPDX-License-Identifier: Apache-2.0
#include "core/documents/marks.h"

namespace core::detail {

TextMark Marks::add(std::uint64_t offset, MarkGravity gravity) {
    const auto which = static_cast<std::uint32_t>(gravity);
    const std::uint32_t index = trees_[which].add(offset);
    return {index * 2 + which, trees_[which].generation(index)};
}

bool Marks::has(TextMark mark) const noexcept {
    return treeOf(mark).has(mark.number / 2, mark.generation);
}

std::uint64_t Marks::offset(TextMark mark) const noexcept {
    return treeOf(mark).offset(mark.number / 2);
}

void Marks::move(TextMark mark, std::uint64_t offset) noexcept {
    treeOf(mark).move(mark.number / 2, offset);
    treeOf(mark).countMove(mark.number / 2);
}

void Marks::remove(TextMark mark) noexcept {
    treeOf(mark).remove(mark.number / 2);
}

std::vector<SavedMark> Marks::save(std::uint64_t begin, std::uint64_t end) const {
    std::vector<SavedMark> saved;
    for (std::uint32_t which = 0; which < 2; ++which) {
        const MarkTree& tree = trees_[which];
        // Those that stay with the left edge are at home there, those that go to the right edge at that one.
        const bool left = which == static_cast<std::uint32_t>(MarkGravity::left);
        for (const MarkTree::Place& one : tree.find(begin, end, left))
            saved.push_back(
                {{one.mark * 2 + which, tree.generation(one.mark)}, one.offset, tree.moves(one.mark)});
    }
    return saved;
}

void Marks::replaceUnits(std::uint64_t offset, std::uint64_t removed, std::uint64_t inserted) noexcept {
    for (MarkTree& tree : trees_) {
        if (removed != 0)
            tree.removeUnits(offset, offset + removed);
        if (inserted != 0)
            tree.insertUnits(offset, inserted, &tree == &trees_[0]);
    }
}

void Marks::restore(const std::vector<SavedMark>& saved) noexcept {
    for (const SavedMark& one : saved) {
        if (has(one.mark) && treeOf(one.mark).moves(one.mark.number / 2) == one.moves)
            treeOf(one.mark).move(one.mark.number / 2, one.offset);
    }
}

void Marks::collapse() noexcept {
    for (MarkTree& tree : trees_)
        tree.collapse();
}

} // namespace core::detail
