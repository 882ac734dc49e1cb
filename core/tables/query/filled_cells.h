// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/cell_column.h"
#include "core/tables/query/work_watch.h"

namespace core {

/// Calls `work(position, row)` for each row of a range whose cell is filled: neither Undefined nor Null.
template <class Work>
void for_each_filled(RowRange rows, const CellColumn& cells, WorkWatch& watch, Work work) {
    rows.visit([&](auto row_at) {
        const auto walk = [&](auto filled) {
            watch.inPieces(rows.size(), [&](std::size_t begin, std::size_t end) {
                for (std::size_t i = begin; i < end; ++i) {
                    if (const RowId row = row_at(i); filled(row))
                        work(i, row);
                }
            });
        };
        switch (cells.form()) {
        case CellColumn::Form::coded: {
            const auto null = cells.dictionary().find(Value::null()).value_or(0);
            walk([codes = cells.codes(), null](RowId row) { return codes[row] != 0 && codes[row] != null; });
            break;
        }
        case CellColumn::Form::values:
            walk([values = cells.values()](RowId row) {
                return !values[row].isUndefined() && values[row].kind() != ValueKind::null;
            });
            break;
        default:
            walk([words = cells.words()](RowId row) { return words[row] != CellColumn::kEmptyWord; });
        }
    });
}

} // namespace core
