// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/documents/edited_text.h"
#include "core/documents/history.h"

#include <core/documents/text_manager.h>

#include <vector>

namespace core {

/// What a TextManager is made of. Everything that can fail comes before the text changes.
struct TextManager::Impl {
    Impl(TextManager& manager, bool unicodeEnds) noexcept : owner(manager), text(unicodeEnds) {}

    /// Inserts a short text, which is what typing does.
    void insertShort(std::uint64_t offset, wstring_view units);
    /// Erases a character that was typed last or ends a piece, which is what the backspace key does. Returns
    /// whether it did; make() can always.
    bool eraseCharacter(TextRange range);
    /// Makes a step of edits, which are in the order in which they are made.
    void make(detail::EditStep&& step);
    /// Makes a step of edits that do not overlap; they get into their order first.
    void makeTogether(detail::Edits edits);
    /// Puts another text in the place of everything.
    void assign(detail::PieceTree units);
    /// Takes back the last step, or makes the next one again.
    bool restore(bool undo);

    [[nodiscard]] detail::EditKind kindOf(std::uint64_t offset, std::uint64_t count, wstring_view units);
    void requireOffset(std::uint64_t offset) const;
    void requireRange(TextRange range) const;
    void requireMark(TextMark mark) const;
    void requireNoGroup() const;

    /// Makes room for changes that are to be told. Throws std::bad_alloc.
    void reserveChanges(std::size_t count);
    /// Notes the changes of a step that has been made; `inverse` takes it back.
    void note(const detail::EditStep& step, bool backwards, const detail::Edits& inverse) noexcept;
    /// Tells the changes that wait, unless that is being done already.
    void tell();

    TextManager& owner;
    detail::EditedText text;
    detail::History history;
    std::vector<TextMarkedRange> selection;
    std::vector<TextChange> changes; ///< that wait to be told
    bool telling = false;
};

} // namespace core
