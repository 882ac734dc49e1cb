// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/table_column.h"

#include <core/strings/names.h>

#include <memory>
#include <unordered_set>
#include <vector>

namespace core {

/// The columns of a table that is being made, with all their cells.
struct TableContent {
    std::vector<std::unique_ptr<TableColumn>> columns;
    std::size_t rows = 0;
};

/// Gathers such columns.
class NewColumns {
  public:
    explicit NewColumns(std::size_t rows) { content_.rows = rows; }

    /// Adds a column with a cell for each row. Throws ContextException: "IDS_VT_COLUMNCODE_ERROR" for a name
    /// that is not valid, "IDS_VT_COLUMNS_NOT_UNIQUE" for one that another column has.
    void add(ColumnInfo info, CellColumn cells);
    [[nodiscard]] TableContent take() noexcept { return std::move(content_); }

  private:
    TableContent content_;
    std::unordered_set<wstring, NocaseHash, NocaseEqual> names_;
};

} // namespace core
