// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/row_totals.h"

#include "core/tables/query/number_sums.h"

#include <core/strings/integer_text.h>
#include <core/strings/trim.h>
#include <core/tables/errors.h>
#include <core/values/errors.h>

namespace core {

void require_no_texts(RowRange rows, const TableColumn& column) {
    const CellColumn& cells = column.cells;
    if (cells.form() != CellColumn::Form::coded && cells.form() != CellColumn::Form::values)
        return;
    std::optional<std::size_t> first;
    std::optional<std::size_t> odd;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const Value& cell = cells.form() == CellColumn::Form::coded
                                ? cells.dictionary()[cells.codes()[rows[i]]]
                                : cells.values()[rows[i]];
        const wstring_view* const text = cell.asString();
        if (text == nullptr && !cell.isUndefined() && cell.kind() != ValueKind::null)
            return; // with values of other kinds it is not a column of texts
        if (text == nullptr || trim_all(*text).empty() || odd)
            continue;
        if (Numeric number; !cell.getNumeric(number))
            odd = i;
        first = first.value_or(i);
    }
    if (odd)
        first = odd; // the one that keeps the column from being one of numbers
    if (first)
        throw_error<ContextException>(
            messages::kTotalOfTexts,
            {column.info.name, cells.get(rows[*first]).presentation(), string_intto(*first + 1)});
}

Value total(RowRange rows, const TableColumn& column) {
    require_no_texts(rows, column);
    const CellColumn& cells = column.cells;
    const bool isZero = rows.size() == 0 && column.defaultValue.kind() == ValueKind::number;
    Value total = isZero ? column.defaultValue : Value();
    with_numbers(cells, [&](auto sum, auto number_in) {
        bool any = false;
        rows.forEach([&](RowId row) {
            if (const auto number = number_in(row)) {
                sum.add(*number);
                any = true;
            }
        });
        if (any)
            total = Value(sum.value(cells.scale()));
    });
    return total;
}

} // namespace core
