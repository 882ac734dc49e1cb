// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/documents/edit.h"
#include "core/documents/typed_tree.h"

#include <core/documents/text_snapshot.h>

#include <optional>
#include <vector>

namespace core::detail {

/// The text of a document and its marks, which change together or not at all.
class EditedText {
  public:
    static constexpr std::size_t kShort = 4096; ///< units that go into one store with what was typed before

    explicit EditedText(bool unicodeEnds) noexcept : unicodeEnds_(unicodeEnds) {}

    [[nodiscard]] bool hasUnicodeEnds() const noexcept { return unicodeEnds_; }
    [[nodiscard]] std::uint64_t size() const noexcept { return tree_.size(); }
    [[nodiscard]] const PieceTree& tree() noexcept { return tree_.get(); }
    [[nodiscard]] TextSnapshot snapshot() noexcept { return snapshot(tree()); }
    [[nodiscard]] TextSnapshot snapshot(const PieceTree& tree) const noexcept {
        return {tree.root().get(), unicodeEnds_};
    }
    [[nodiscard]] Marks& marks() noexcept { return marks_; }
    [[nodiscard]] const Marks& marks() const noexcept { return marks_; }

    /// Stores at least one and at most kShort units, to be inserted. Throws std::bad_alloc.
    [[nodiscard]] Piece storeShort(wstring_view text);
    /// Stores a text of any length, to be inserted. Throws std::bad_alloc.
    [[nodiscard]] PieceTree store(wstring_view text);

    /// Whether type() can insert so many units: those in front were the last that were stored, and nobody
    /// else sees them.
    [[nodiscard]] bool canType(std::uint64_t offset, std::size_t count) noexcept;
    /// Inserts units without taking memory, right after canType() has agreed.
    void type(std::uint64_t offset, wstring_view units) noexcept;
    /// The units of a range that untype() can remove: they end a piece that nobody else sees, not the whole
    /// of it, and there are no marks to be taken along. Nothing otherwise.
    [[nodiscard]] std::optional<Piece> canUntype(TextRange range) noexcept;
    /// Removes units without taking memory, right after canUntype() has agreed.
    void untype(const Piece& units) noexcept { tree_.shrink(units.size()); }
    /// Makes the edits of a step, from the first to the last or `backwards`, and returns those that take them
    /// back, in the order in which they were made. Throws std::bad_alloc; nothing has changed then.
    [[nodiscard]] Edits apply(const EditStep& step, bool backwards);
    /// Puts another text in the place of this one, with all marks at its beginning.
    void assign(PieceTree text) noexcept;

  private:
    [[nodiscard]] PieceTree replaceEach(const EditStep& step, bool backwards, Edits& inverse);
    [[nodiscard]] PieceTree replaceTogether(const EditStep& step, bool backwards, Edits& inverse);
    [[nodiscard]] Edits applyOne(const Edit& edit);

    bool unicodeEnds_;
    TypedTree tree_;
    StoreRef tail_;                ///< takes what is typed
    std::uint64_t insertedTo_ = 0; ///< where the last insertion ended: nobody types on elsewhere
    Marks marks_;
};

} // namespace core::detail
