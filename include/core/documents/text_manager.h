// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/events/event.h>
#include <core/documents/text_change.h>
#include <core/documents/text_mark.h>
#include <core/documents/text_search.h>
#include <core/documents/text_snapshot.h>

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace core {

/// How a TextManager is made.
struct TextManagerOptions {
    bool unicodeEnds = false; ///< whether U+2028 and U+2029 end lines, too
};

/// A text that is edited: lines with their own ends, edits that are taken back, marks that move with the
/// text. Offsets count UTF-16 units from 0; lines count from 0.
///
/// Every edit happens whole or not at all: when it throws, text, marks and steps are as they were. An edit
/// throws DocumentException for an offset, a line or a range that the text does not have, and std::bad_alloc.
///
/// Edits make steps, which undo() takes back. Characters that are typed one behind the other are one step,
/// and so are characters that are erased one beside the other; a line end, a longer text and an edit
/// elsewhere begin a step. Time plays no part.
///
/// Threads: one at a time. What text() has returned may be read on any.
class CORE_API TextManager {
  public:
    /// Makes an empty document. Throws std::bad_alloc.
    explicit TextManager(const TextManagerOptions& options = {});
    /// Makes a document of a text, which no undo() takes away. Throws std::bad_alloc.
    explicit TextManager(wstring_view text, const TextManagerOptions& options = {});
    ~TextManager();
    TextManager(const TextManager&) = delete;
    TextManager& operator=(const TextManager&) = delete;

    /// Raised for each replacement, in the order in which they happened, after the edit. The text may have
    /// changed further by then. A sink may edit: what it changes is told to all sinks after what is being
    /// told now.
    Event<TextChange> changed{named<u"Changed", u"ПриИзменении">};

    /// Returns the text as it is now, for any question about it. Costs one counted reference.
    [[nodiscard]] TextSnapshot text() const noexcept;
    /// Replaces the whole text and forgets all steps; marks go to the beginning. The document counts as
    /// saved. Throws DocumentException in a group, and std::bad_alloc.
    void assign(wstring_view text);
    /// Does the same with the text of a snapshot, whose memory is shared where it ends lines as this one
    /// does.
    void assign(const TextSnapshot& text);

    // edits

    /// Inserts a text at an offset.
    void insert(std::uint64_t offset, wstring_view text) { replace({offset, offset}, text); }
    /// Removes the units of a range.
    void remove(TextRange range) { replace(range, {}); }
    /// Puts a text in the place of a range.
    void replace(TextRange range, wstring_view text);
    /// Makes several replacements as one edit, in one step. The ranges are those of the text as it is now, in
    /// any order; DocumentException is thrown when they overlap.
    void replace(std::span<const TextReplacement> replacements);
    /// Inserts a line in front of a line; the line behind the last one is the end of the text. It is ended as
    /// the lines in front of it are, with LF where none has an end.
    void insertLine(std::uint64_t line, wstring_view text);
    /// Puts a text in the place of a line; its end stays.
    void replaceLine(std::uint64_t line, wstring_view text);
    /// Removes `count` lines with their ends. With the last line goes the end in front of it.
    void removeLines(std::uint64_t line, std::uint64_t count = 1);
    /// Replaces all matches in a step of its own and returns how many there were. The replacement of a
    /// regular expression may name groups, see TextSearch::expand(). Throws as TextSearch does, too.
    std::size_t replaceAll(const TextQuery& query, wstring_view replacement);
    /// Gives all lines the same end in a step of its own and returns how many have changed. Throws
    /// DocumentException for LineEnd::none.
    std::size_t convertLineEnds(LineEnd end);

    // steps

    /// Takes the last step back, with its marks, and returns true; returns false when no step is left to take
    /// back. Throws DocumentException in a group.
    bool undo();
    /// Makes the step again that was taken back last, and returns true; returns false when no step was taken
    /// back. Throws DocumentException in a group.
    bool redo();
    /// Returns how many steps can be taken back.
    [[nodiscard]] std::size_t undoCount() const noexcept;
    /// Returns how many steps can be made again.
    [[nodiscard]] std::size_t redoCount() const noexcept;
    /// Returns how many steps are kept.
    [[nodiscard]] std::size_t undoLimit() const noexcept;
    /// Sets how many steps are kept; the oldest ones are forgotten. All are kept without a limit.
    void setUndoLimit(std::size_t steps) noexcept;
    /// Makes the next edit begin a step, as a jump of the cursor does.
    void closeStep() noexcept;
    /// Makes all edits one step until the endGroup() that belongs to it. Groups may stand in groups.
    void beginGroup() noexcept;
    /// Ends a group. Throws DocumentException when none is open.
    void endGroup();
    /// Returns whether a group is open.
    [[nodiscard]] bool isGroupOpen() const noexcept;
    /// Forgets all steps. Throws DocumentException in a group.
    void clearSteps();
    /// Notes that the text as it is now has been saved. Throws DocumentException in a group.
    void markSaved();
    /// Returns whether the text is another one than was saved last; a new document is as saved. Undo and redo
    /// lead back to the saved text.
    [[nodiscard]] bool isModified() const noexcept;

    // marks; each function that takes one throws DocumentException for a mark that has been removed

    /// Adds a mark at an offset. Throws DocumentException and std::bad_alloc.
    [[nodiscard]] TextMark addMark(std::uint64_t offset, MarkGravity gravity = MarkGravity::left);
    /// Adds two marks around a range. What is inserted at its ends is outside, or inside when it `grows`.
    /// Throws DocumentException and std::bad_alloc.
    [[nodiscard]] TextMarkedRange addRange(TextRange range, bool grows = false);
    /// Returns whether the mark has not been removed.
    [[nodiscard]] bool hasMark(TextMark mark) const noexcept;
    /// Returns the offset of a mark.
    [[nodiscard]] std::uint64_t offset(TextMark mark) const;
    /// Returns where a range is now. A range whose text is gone is empty.
    [[nodiscard]] TextRange range(const TextMarkedRange& range) const;
    /// Moves a mark. Undo and redo of earlier steps leave it there.
    void moveMark(TextMark mark, std::uint64_t offset);
    /// Removes a mark.
    void removeMark(TextMark mark);
    /// Removes both marks of a range.
    void removeRange(const TextMarkedRange& range);
    /// Returns how many marks there are; each range and each part of the selection has two.
    [[nodiscard]] std::size_t markCount() const noexcept;

    // the selection

    /// Selects ranges, which are edited as one; empty ones are cursors. Those that overlap become one.
    void select(std::span<const TextRange> ranges);
    /// Returns the selected ranges from the first to the last; they move with the text. Throws
    /// std::bad_alloc.
    [[nodiscard]] std::vector<TextRange> selection() const;
    /// Puts a text in the place of each selected range, in one step; a cursor stands behind each text then.
    void replaceSelection(wstring_view text);

  private:
    friend class TextEditGroup;
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

/// Keeps a group of edits open while it lives.
class CORE_API TextEditGroup {
  public:
    /// Begins a group in `text`, which must live longer.
    explicit TextEditGroup(TextManager& text) noexcept : text_(text) { text_.beginGroup(); }
    TextEditGroup(const TextEditGroup&) = delete;
    TextEditGroup& operator=(const TextEditGroup&) = delete;
    /// Ends the group, unless none is open any more.
    ~TextEditGroup();

  private:
    TextManager& text_;
};

} // namespace core
