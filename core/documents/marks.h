// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/documents/mark_tree.h"

#include <core/documents/text_mark.h>

#include <cstdint>
#include <vector>

namespace core::detail {

/// Where a mark stood before the units around it were replaced.
struct SavedMark {
    TextMark mark{};
    std::uint64_t offset = 0;
    std::uint32_t moves = 0; ///< how often it had been moved by hand
};

/// The marks of a document.
class Marks {
  public:
    /// Throws std::bad_alloc; nothing has changed then.
    [[nodiscard]] TextMark add(std::uint64_t offset, MarkGravity gravity);
    /// Whether the mark is there. The functions below are for marks that are.
    [[nodiscard]] bool has(TextMark mark) const noexcept;
    [[nodiscard]] std::uint64_t offset(TextMark mark) const noexcept;
    /// Moves a mark by hand; undoing an earlier edit leaves it there.
    void move(TextMark mark, std::uint64_t offset) noexcept;
    void remove(TextMark mark) noexcept;
    [[nodiscard]] std::size_t size() const noexcept { return trees_[0].size() + trees_[1].size(); }

    /// The marks that replacing the range moves so that replacing it back would not bring them home. Throws
    /// std::bad_alloc.
    [[nodiscard]] std::vector<SavedMark> save(std::uint64_t begin, std::uint64_t end) const;
    /// Moves the marks as the replacement of `removed` units at `offset` by `inserted` others does.
    void replaceUnits(std::uint64_t offset, std::uint64_t removed, std::uint64_t inserted) noexcept;
    /// Puts marks where they stood, those that are still there.
    void restore(const std::vector<SavedMark>& saved) noexcept;
    void collapse() noexcept;

  private:
    [[nodiscard]] MarkTree& treeOf(TextMark mark) noexcept { return trees_[mark.number % 2]; }
    [[nodiscard]] const MarkTree& treeOf(TextMark mark) const noexcept { return trees_[mark.number % 2]; }

    MarkTree
        trees_[2]; // by gravity; a mark's number is twice its index in its tree, and 1 for the second tree
};

} // namespace core::detail
