// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/filled_cells.h"

namespace core {

std::size_t find_filled(RowRange rows, const CellColumn& cells, std::size_t begin, std::size_t end,
                        std::span<FilledCell> out) {
    std::size_t count = 0;
    const auto find = [&](auto filled) {
        rows.visit([&](auto row_at) {
            for (std::size_t i = begin; i < end; ++i) {
                const RowId row = row_at(i);
                out[count] = {static_cast<RowId>(i), row};
                count +=
                    filled(row) ? 1 : 0; // no jump, which cells that are empty now and then would mislead
            }
        });
    };
    switch (cells.form()) {
    case CellColumn::Form::coded: {
        const auto null = cells.dictionary().find(Value::null()).value_or(0);
        find([codes = cells.codes(), null](RowId row) { return codes[row] != 0 && codes[row] != null; });
        break;
    }
    case CellColumn::Form::values:
        find([values = cells.values()](RowId row) {
            return !values[row].isUndefined() && values[row].kind() != ValueKind::null;
        });
        break;
    default:
        find([words = cells.words()](RowId row) { return words[row] != CellColumn::kEmptyWord; });
    }
    return count;
}

} // namespace core
