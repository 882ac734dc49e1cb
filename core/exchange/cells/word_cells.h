// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/exchange/cells/number_text.h"
#include "core/tables/data/cell_column.h"

#include <vector>

namespace core {

/// The cells of a column of numbers or dates, as words for as long as words hold them.
class WordCells {
  public:
    static constexpr std::int64_t kEmpty = CellColumn::kEmptyWord;

    void reserve(std::size_t rows) { words_.reserve(rows); }
    [[nodiscard]] std::size_t size() const noexcept { return wide_ ? values_.size() : words_.size(); }

    void addEmpty() {
        if (!wide_) [[likely]]
            words_.push_back(kEmpty);
        else
            values_.emplace_back();
    }
    /// A date in ticks, or a number without digits behind the point, in a column that has none of these.
    void addWord(std::int64_t word) { words_.push_back(word); }
    void addNumber(const NumberText& number) {
        if (number.digits == scale_ && !wide_ && !number.wide) [[likely]]
            words_.push_back(number.word);
        else
            addOther(number);
    }

    // inspect
    [[nodiscard]] bool isWide() const noexcept { return wide_; }
    [[nodiscard]] std::uint32_t scale() const noexcept { return scale_; }
    [[nodiscard]] std::int64_t word(std::size_t row) const noexcept { return words_[row]; }
    [[nodiscard]] const Value& value(std::size_t row) const noexcept { return values_[row]; }

    /// Makes the column of numbers.
    [[nodiscard]] CellColumn numbers();
    /// Makes the column of dates.
    [[nodiscard]] CellColumn dates();

  private:
    void addOther(const NumberText& number);
    [[nodiscard]] bool rescale(std::uint32_t scale);
    void widen();

    std::vector<std::int64_t> words_; // times 10^-scale_
    std::uint32_t scale_ = 0;
    bool wide_ = false;
    std::vector<Value> values_; // where a number has come that no word holds
};

} // namespace core
