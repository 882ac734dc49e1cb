// SPDX-License-Identifier: Apache-2.0
#include "core/documents/text_manager_impl.h"

#include <core/documents/text_manager.h>

#include <algorithm>

namespace core {

TextMark TextManager::addMark(std::uint64_t offset, MarkGravity gravity) {
    impl_->requireOffset(offset);
    return impl_->text.marks().add(offset, gravity);
}

TextMarkedRange TextManager::addRange(TextRange range, bool grows) {
    impl_->requireRange(range);
    detail::Marks& marks = impl_->text.marks();
    const TextMark begin = marks.add(range.begin, grows ? MarkGravity::left : MarkGravity::right);
    try {
        return {begin, marks.add(range.end, grows ? MarkGravity::right : MarkGravity::left)};
    } catch (...) {
        marks.remove(begin);
        throw;
    }
}

bool TextManager::hasMark(TextMark mark) const noexcept {
    return impl_->text.marks().has(mark);
}

std::uint64_t TextManager::offset(TextMark mark) const {
    impl_->requireMark(mark);
    return impl_->text.marks().offset(mark);
}

TextRange TextManager::range(const TextMarkedRange& range) const {
    const std::uint64_t begin = offset(range.begin);
    // What is inserted into an empty range that does not grow pushes its marks past each other.
    return {begin, std::max(begin, offset(range.end))};
}

void TextManager::moveMark(TextMark mark, std::uint64_t offset) {
    impl_->requireMark(mark);
    impl_->requireOffset(offset);
    impl_->text.marks().move(mark, offset);
}

void TextManager::removeMark(TextMark mark) {
    impl_->requireMark(mark);
    impl_->text.marks().remove(mark);
}

void TextManager::removeRange(const TextMarkedRange& range) {
    impl_->requireMark(range.begin);
    impl_->requireMark(range.end);
    removeMark(range.begin);
    removeMark(range.end);
}

std::size_t TextManager::markCount() const noexcept {
    return impl_->text.marks().size();
}

void TextManager::select(std::span<const TextRange> ranges) {
    for (const TextRange& range : ranges)
        impl_->requireRange(range);
    detail::Marks& marks = impl_->text.marks();
    std::vector<TextMarkedRange> selected;
    selected.reserve(ranges.size());
    try {
        for (const TextRange& range : ranges) {
            // Both go behind what is inserted: a cursor stands behind what it has typed.
            const TextMark begin = marks.add(range.begin, MarkGravity::right);
            selected.push_back({begin, begin});
            selected.back().end = marks.add(range.end, MarkGravity::right);
        }
    } catch (...) {
        for (const TextMarkedRange& range : selected) {
            if (range.end != range.begin)
                marks.remove(range.end);
            marks.remove(range.begin);
        }
        throw;
    }
    impl_->selection.swap(selected);
    for (const TextMarkedRange& range : selected) { // what was selected before
        marks.remove(range.begin);
        marks.remove(range.end);
    }
    closeStep();
}

std::vector<TextRange> TextManager::selection() const {
    std::vector<TextRange> ranges;
    ranges.reserve(impl_->selection.size());
    for (const TextMarkedRange& marked : impl_->selection)
        ranges.push_back(range(marked));
    std::sort(ranges.begin(), ranges.end(), [](const TextRange& a, const TextRange& b) {
        return a.begin != b.begin ? a.begin < b.begin : a.end < b.end;
    });
    std::size_t kept = 0;
    for (const TextRange& range : ranges) {
        // Ranges that only touch stay two; an empty one that touches another is part of it.
        TextRange* const last = kept == 0 ? nullptr : &ranges[kept - 1];
        const bool joins =
            last != nullptr && (range.begin < last->end || range == *last ||
                                (range.begin == last->end && (range.empty() || last->empty())));
        if (joins)
            last->end = std::max(last->end, range.end);
        else
            ranges[kept++] = range;
    }
    ranges.resize(kept);
    return ranges;
}

void TextManager::replaceSelection(wstring_view text) {
    const std::vector<TextRange> ranges = selection();
    if (ranges.size() == 1) { // what is typed at one cursor joins as typing does
        replace(ranges.front(), text);
        return;
    }
    std::vector<TextReplacement> replacements;
    replacements.reserve(ranges.size());
    for (const TextRange& range : ranges)
        replacements.push_back({range, text});
    replace(replacements);
}

} // namespace core
