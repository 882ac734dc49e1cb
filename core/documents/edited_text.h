// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/documents/edit.h"

#include <core/documents/text_snapshot.h>

#include <vector>

namespace core::detail {

/// The text of a document and its marks, which change together or not at all.
class EditedText {
  public:
    static constexpr std::size_t kShort = 4096; ///< units that go into one store with what was typed before

    explicit EditedText(bool unicodeEnds) noexcept : unicodeEnds_(unicodeEnds) {}

    [[nodiscard]] bool hasUnicodeEnds() const noexcept { return unicodeEnds_; }
    [[nodiscard]] const PieceTree& tree() const noexcept { return tree_; }
    [[nodiscard]] TextSnapshot snapshot() const noexcept { return snapshot(tree_); }
    [[nodiscard]] TextSnapshot snapshot(const PieceTree& tree) const noexcept {
        return {tree.root().get(), unicodeEnds_};
    }
    [[nodiscard]] Marks& marks() noexcept { return marks_; }
    [[nodiscard]] const Marks& marks() const noexcept { return marks_; }

    /// Stores at least one and at most kShort units, to be inserted. Throws std::bad_alloc.
    [[nodiscard]] Piece storeShort(wstring_view text);
    /// Stores a text of any length, to be inserted. Throws std::bad_alloc.
    [[nodiscard]] PieceTree store(wstring_view text);

    /// Inserts a piece without taking memory, when it goes on where the units in front of it were stored and
    /// no snapshot shares them; returns whether it did.
    bool extend(std::uint64_t offset, const Piece& piece) noexcept;
    /// Makes the edits of a step, from the first to the last or `backwards`, and returns those that take them
    /// back, in the order in which they were made. Throws std::bad_alloc; nothing has changed then.
    [[nodiscard]] std::vector<Edit> apply(const EditStep& step, bool backwards);
    /// Puts another text in the place of this one, with all marks at its beginning.
    void assign(PieceTree text) noexcept;

  private:
    [[nodiscard]] PieceTree replaceEach(const EditStep& step, bool backwards,
                                        std::vector<Edit>& inverse) const;
    [[nodiscard]] PieceTree replaceTogether(const EditStep& step, bool backwards,
                                            std::vector<Edit>& inverse) const;

    bool unicodeEnds_;
    PieceTree tree_;
    StoreRef tail_; ///< takes what is typed
    Marks marks_;
};

} // namespace core::detail
