// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/cell_column.h"
#include "core/tables/query/work_watch.h"

#include <array>

namespace core {

/// A filled cell of a range of rows: neither Undefined nor Null.
struct FilledCell {
    RowId position; ///< of the row in the range
    RowId row;
};

/// Puts the filled cells of the rows from position `begin` to `end` into `out`, which has room for all of
/// them, and returns how many there are.
[[nodiscard]] std::size_t find_filled(RowRange rows, const CellColumn& cells, std::size_t begin,
                                      std::size_t end, std::span<FilledCell> out);

/// Calls `work(position, row)` for each row of a range whose cell is filled. The cells are found some at a
/// time, so that `work` is compiled once and not for every form of cells and of ranges.
template <class Work>
void for_each_filled(RowRange rows, const CellColumn& cells, WorkWatch& watch, Work work) {
    std::array<FilledCell, 1024> found;
    watch.inPieces(rows.size(), [&](std::size_t begin, std::size_t end) {
        for (std::size_t next = begin; next < end; next += found.size()) {
            const std::size_t count =
                find_filled(rows, cells, next, std::min(end, next + found.size()), found);
            for (const FilledCell cell : std::span(found).first(count))
                work(cell.position, cell.row);
        }
    });
}

} // namespace core
