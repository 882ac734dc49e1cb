// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/documents/text_range.h>
#include <core/runtime/api.h>
#include <core/runtime/types.h>
#include <core/streams/line_end.h>

#include <cstdint>

namespace core {

namespace detail {
class PieceNode;
} // namespace detail

/// A text as it was at one moment. It never changes, whatever happens to the document that it is of. Copies
/// cost one counted reference. A text has one line more than line ends, so that an empty text has one line.
///
/// Threads: safe on all, also while the document is edited on another one. Every function that takes an
/// offset, a line or a range throws DocumentException for one that the text does not have.
class CORE_API TextSnapshot {
  public:
    /// Makes an empty text.
    TextSnapshot() noexcept = default;
    /// Shares the text of `other`.
    TextSnapshot(const TextSnapshot& other) noexcept;
    /// Takes the text of `other`, which is empty then.
    TextSnapshot(TextSnapshot&& other) noexcept;
    /// Shares or takes the text of `other`.
    TextSnapshot& operator=(TextSnapshot other) noexcept;
    /// Lets go of the text.
    ~TextSnapshot();

    /// Returns the number of units.
    [[nodiscard]] std::uint64_t size() const noexcept;
    /// Returns whether there are no units.
    [[nodiscard]] bool empty() const noexcept { return root_ == nullptr; }
    /// Returns whether U+2028 and U+2029 end lines.
    [[nodiscard]] bool hasUnicodeEnds() const noexcept { return unicodeEnds_; }
    /// Returns the unit at `offset`, which must be less than size().
    [[nodiscard]] wchar unit(std::uint64_t offset) const;
    /// Returns the whole text. Throws std::bad_alloc.
    [[nodiscard]] wstring text() const { return text({0, size()}); }
    /// Returns the units of a range. Throws std::bad_alloc, too.
    [[nodiscard]] wstring text(TextRange range) const;
    /// Returns the units from `offset` on that stand together in memory, at least one; empty at the end of
    /// the text. Borrowed: valid as long as this snapshot. Going from chunk to chunk reads a text without a
    /// copy.
    [[nodiscard]] wstring_view chunk(std::uint64_t offset) const;

    /// Returns the number of lines, at least 1.
    [[nodiscard]] std::uint64_t lineCount() const noexcept;
    /// Returns the offset at which a line starts.
    [[nodiscard]] std::uint64_t lineStart(std::uint64_t line) const;
    /// Returns the range of a line without its end.
    [[nodiscard]] TextRange lineRange(std::uint64_t line) const;
    /// Returns the range of a line with its end.
    [[nodiscard]] TextRange wholeLineRange(std::uint64_t line) const;
    /// Returns a line without its end. Throws std::bad_alloc, too.
    [[nodiscard]] wstring line(std::uint64_t line) const { return text(lineRange(line)); }
    /// Returns what ends a line; LineEnd::none for the last one.
    [[nodiscard]] LineEnd lineEnd(std::uint64_t line) const;
    /// Returns the line that has the unit at `offset`. The units of an end belong to the line that they end;
    /// the offset behind the last unit belongs to the last line.
    [[nodiscard]] std::uint64_t lineOf(std::uint64_t offset) const;
    /// Returns the line and the column of an offset.
    [[nodiscard]] TextPosition position(std::uint64_t offset) const;
    /// Returns the offset of a position. A column behind the line's last unit stands for the end of the line.
    [[nodiscard]] std::uint64_t offset(TextPosition position) const;
    /// Returns the end that most lines have, LineEnd::lf where none has one. Looks at each line.
    [[nodiscard]] LineEnd commonLineEnd() const;

    /// Returns whether both have the same units.
    CORE_API friend bool operator==(const TextSnapshot& left, const TextSnapshot& right) noexcept;

    /// Makes a text of a node, for the library's own use; null for an empty text.
    TextSnapshot(const detail::PieceNode* root, bool unicodeEnds) noexcept;
    /// Returns the node, for the library's own use. Borrowed as long as this snapshot.
    [[nodiscard]] const detail::PieceNode* root() const noexcept { return root_; }

  private:
    void requireOffset(std::uint64_t offset) const;
    void requireRange(TextRange range) const;
    void requireLine(std::uint64_t line) const;
    [[nodiscard]] std::uint64_t endAt(std::uint64_t line) const noexcept;
    [[nodiscard]] LineEnd kindAt(std::uint64_t end) const noexcept;

    const detail::PieceNode* root_ = nullptr; // a counted reference
    bool unicodeEnds_ = false;
};

} // namespace core
