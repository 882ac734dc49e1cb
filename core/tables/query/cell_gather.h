// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/cell_column.h"
#include "core/tables/query/work_watch.h"

namespace core {

/// The cells of a column in some rows. kNoRow among the rows stands for a cell that is Undefined.
struct CellRun {
    const CellColumn* cells; // borrowed
    RowRange rows;
};

/// Returns the cells of the runs, one behind another, as a new column. Runs of one form stay in it, so no
/// value is made for a cell.
[[nodiscard]] CellColumn gather_cells(std::span<const CellRun> runs, WorkWatch& watch);
[[nodiscard]] inline CellColumn gather_cells(const CellColumn& cells, RowRange rows, WorkWatch& watch) {
    const CellRun run{&cells, rows};
    return gather_cells({&run, 1}, watch);
}

} // namespace core
