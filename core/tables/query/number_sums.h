// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/cell_column.h"

namespace core {

/// A sum of up to 2^32 words, exact: their halves are summed apart.
class WordSum {
  public:
    void add(std::int64_t word) noexcept {
        high_ += word >> kHalfBits;
        low_ += static_cast<std::uint32_t>(word);
    }
    /// The sum as a word of a column; none when it does not fit.
    [[nodiscard]] std::optional<std::int64_t> word() const noexcept;
    /// The sum of words of that scale.
    [[nodiscard]] Numeric value(std::uint32_t scale) const;

  private:
    static constexpr unsigned kHalfBits = 32;
    static constexpr std::int64_t kHalf = std::int64_t{1} << kHalfBits;

    std::int64_t high_ = 0;
    std::uint64_t low_ = 0;
};

/// A sum of numbers of any length, as a column of values holds them.
class ValueSum {
  public:
    void add(const Numeric& number) { sum_ += number; }
    [[nodiscard]] std::optional<std::int64_t> word() const noexcept { return std::nullopt; }
    [[nodiscard]] const Numeric& value(std::uint32_t) const noexcept { return sum_; }

  private:
    Numeric sum_;
};

/// Calls `work` with an empty sum that holds all numbers of a column, and with a function that gives the
/// number in the cell of a row: something that is false where the cell has none, and that gives what the sum
/// adds. Does not call it for a column that cannot hold numbers.
template <class Work>
void with_numbers(const CellColumn& cells, Work work) {
    if (cells.form() == CellColumn::Form::numbers)
        work(WordSum(), [words = cells.words()](RowId row) {
            return words[row] != CellColumn::kEmptyWord ? &words[row] : nullptr;
        });
    else if (cells.form() == CellColumn::Form::values)
        work(ValueSum(), [values = cells.values()](RowId row) { return values[row].asNumeric(); });
}

} // namespace core
