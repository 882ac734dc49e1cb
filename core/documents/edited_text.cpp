// SPDX-License-Identifier: Apache-2.0
#include "core/documents/edited_text.h"

#include <algorithm>
#include <utility>

namespace core::detail {
namespace {

constexpr std::uint32_t kFirstTail = 512;
constexpr std::uint32_t kMostTail = 64 << 10;
constexpr std::size_t kMany = 32; ///< disjoint edits from which on one walk over all pieces is worth it

[[nodiscard]] const Edit& edit_at(const EditStep& step, bool backwards, std::size_t index) noexcept {
    return step.edits[backwards ? step.edits.size() - 1 - index : index];
}

} // namespace

Piece EditedText::storeShort(wstring_view text) {
    const auto count = static_cast<std::uint32_t>(text.size());
    if (!tail_ || tail_->room() < count) {
        const std::uint32_t grown = tail_ ? std::min(tail_->capacity() * 2, kMostTail) : kFirstTail;
        tail_ = StoreRef(UnitStore::create(std::max(grown, count), unicodeEnds_));
    }
    const std::uint32_t begin = tail_->append(text);
    return {tail_, begin, begin + count};
}

PieceTree EditedText::store(wstring_view text) {
    std::vector<Piece> pieces;
    if (!text.empty() && text.size() <= kShort) {
        const Piece piece = storeShort(text);
        return PieceTree(std::span(&piece, 1));
    }
    while (!text.empty()) {
        const wstring_view part = text.substr(0, UnitStore::kMost);
        const auto count = static_cast<std::uint32_t>(part.size());
        StoreRef own(UnitStore::create(count, unicodeEnds_));
        own->append(part);
        pieces.emplace_back(std::move(own), 0, count);
        text.remove_prefix(part.size());
    }
    return PieceTree(pieces);
}

bool EditedText::canType(std::uint64_t offset, std::size_t count) noexcept {
    if (offset != insertedTo_ || !tail_ || tail_->room() < count)
        return false;
    const Piece* const piece = tree_.open(offset);
    return piece != nullptr && piece->store.get() == tail_.get() && piece->end == tail_->size();
}

void EditedText::type(std::uint64_t offset, wstring_view units) noexcept {
    tail_->append(units);
    tree_.grow(static_cast<std::uint32_t>(units.size()));
    marks_.replaceUnits(offset, 0, units.size());
    insertedTo_ = offset + units.size();
}

std::optional<Piece> EditedText::canUntype(TextRange range) noexcept {
    if (marks_.size() != 0)
        return std::nullopt;
    const Piece* const piece = tree_.open(range.end);
    if (piece == nullptr || piece->size() <= range.size())
        return std::nullopt;
    return Piece(piece->store, piece->end - static_cast<std::uint32_t>(range.size()), piece->end);
}

PieceTree EditedText::replaceEach(const EditStep& step, bool backwards, Edits& inverse) {
    PieceTree text = tree();
    for (std::size_t i = 0; i < step.edits.size(); ++i) {
        const Edit& edit = edit_at(step, backwards, i);
        inverse.push_back(
            {edit.offset, edit.text.size(), text.replace(edit.offset, edit.count, edit.text), {}});
    }
    return text;
}

/// The same for many disjoint edits: each offset is that in the text as the edits before it have left it, so
/// that rising offsets are moved back to the text as it is now, and falling ones are as they are.
PieceTree EditedText::replaceTogether(const EditStep& step, bool backwards, Edits& inverse) {
    const std::size_t count = step.edits.size();
    const bool rises = edit_at(step, backwards, 0).offset < edit_at(step, backwards, count - 1).offset;
    const PieceTree& text = tree();
    std::vector<Splice> splices;
    splices.reserve(count);
    std::uint64_t longer = 0; // by how much the edits before have made the text longer; wraps around
    for (std::size_t i = 0; i < count; ++i) {
        const Edit& edit = edit_at(step, backwards, i);
        const std::uint64_t offset = rises ? edit.offset - longer : edit.offset;
        inverse.push_back({edit.offset, edit.text.size(), text.part(offset, edit.count), {}});
        splices.push_back({offset, edit.count, edit.text});
        longer += edit.text.size() - edit.count;
    }
    if (!rises)
        std::reverse(splices.begin(), splices.end());
    return text.replaced(splices);
}

Edits EditedText::applyOne(const Edit& edit) {
    Edits inverse(1);
    Edit& back = inverse.front();
    back.offset = edit.offset;
    back.count = edit.text.size();
    back.marks = marks_.save(edit.offset, edit.offset + edit.count);
    back.text = tree_.replace(edit.offset, edit.count, edit.text);
    marks_.replaceUnits(edit.offset, edit.count, edit.text.size());
    marks_.restore(edit.marks);
    insertedTo_ = edit.offset + edit.text.size();
    return inverse;
}

Edits EditedText::apply(const EditStep& step, bool backwards) {
    const std::size_t count = step.edits.size();
    if (count == 1)
        return applyOne(step.edits.front());
    Edits inverse;
    inverse.reserve(count);
    PieceTree text = step.disjoint && count >= kMany ? replaceTogether(step, backwards, inverse)
                                                     : replaceEach(step, backwards, inverse);
    std::size_t done = 0;
    try {
        for (; done < count; ++done) {
            const Edit& edit = edit_at(step, backwards, done);
            inverse[done].marks = marks_.save(edit.offset, edit.offset + edit.count);
            marks_.replaceUnits(edit.offset, edit.count, edit.text.size());
            marks_.restore(edit.marks);
        }
    } catch (...) {
        while (done-- > 0) {
            const Edit& edit = edit_at(step, backwards, done);
            marks_.replaceUnits(edit.offset, edit.text.size(), edit.count);
            marks_.restore(inverse[done].marks);
        }
        throw;
    }
    tree_.set(std::move(text));
    return inverse;
}

void EditedText::assign(PieceTree text) noexcept {
    tree_.set(std::move(text));
    tail_ = StoreRef();
    marks_.collapse();
}

} // namespace core::detail
