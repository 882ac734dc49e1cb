// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/exchange/table_text.h>

#include <limits>
#include <vector>

namespace core {

/// The cells of a view as text, as the whole of their columns asks for: numbers alone stand right, and dates
/// that are all whole days are shown without their time. The view outlives it.
class CellTexts {
  public:
    /// Looks through the first `most` rows of a view.
    explicit CellTexts(const TableView& view, std::size_t most = std::numeric_limits<std::size_t>::max());

    /// Returns whether a column has numbers and no other filled cells.
    [[nodiscard]] bool areNumbers(std::size_t column) const {
        return found_[column] == Found{.numbers = true};
    }
    /// Returns the text of a cell of a column.
    [[nodiscard]] wstring text(std::size_t column, const Value& cell) const;

  private:
    struct Found {
        bool numbers = false;
        bool others = false;
        bool times = false; // of the day, other than midnight
        friend bool operator==(const Found&, const Found&) = default;
    };

    const TableView& view_;
    std::vector<Found> found_;
};

} // namespace core
