// SPDX-License-Identifier: Apache-2.0
#include "core/tables/objects/table_expressions.h"

#include "core/tables/objects/row_collection.h"
#include "core/tables/objects/table_parts.h"
#include "core/tables/objects/table_summaries.h"
#include "core/tables/query/bound_expression.h"
#include "core/tables/query/expression_parser.h"
#include "core/tables/query/row_totals.h"

#include <core/collections/value_map.h>
#include <core/collections/value_structure.h>
#include <core/strings/names.h>
#include <core/strings/trim.h>
#include <core/tables/expression.h>
#include <core/tables/filter.h>

#include <algorithm>

namespace core {
namespace {

std::vector<RowId> passing_rows(const TableData& data, RowId parent, bool subordinates,
                                const Filter& filter) {
    if (filter.isEmpty())
        return matching_rows(data, parent, subordinates, {});
    return rows_where(data, parent, subordinates, *filter.condition());
}

std::vector<RowId> passing_rows(const TableData& data, const Filter& filter) {
    return passing_rows(data, kNoRow, false, filter);
}

/// A table that is given to be changed has data to be changed.
TableData& data_of(const IValueTableBaseRO& table) {
    return const_cast<TableData&>(own_table(const_cast<IValueTableBaseRO&>(table), 0));
}

/// Rows of a table that are not among some others; both come in their order.
std::vector<RowId> other_rows(const TableData& data, std::span<const RowId> rows) {
    std::vector<RowId> others;
    others.reserve(data.rows().size() - rows.size());
    data.rows().walk([&](RowId row) {
        if (!rows.empty() && rows.front() == row)
            rows = rows.subspan(1);
        else
            others.push_back(row);
        return true;
    });
    return others;
}

} // namespace

bool is_filter_argument(const Value& argument) {
    return argument.asString() != nullptr || argument.type() == Type(kFilterType) ||
           argument.query<IValueStructure>();
}

std::vector<RowId> filtered_rows(const TableData& data, RowId parent, bool subordinates, const Value& filter,
                                 int param) {
    if (filter.query<IValueStructure>())
        return matching_rows(data, parent, subordinates, filter_argument(data, filter, param));
    return passing_rows(data, parent, subordinates,
                        from_value<Filter>(filter, ValueReceiver::parameter(param)));
}

void delete_filtered(TableData& data, const Value& filter, int param) {
    data.keepRows(other_rows(data, filtered_rows(data, kNoRow, false, filter, param)));
}

Value filtered_total(const TableData& data, const Value& column, const Value& filter) {
    std::vector<RowId> rows;
    const RowList all(data, kNoRow, false);
    RowRange range = all.range();
    if (!filter.isUndefined()) {
        rows = filtered_rows(data, kNoRow, false, filter, 1);
        range = RowRange(rows);
    }
    const wstring_view* const text = column.asString();
    if (text == nullptr || text->find(u'(') != wstring_view::npos || is_valid_name(trim_all(*text)))
        return call_total(data, range, column);
    TableColumn computed(0, {.name = wstring(*text), .domain = {}, .title = {}, .width = 0});
    computed.cells = BoundExpression(data, *parse_expression(*text)).values(range);
    return total(RowRange(range.size()), computed);
}

ExpressionParameters parameters_argument(const Value& argument, int param) {
    ExpressionParameters parameters;
    if (argument.isUndefined())
        return parameters;
    InterfacePtr<IValuePairs> pairs = argument.query<IValueMap>();
    if (!pairs)
        pairs = object_argument<IValueStructure>(argument, param);
    std::size_t position = 0;
    for (IValuePairs::View pair; pairs->next(position, pair);)
        parameters.push_back({pair.key->presentation(), *pair.value});
    return parameters;
}

void add_computed_column(TableData& data, wstring_view name, wstring_view expression,
                         const ExpressionParameters& parameters) {
    CellColumn cells = computed_cells(data, *parse_expression(expression, parameters));
    ColumnInfo info{.name = wstring(name), .domain = domain_of_cells(cells), .title = {}, .width = 0};
    data.appendColumn(std::move(info), std::move(cells));
}

SortOrder read_order(const TableData& data, wstring_view order, const ExpressionParameters& parameters) {
    SortOrder result;
    for (const SortExpression& item : parse_sort_list(order, parameters)) {
        const bool column = item.expression->kind == ExpressionKind::column;
        const auto position = column ? data.findColumn(item.expression->name) : std::nullopt;
        if (!position)
            result.computed.push_back(computed_cells(data, *item.expression));
        result.columns.push_back(
            {position ? &data.column(*position).cells : &result.computed.back(), item.descending});
    }
    return result;
}

std::vector<std::size_t> find_rows(const IValueTableBaseRO& table, const Filter& filter) {
    const TableData& data = data_of(table);
    std::vector<std::size_t> positions;
    for (const RowId row : passing_rows(data, filter))
        positions.push_back(data.rows().positionOf(row));
    return positions;
}

InterfacePtr<IValueTable> copy_rows(const IValueTableBaseRO& table, const Filter& filter) {
    const TableData& data = data_of(table);
    const std::vector<RowId> rows = passing_rows(data, filter);
    std::vector<std::unique_ptr<TableColumn>> columns;
    for (std::size_t i = 0; i < data.columnCount(); ++i) {
        columns.push_back(std::make_unique<TableColumn>(static_cast<ColumnId>(i), data.column(i).info));
        columns.back()->cells = data.column(i).cells.copy(RowRange(rows));
    }
    return make_value_table(std::move(columns), rows.size(), {});
}

GenericValue total_rows(const IValueTableBaseRO& table, wstring_view expression, const Filter& filter) {
    return filtered_total(data_of(table), Value(expression), to_value(filter));
}

std::size_t keep_rows(IValueTable& table, const Filter& filter) {
    TableData& data = data_of(table);
    const std::size_t before = data.rows().size();
    data.keepRows(passing_rows(data, filter));
    return before - data.rows().size();
}

std::size_t delete_rows(IValueTable& table, const Filter& filter) {
    TableData& data = data_of(table);
    const std::vector<RowId> rows = passing_rows(data, filter);
    data.keepRows(other_rows(data, rows));
    return rows.size();
}

std::int32_t add_column(IValueTable& table, wstring_view name, wstring_view expression,
                        const ExpressionParameters& parameters) {
    TableData& data = data_of(table);
    add_computed_column(data, name, expression, parameters);
    return data.column(data.columnCount() - 1).id;
}

void sort_rows(IValueTable& table, wstring_view order, const ExpressionParameters& parameters) {
    TableData& data = data_of(table);
    const SortOrder read = read_order(data, order, parameters);
    data.reorder(kNoRow, sorted_rows(RowList(data, kNoRow, false).range(), read.columns));
    data.tellRowsSorted(kNoRow);
}

} // namespace core
