// SPDX-License-Identifier: Apache-2.0
#include "core/tables/objects/table_arguments.h"
#include "core/tables/query/expression_parser.h"

#include <core/tables/errors.h>
#include <core/tables/table.h>

namespace core {

Table::Table(std::initializer_list<NewColumn> columns) : Table() {
    for (const NewColumn& column : columns)
        column.addTo(table_->columns());
}

void Table::sort(const Text& columns) const {
    if (has_expression(columns.view())) {
        sort_rows(*table_, columns.view());
        return;
    }
    std::vector<VTSortParam> params;
    for (const SortItem& item : sort_items(columns.view(), 0))
        params.push_back({id(ColumnKey(item.name)), item.descending});
    table_->sort(params);
}

std::optional<Row> Table::find(const AnyValue& value, ColumnKeys columns) const {
    const auto position = table_->find(value, ids(columns));
    return position ? std::optional((*this)[*position]) : std::nullopt;
}

std::vector<Row> Table::findRows(std::initializer_list<CellEquals> conditions) const {
    std::vector<Row> rows;
    for (const std::size_t position :
         table_->IValueTableBaseRO_findRows(find_params(table_->columns(), conditions)))
        rows.push_back((*this)[position]);
    return rows;
}

std::vector<Row> Table::findRows(const Filter& filter) const {
    std::vector<Row> rows;
    for (const std::size_t position : find_rows(*table_, filter))
        rows.push_back((*this)[position]);
    return rows;
}

Table Table::copy(std::span<const Row> rows, ColumnKeys columns) const {
    std::vector<std::size_t> positions;
    for (const Row& row : rows)
        positions.push_back(row.position());
    return table_->copyRows(positions, ids(columns));
}

Table Table::distinct(ColumnKeys columns, const TableWork& work) const {
    return core::distinct(*table_, names(columns), work);
}

wstring Table::name(const ColumnKey& column) const {
    const IValueColumns& columns = table_->columns();
    return columns.get(columns.positionOf(column.idIn(columns))).name;
}

std::vector<wstring> Table::names(ColumnKeys columns) const {
    std::vector<wstring> names;
    for (const ColumnKey& column : columns)
        names.push_back(name(column));
    return names;
}

} // namespace core
