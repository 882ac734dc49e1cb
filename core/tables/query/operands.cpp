// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/operands.h"

#include "core/tables/data/unknown_column.h"
#include "core/tables/query/bound_expression.h"
#include "core/tables/query/expression_parser.h"
#include "core/tables/query/expression_text.h"

#include <core/strings/names.h>
#include <core/tables/errors.h>
#include <core/values/errors.h>

#include <algorithm>

namespace core {

const TableColumn& Operands::find(wstring_view argument) {
    if (const auto position = data_.findColumn(argument))
        return data_.column(*position);
    if (is_valid_name(argument))
        throw_unknown_column(data_, argument);
    const auto known = std::find_if(computed_.begin(), computed_.end(),
                                    [&](const TableColumn& column) { return column.info.name == argument; });
    if (known != computed_.end())
        return *known;
    return compute(*parse_expression(argument), wstring(argument));
}

const TableColumn& Operands::compute(const ExpressionNode& expression, wstring name) {
    CellColumn cells = computed_cells(data_, expression);
    ColumnInfo info{.name = std::move(name), .domain = domain_of_cells(cells), .title = {}, .width = 0};
    TableColumn& column = computed_.emplace_back(0, std::move(info));
    column.cells = std::move(cells);
    return column;
}

std::vector<const TableColumn*> Operands::keys(std::span<const wstring> items) {
    std::vector<const TableColumn*> keys;
    const auto add = [&](std::span<const wstring> names) {
        for (const TableColumn* const column : columns(names)) {
            if (std::find(keys.begin(), keys.end(), column) != keys.end())
                throw_error<ContextException>(messages::kColumnTwice, {column->info.name});
            keys.push_back(column);
        }
    };
    for (const wstring& item : items) {
        if (data_.findColumn(item) || !has_expression(item)) {
            add({&item, 1});
            continue;
        }
        for (NamedExpression& one : parse_named_list(item)) {
            if (one.expression->kind == ExpressionKind::column && one.name.empty()) {
                add({&one.expression->name, 1});
                continue;
            }
            wstring name = one.name.empty() ? expression_text(*one.expression) : std::move(one.name);
            keys.push_back(&compute(*one.expression, std::move(name)));
        }
    }
    return keys;
}

std::vector<const TableColumn*> Operands::columns(std::span<const wstring> names) const {
    std::vector<const TableColumn*> columns;
    for (const wstring& name : names) {
        const auto position = data_.findColumn(wstring_view(name));
        if (!position)
            throw_unknown_column(data_, name);
        const TableColumn* const column = &data_.column(*position);
        if (std::find(columns.begin(), columns.end(), column) != columns.end())
            throw_error<ContextException>(messages::kColumnTwice, {name});
        columns.push_back(column);
    }
    return columns;
}

std::vector<const CellColumn*> cells_of(std::span<const TableColumn* const> columns) {
    std::vector<const CellColumn*> cells;
    for (const TableColumn* const column : columns)
        cells.push_back(&column->cells);
    return cells;
}

void admit_undefined(TypeDomain& domain) {
    if (!domain.isEmpty())
        domain.addType(kUndefinedType);
}

bool admits_only_numbers(const TypeDomain& domain) noexcept {
    return domain.pattern().size() == 1 && domain.containsType(ValueKind::number);
}

TypeDomain domain_of_numbers(const TypeDomain& domain) {
    TypeDomain numbers(kNumberType);
    if (!admits_only_numbers(domain))
        admit_undefined(numbers);
    return numbers;
}

CellColumn picked_cells(const CellColumn& cells, std::span<const RowId> rows) {
    if (std::find(rows.begin(), rows.end(), kNoRow) == rows.end())
        return cells.copy(RowRange(rows));
    const auto pick = [rows](auto cells, auto none) {
        std::vector<decltype(none)> picked;
        picked.reserve(rows.size());
        for (const RowId row : rows)
            picked.push_back(row != kNoRow ? cells[row] : none);
        return picked;
    };
    switch (cells.form()) {
    case CellColumn::Form::coded:
        return CellColumn::ofCodes(std::make_unique<ValueDictionary>(cells.dictionary()),
                                   pick(cells.codes(), CellColumn::Code{0}));
    case CellColumn::Form::values:
        return CellColumn::ofValues(pick(cells.values(), Value()));
    default:
        return CellColumn::ofWords(cells.form(), cells.scale(), pick(cells.words(), CellColumn::kEmptyWord));
    }
}

} // namespace core
