// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/table_data.h"
#include "core/tables/query/expression_node.h"

#include <deque>

namespace core {

/// The columns that functions work on, by their names or as expressions, for as long as the table stays as it
/// is.
class Operands {
  public:
    explicit Operands(const TableData& data) : data_(data) {}

    /// Returns the column of that name, or one with the values of an expression, which is computed once and
    /// borrowed from this object. Throws ContextException ("IDS_VT_UNKNOWN_COLUMN_ERROR") and
    /// ExpressionException.
    [[nodiscard]] const TableColumn& find(wstring_view argument);
    /// Returns the columns of several names, each of which may come once. Throws as find() does, and
    /// "IDS_VT_COLUMNS_NOT_UNIQUE".
    [[nodiscard]] std::vector<const TableColumn*> columns(std::span<const wstring> names) const;
    /// Returns what rows are grouped by: columns of these names, or of expressions with names, where an item
    /// may list several: "Region, Year(Day) As Year". Throws as columns() and find() do. What is computed is
    /// borrowed from this object.
    [[nodiscard]] std::vector<const TableColumn*> keys(std::span<const wstring> items);

  private:
    const TableColumn& compute(const ExpressionNode& expression, wstring name);

    const TableData& data_;
    std::deque<TableColumn> computed_;
};

/// The cells of columns.
[[nodiscard]] std::vector<const CellColumn*> cells_of(std::span<const TableColumn* const> columns);

/// Lets a description admit Undefined.
void admit_undefined(TypeDomain& domain);
/// Says whether a description admits Numbers alone.
[[nodiscard]] bool admits_only_numbers(const TypeDomain& domain) noexcept;
/// The description of numbers made of those of a column, of any number of digits. It admits Undefined where a
/// cell may hold no number.
[[nodiscard]] TypeDomain domain_of_numbers(const TypeDomain& domain);

/// The cells of some rows of a column, in their order; Undefined for kNoRow.
[[nodiscard]] CellColumn picked_cells(const CellColumn& cells, std::span<const RowId> rows);

} // namespace core
