// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/cell_column.h"

#include <optional>

namespace core {

/// Brings words of numbers to a scale that is larger by some digits, and back. An empty word stays empty.
class WordScale {
  public:
    /// `digits` is at most Numeric::kMaxScale.
    explicit WordScale(std::uint32_t digits) noexcept {
        for (; digits > 0; --digits)
            factor_ *= 10;
        largest_ = std::numeric_limits<std::int64_t>::max() / factor_;
    }

    /// Returns the same number at the larger scale; nothing when it does not fit a word.
    [[nodiscard]] std::optional<std::int64_t> up(std::int64_t word) const noexcept {
        if (word == CellColumn::kEmptyWord)
            return word;
        return word <= largest_ && word >= -largest_ ? std::optional(word * factor_) : std::nullopt;
    }
    /// Returns the same number at the smaller scale; nothing when it has more digits.
    [[nodiscard]] std::optional<std::int64_t> down(std::int64_t word) const noexcept {
        if (word == CellColumn::kEmptyWord)
            return word;
        return word % factor_ == 0 ? std::optional(word / factor_) : std::nullopt;
    }

    /// Returns how a word, brought to the larger scale, compares with one that has that scale: below 0, 0 or
    /// above. What does not fit a word lies beyond every word.
    [[nodiscard]] int order(std::int64_t word, std::int64_t other) const noexcept {
        if (word > largest_ || word < -largest_)
            return word < 0 ? -1 : 1;
        const std::int64_t scaled = word * factor_;
        return (scaled > other ? 1 : 0) - (scaled < other ? 1 : 0);
    }

  private:
    std::int64_t factor_ = 1;
    std::int64_t largest_;
};

} // namespace core
