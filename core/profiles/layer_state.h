// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/profiles/lines.h"
#include "core/profiles/overlay.h"

#include <cstdint>
#include <optional>
#include <string>

namespace core {

/// What one layer holds: a sorted part, which stays in its file, and over it the changes since, in memory. A
/// layer in memory has no sorted part.
class LayerState {
  public:
    LayerState() = default;
    explicit LayerState(SortedLines base) noexcept : base_(std::move(base)), hasBase_(true) {}

    /// Returns the text of a key; nothing where it is not set. Throws FileException.
    [[nodiscard]] std::optional<std::string> find(wstring_view key);
    /// Takes the changes over, all of them or none.
    void apply(std::span<const KeyChange> changes) { changes_.apply(changes, hasBase_); }
    /// Returns whether a damaged line was met.
    [[nodiscard]] bool isDamaged() const noexcept { return base_.isDamaged(); }
    /// Returns whether nothing is held in memory.
    [[nodiscard]] bool isUnchanged() const noexcept { return changes_.isEmpty(); }

  private:
    friend class LayerWalk;
    SortedLines base_;
    bool hasBase_ = false;
    Overlay changes_;
};

/// Walks the keys that are set in a layer, in their order. The layer does not change meanwhile.
class LayerWalk {
  public:
    /// Stands at the first key that is not before `from`. Throws FileException, as next() and seek() do.
    explicit LayerWalk(LayerState& layer, wstring_view from = {}) : layer_(layer) { seek(from); }

    [[nodiscard]] bool isAtEnd() const noexcept { return atEnd_; }
    [[nodiscard]] const wstring& key() const noexcept { return current_.key; }
    [[nodiscard]] const std::string& text() const noexcept { return current_.value; }
    void next();
    /// Goes to the first key that is not before `from`.
    void seek(wstring_view from);

  private:
    void readBase(std::uint64_t offset);
    void pass(const wstring& key);
    void settle();

    LayerState& layer_;
    SortedLines::Entry below_; // the next one of the sorted part
    bool hasBelow_ = false;
    wstring floor_;         // the keys of the sorted part go on behind it, whatever the file holds
    bool isPassed_ = false; // or with it
    Overlay::Keys::const_iterator above_;
    KeyChange current_;
    bool atEnd_ = false;
};

} // namespace core
