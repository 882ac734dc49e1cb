// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/row_totals.h"

#include "core/runtime/threads/loop_check.h"
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
    std::optional<std::size_t> text;  // the first one
    std::optional<std::size_t> odd;   // the first text without a number in it
    std::optional<std::size_t> other; // the first value of another kind
    bool anyNumber = false;
    detail::LoopCheck check;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        check();
        const Value& cell = cells.form() == CellColumn::Form::coded
                                ? cells.dictionary()[cells.codes()[rows[i]]]
                                : cells.values()[rows[i]];
        if (cell.isUndefined() || cell.kind() == ValueKind::null)
            continue;
        if (cell.kind() == ValueKind::number) {
            anyNumber = true;
        } else if (const wstring_view* const found = cell.asString(); found == nullptr) {
            other = other.value_or(i);
        } else if (!trim_all(*found).empty()) {
            text = text.value_or(i);
            if (Numeric number; !odd && !cell.getNumeric(number))
                odd = i;
        }
    }
    const std::optional<std::size_t> named = odd ? odd : text ? text : other;
    const bool wrong = anyNumber ? named.has_value() : text && !other;
    if (wrong)
        throw_error<ContextException>(
            anyNumber ? messages::kTotalOfMixed : messages::kTotalOfTexts,
            {column.info.name, cells.get(rows[*named]).presentation(), string_intto(*named + 1)});
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
