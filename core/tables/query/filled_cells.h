// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/cell_column.h"

namespace core {

/// Calls `work(position, row)` for each row of a range whose cell is filled: neither Undefined nor Null.
template <class Work>
void for_each_filled(RowRange rows, const CellColumn& cells, Work work) {
    rows.visit([&](auto row_at) {
        const auto walk = [&](auto filled) {
            for (std::size_t i = 0; i < rows.size(); ++i) {
                if (const RowId row = row_at(i); filled(row))
                    work(i, row);
            }
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
