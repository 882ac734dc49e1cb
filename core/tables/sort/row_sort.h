// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/cell_column.h"

#include <core/tables/compare_values.h>

namespace core {

/// A column that rows are sorted by.
struct SortColumn {
    const CellColumn* cells;
    bool descending = false;
};

/// Returns the positions of the rows in the order of their cells: by the first column, ties by the second,
/// and so on. Equal rows keep their order.
[[nodiscard]] std::vector<std::uint32_t> sorted_positions(RowRange rows, std::span<const SortColumn> columns);
/// Returns the rows in that order.
[[nodiscard]] std::vector<RowId> sorted_rows(RowRange rows, std::span<const SortColumn> columns);
/// Does the same with an object that compares the cells, and throws what that throws.
[[nodiscard]] std::vector<RowId> sorted_rows(RowRange rows, std::span<const SortColumn> columns,
                                             ICompareValues& comparison);

} // namespace core
