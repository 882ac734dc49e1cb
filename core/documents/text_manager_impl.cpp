// SPDX-License-Identifier: Apache-2.0
#include "core/documents/text_manager_impl.h"

#include "core/documents/piece_search.h"

#include <core/documents/errors.h>
#include <core/strings/integer_text.h>

#include <algorithm>
#include <optional>
#include <utility>

namespace core {

using detail::Edit;
using detail::EditKind;
using detail::Edits;
using detail::EditStep;
using detail::PieceTree;

namespace {

/// Whether units are one character that ends no line, as far as a keyboard is concerned.
[[nodiscard]] bool is_one_character(wstring_view units) noexcept {
    if (units.size() == 1) {
        constexpr wstring_view kEnds = u"\n\r\u2028\u2029";
        return kEnds.find(units.front()) == wstring_view::npos;
    }
    return units.size() == 2 && (units[0] & 0xFC00) == 0xD800 && (units[1] & 0xFC00) == 0xDC00;
}

} // namespace

EditKind TextManager::Impl::kindOf(std::uint64_t offset, std::uint64_t count, wstring_view units) {
    if (count == 0)
        return is_one_character(units) ? EditKind::typing : EditKind::other;
    if (!units.empty() || count > 2)
        return EditKind::other;
    wchar removed[2] = {};
    for (std::uint64_t i = 0; i < count; ++i) {
        const detail::UnitRun run = run_at(text.tree().root().get(), offset + i);
        removed[i] = run.text[static_cast<std::size_t>(offset + i - run.offset)];
    }
    return is_one_character({removed, static_cast<std::size_t>(count)}) ? EditKind::erasing : EditKind::other;
}

void TextManager::Impl::insertShort(std::uint64_t offset, wstring_view units) {
    const EditKind kind = kindOf(offset, 0, units);
    if (owner.changed.connectionCount() == 0 && text.canType(offset, units.size())) {
        if (kind == EditKind::typing && history.joinsTyping(offset)) {
            history.extendTyping(units.size());
        } else {
            history.reserve(1);
            EditStep inverse{.kind = kind};
            inverse.edits.push_back({offset, units.size(), {}, {}});
            history.add(std::move(inverse));
        }
        text.type(offset, units);
        return;
    }
    const detail::Piece piece = text.storeShort(units);
    EditStep step{.kind = kind};
    step.edits.push_back({offset, 0, PieceTree(std::span(&piece, 1)), {}});
    make(std::move(step));
}

bool TextManager::Impl::eraseCharacter(TextRange range) {
    if (owner.changed.connectionCount() != 0)
        return false;
    const std::optional<detail::Piece> units = text.canUntype(range);
    if (!units || !is_one_character(units->text()))
        return false;
    if (!history.extendErasing(range.end, *units)) {
        history.reserve(1);
        EditStep inverse{.kind = EditKind::erasing};
        inverse.edits.push_back({range.begin, 0, PieceTree(std::span(&*units, 1)), {}});
        history.add(std::move(inverse));
    }
    text.untype(*units);
    return true;
}

void TextManager::Impl::make(EditStep&& step) {
    if (step.edits.empty())
        return;
    history.reserve(step.edits.size());
    reserveChanges(step.edits.size());
    Edits inverse = text.apply(step, false);
    note(step, false, inverse);
    step.edits = std::move(inverse);
    history.add(std::move(step));
    tell();
}

void TextManager::Impl::makeTogether(Edits edits) {
    // From the last to the first, so that none moves another one; of two at one offset the first stays in
    // front.
    std::stable_sort(edits.begin(), edits.end(),
                     [](const Edit& a, const Edit& b) { return a.offset < b.offset; });
    bool disjoint = true;
    for (std::size_t i = 1; i < edits.size(); ++i) {
        const Edit& before = edits[i - 1];
        if (before.offset + before.count > edits[i].offset)
            throw_error<DocumentException>(messages::kTextRangesOverlap, {string_intto(edits[i].offset)});
        disjoint = disjoint && before.offset < edits[i].offset;
    }
    std::reverse(edits.begin(), edits.end());
    make({.edits = std::move(edits), .kind = EditKind::other, .disjoint = disjoint});
}

void TextManager::Impl::assign(PieceTree units) {
    requireNoGroup();
    reserveChanges(1);
    const TextSnapshot before = text.snapshot();
    text.assign(std::move(units));
    history.clear();
    history.markSaved();
    if (owner.changed.connectionCount() != 0)
        changes.push_back({0, before, text.snapshot()});
    tell();
}

bool TextManager::Impl::restore(bool undo) {
    requireNoGroup();
    const EditStep* const step = undo ? history.last() : history.lastUndone();
    if (step == nullptr)
        return false;
    reserveChanges(step->edits.size());
    // Both hold what takes back what was done last, so that the last comes first.
    Edits inverse = text.apply(*step, true);
    note(*step, true, inverse);
    if (undo)
        history.undone(std::move(inverse));
    else
        history.redone(std::move(inverse));
    tell();
    return true;
}

void TextManager::Impl::requireOffset(std::uint64_t offset) const {
    requireRange({offset, offset});
}

void TextManager::Impl::requireRange(TextRange range) const {
    if (range.begin > range.end)
        throw_error<DocumentException>(messages::kTextRange,
                                       {string_intto(range.begin), string_intto(range.end)});
    if (const std::uint64_t size = text.size(); range.end > size)
        throw_error<DocumentException>(messages::kTextOffset, {string_intto(range.end), string_intto(size)});
}

void TextManager::Impl::requireMark(TextMark mark) const {
    if (!text.marks().has(mark))
        throw_error<DocumentException>(messages::kTextMark);
}

void TextManager::Impl::requireNoGroup() const {
    if (history.isGroupOpen())
        throw_error<DocumentException>(messages::kTextGroupOpen);
}

void TextManager::Impl::reserveChanges(std::size_t count) {
    if (owner.changed.connectionCount() != 0 && changes.capacity() - changes.size() < count)
        changes.reserve(std::max(changes.size() + count, changes.capacity() * 2));
}

void TextManager::Impl::note(const EditStep& step, bool backwards, const Edits& inverse) noexcept {
    if (owner.changed.connectionCount() == 0)
        return;
    for (std::size_t i = 0; i < inverse.size(); ++i) {
        const Edit& made = step.edits[backwards ? step.edits.size() - 1 - i : i];
        changes.push_back({made.offset, text.snapshot(inverse[i].text), text.snapshot(made.text)});
    }
}

void TextManager::Impl::tell() {
    if (telling || changes.empty())
        return;
    struct Telling {
        explicit Telling(Impl& impl) noexcept : impl(impl) { impl.telling = true; }
        ~Telling() {
            impl.telling = false;
            impl.changes.erase(impl.changes.begin(),
                               impl.changes.begin() + static_cast<std::ptrdiff_t>(told));
        }
        Impl& impl;
        std::size_t told = 0;
    } guard(*this);
    while (guard.told < changes.size()) {
        const TextChange change = changes[guard.told++]; // sinks may add others, which moves the row
        owner.changed.raise(change);
    }
}

} // namespace core
