// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/documents/edit.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <optional>
#include <vector>

namespace core::detail {

/// The steps that can be taken back, and those that have been and can be made again. Which edits make a step
/// depends on the edits alone, never on time: characters that are typed one behind the other join, and so do
/// characters that are erased side by side.
class History {
  public:
    /// Takes the memory for one more add() of `count` edits. Throws std::bad_alloc.
    void reserve(std::size_t count);
    /// Whether a typed character joins the last step, which extendTyping() then does.
    [[nodiscard]] bool joinsTyping(std::uint64_t offset) const noexcept;
    void extendTyping(std::uint64_t count) noexcept;
    /// Joins an erased character, which was the one in front of `offset`, to the last step; returns whether
    /// it did.
    bool extendErasing(std::uint64_t offset, const Piece& units) noexcept;
    /// Adds what takes back edits that have been made. What had been taken back can no longer be made again.
    void add(EditStep&& step) noexcept; // NOLINT(bugprone-exception-escape)

    /// The last step that can be taken back, or null. Owned by the history.
    [[nodiscard]] EditStep* last() noexcept { return undo_.empty() ? nullptr : &undo_.back(); }
    /// The last step that was taken back, or null. Owned by the history.
    [[nodiscard]] EditStep* lastUndone() noexcept { return redo_.empty() ? nullptr : &redo_.back(); }
    /// The last step has been taken back; `inverse` makes it again.
    void undone(Edits&& inverse) noexcept; // NOLINT(bugprone-exception-escape)
    /// The step that was taken back last has been made again; `inverse` takes it back.
    void redone(Edits&& inverse) noexcept; // NOLINT(bugprone-exception-escape)

    void beginGroup() noexcept;
    void endGroup() noexcept;
    [[nodiscard]] bool isGroupOpen() const noexcept { return depth_ > 0; }
    /// The next edit begins a step.
    void closeStep() noexcept { open_ = false; }

    [[nodiscard]] std::size_t undoCount() const noexcept { return undo_.size(); }
    [[nodiscard]] std::size_t redoCount() const noexcept { return redo_.size(); }
    [[nodiscard]] std::size_t limit() const noexcept { return limit_; }
    void setLimit(std::size_t limit) noexcept;
    /// Forgets all steps.
    void clear() noexcept;

    void markSaved() noexcept;
    [[nodiscard]] bool isModified() const noexcept { return saved_ != state(); }

  private:
    [[nodiscard]] std::uint64_t state() const noexcept { return undo_.empty() ? base_ : undo_.back().serial; }
    [[nodiscard]] bool join(EditStep& step);
    void trim() noexcept;

    std::list<EditStep> undo_;
    std::list<EditStep> redo_;
    std::list<EditStep> spare_; ///< one step at most, so that add() takes no memory
    std::size_t limit_ = static_cast<std::size_t>(-1);
    std::size_t depth_ = 0;
    bool grouped_ = false; ///< whether the open group has a step already
    bool open_ = false;    ///< whether an edit may join the last step
    std::uint64_t serial_ = 0;
    std::uint64_t base_ = 0;                 ///< the state in front of the first step
    std::optional<std::uint64_t> saved_ = 0; ///< the state that was saved; nothing when it cannot come back
};

} // namespace core::detail
