// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace core {

/// Finds the lines in which the rows of a well-formed array of objects begin. It looks through the text once
/// more, so that reading itself need not count lines.
class JsonRowLines {
  public:
    /// The text is borrowed.
    explicit JsonRowLines(std::string_view text) noexcept : text_(text) {}

    /// Returns the line of a row, from 1; 0 where there is no such row. Rows are asked for in their order.
    [[nodiscard]] std::uint64_t lineOf(std::size_t row) noexcept;

  private:
    /// Passes over everything up to the beginning of the next row; false at the end of the text.
    bool next() noexcept;

    std::string_view text_;
    std::size_t at_ = 0;
    std::size_t rows_ = 0; ///< that have begun in front of `at_`
    std::uint64_t line_ = 1;
    int depth_ = 0;
    bool quoted_ = false;
};

} // namespace core
