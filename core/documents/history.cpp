// SPDX-License-Identifier: Apache-2.0
#include "core/documents/history.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <utility>

namespace core::detail {

void History::reserve(std::size_t count) {
    if (spare_.empty())
        spare_.emplace_back();
    if (grouped_) {
        Edits& edits = undo_.back().edits;
        if (edits.capacity() - edits.size() < count)
            edits.reserve(std::max(edits.size() + count, edits.capacity() * 2));
    }
}

bool History::joinsTyping(std::uint64_t offset) const noexcept {
    if (!open_ || depth_ > 0 || undo_.empty() || undo_.back().kind != EditKind::typing)
        return false;
    const Edit& last = undo_.back().edits.front();
    return last.offset + last.count == offset;
}

void History::extendTyping(std::uint64_t count) noexcept {
    undo_.back().edits.front().count += count;
}

bool History::extendErasing(std::uint64_t offset, const Piece& units) noexcept {
    if (!open_ || depth_ > 0 || undo_.empty() || undo_.back().kind != EditKind::erasing)
        return false;
    Edit& last = undo_.back().edits.front();
    if (last.offset != offset || !last.text.growFront(units))
        return false;
    last.offset -= units.size();
    return true;
}

/// Adds a step to the last one when both are one to a person who types. The two edits become one, in the text
/// as it was in front of both: marks that the later edit has moved stood behind what the earlier one removes.
bool History::join(EditStep& step) {
    if (!open_ || undo_.empty() || step.edits.size() != 1 || undo_.back().kind != step.kind)
        return false;
    Edit& last = undo_.back().edits.front();
    Edit& edit = step.edits.front();
    if (step.kind == EditKind::typing) {
        if (last.offset + last.count != edit.offset)
            return false;
        last.count += edit.count;
        return true;
    }
    if (step.kind != EditKind::erasing)
        return false;
    const bool back = edit.offset + edit.text.size() == last.offset;
    if (!back && edit.offset != last.offset)
        return false;
    PieceTree text = back ? edit.text.followedBy(last.text) : last.text.followedBy(edit.text);
    std::vector<SavedMark> marks = edit.marks;
    for (SavedMark& mark : marks)
        mark.offset += back ? 0 : last.text.size();
    marks.insert(marks.end(), last.marks.begin(), last.marks.end()); // the earlier places hold
    last.offset = edit.offset;
    last.text = std::move(text);
    last.marks = std::move(marks);
    return true;
}

void History::add(EditStep&& step) noexcept { // NOLINT(bugprone-exception-escape)
    redo_.clear();
    if (grouped_) {
        Edits& edits = undo_.back().edits;
        std::move(step.edits.begin(), step.edits.end(), std::back_inserter(edits)); // reserved
        undo_.back().disjoint = false;
        return;
    }
    if (depth_ == 0) {
        try {
            if (join(step))
                return;
        } catch (const std::bad_alloc&) { // a step of its own needs no memory
        }
    }
    step.serial = ++serial_;
    open_ = depth_ == 0 && step.kind != EditKind::other;
    grouped_ = depth_ > 0;
    spare_.back() = std::move(step);
    undo_.splice(undo_.end(), spare_);
    trim();
}

void History::undone(Edits&& inverse) noexcept { // NOLINT(bugprone-exception-escape)
    undo_.back().edits = std::move(inverse);
    redo_.splice(redo_.end(), undo_, std::prev(undo_.end()));
    open_ = false;
}

void History::redone(Edits&& inverse) noexcept { // NOLINT(bugprone-exception-escape)
    redo_.back().edits = std::move(inverse);
    undo_.splice(undo_.end(), redo_, std::prev(redo_.end()));
    open_ = false;
}

void History::beginGroup() noexcept {
    ++depth_;
    open_ = false;
}

void History::endGroup() noexcept {
    if (--depth_ == 0) {
        grouped_ = false;
        trim();
    }
}

void History::setLimit(std::size_t limit) noexcept {
    limit_ = limit;
    trim();
}

void History::trim() noexcept {
    while (undo_.size() > limit_ && !grouped_) {
        base_ = undo_.front().serial;
        undo_.pop_front();
    }
}

void History::clear() noexcept {
    const bool modified = isModified();
    undo_.clear();
    redo_.clear();
    open_ = false;
    base_ = ++serial_;
    saved_ = modified ? std::nullopt : std::optional(base_);
}

void History::markSaved() noexcept {
    saved_ = state();
    open_ = false;
}

} // namespace core::detail
