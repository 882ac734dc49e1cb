// SPDX-License-Identifier: Apache-2.0
#include "core/tables/objects/table_summaries.h"

#include "core/tables/objects/table_arguments.h"
#include "core/tables/objects/table_parts.h"
#include "core/tables/query/expression_parser.h"
#include "core/tables/query/function_names.h"
#include "core/tables/query/group_table.h"
#include "core/tables/query/pivot.h"
#include "core/tables/query/row_search.h"
#include "core/tables/query/row_totals.h"
#include "core/tables/query/windows.h"

#include <core/collections/value_array.h>
#include <core/strings/trim.h>
#include <core/tables/errors.h>
#include <core/values/errors.h>

#include <algorithm>

namespace core {
namespace {

InterfacePtr<IValueTable> made_table(TableContent content) {
    return make_value_table(std::move(content.columns), content.rows, {});
}

GenericValue value_of(const InterfacePtr<IValueTable>& table) {
    return Value(table.query<IValue>());
}

std::vector<const TableColumn*> columns_of(const TableData& data, std::span<const std::size_t> positions) {
    std::vector<const TableColumn*> columns;
    for (const std::size_t position : positions)
        columns.push_back(&data.column(position));
    return columns;
}

std::vector<Aggregate> aggregates_argument(const Value& argument, int param) {
    return read_aggregates(optional_text_argument(argument, param));
}

InterfacePtr<IValueTable> group_by_columns(const TableData& data, Operands& operands,
                                           std::span<const TableColumn* const> keys,
                                           std::span<const Aggregate> aggregates, wstring_view levels,
                                           const TableWork& work) {
    if (keys.empty() && aggregates.empty())
        throw_error<ContextException>(messages::kGroupByNothing);
    WorkWatch watch(work);
    const RowList list(data, kNoRow, false);
    return made_table(
        group_table(list.range(), keys, bind_aggregates(operands, list.range(), aggregates), levels, watch));
}

InterfacePtr<IValueTable> pivot_by_columns(const TableData& data, Operands& operands,
                                           std::span<const TableColumn* const> keys,
                                           const TableColumn& turned, std::span<const Aggregate> aggregates,
                                           std::size_t most, const TableWork& work) {
    if (aggregates.empty())
        parameter_value_mismatch(2);
    WorkWatch watch(work);
    const RowList list(data, kNoRow, false);
    return made_table(pivot_table(list.range(), keys, turned,
                                  bind_aggregates(operands, list.range(), aggregates), most, watch));
}

InterfacePtr<IValueTable> unpivot_columns(const TableData& data, std::span<const TableColumn* const> turned,
                                          const UnpivotNames& names, EmptyCells empty,
                                          const TableWork& work) {
    if (turned.empty())
        parameter_value_mismatch(0);
    std::vector<const TableColumn*> kept;
    for (std::size_t i = 0; i < data.columnCount(); ++i) {
        if (std::find(turned.begin(), turned.end(), &data.column(i)) == turned.end())
            kept.push_back(&data.column(i));
    }
    WorkWatch watch(work);
    const RowList list(data, kNoRow, false);
    return made_table(unpivot_table(list.range(), kept, turned, names, empty, watch));
}

Value total_of(const TableData& data, RowRange rows, const Aggregate& aggregate) {
    Operands operands(data);
    const BoundAggregate bound = bind_aggregates(operands, rows, {&aggregate, 1}).front();
    if (bound.kind == AggregateKind::sum)
        return total(rows, *bound.column);
    if (rows.size() != 0) {
        const TableWork unwatched;
        WorkWatch watch(unwatched);
        return aggregate_cells(bound, rows, one_group(rows), watch).get(0);
    }
    if (bound.kind == AggregateKind::list)
        return Value(create_value_array().query<IValue>());
    return bound.kind == AggregateKind::count || bound.kind == AggregateKind::countDistinct ? Value(0)
                                                                                            : Value();
}

/// Adds columns behind the others: all of them or none.
void add_columns(TableData& data, std::span<const WindowFunction> functions, std::span<WindowCells> cells) {
    const std::size_t before = data.columnCount();
    try {
        for (std::size_t i = 0; i < functions.size(); ++i) {
            TableColumn& column = data.insertColumn(
                data.columnCount(), {.name = functions[i].name, .domain = std::move(cells[i].domain)});
            std::swap(column.cells, cells[i].cells);
        }
    } catch (...) {
        while (data.columnCount() != before)
            data.removeColumn(data.columnCount() - 1);
        throw;
    }
    data.tellColumnsChanged();
}

void add_windows(TableData& data, Operands& operands, std::span<const WindowFunction> functions,
                 std::span<const TableColumn* const> partition, std::span<const SortColumn> order,
                 const TableWork& work) {
    if (functions.empty())
        parameter_value_mismatch(0);
    const RowList list(data, kNoRow, false);
    WorkWatch watch(work);
    const WindowRows window(list.range(), cells_of(partition), order, watch);
    std::vector<WindowCells> cells;
    for (const WindowFunction& function : functions) {
        const bool ranks = function.kind == WindowKind::rank || function.kind == WindowKind::denseRank ||
                           function.kind == WindowKind::rowNumber;
        const TableColumn* const column = ranks ? nullptr : &operands.find(function.argument);
        watch.step(list.range().size());
        cells.push_back(window_cells(function, column, list.range(), window, data.idCount()));
    }
    add_columns(data, functions, cells);
}

/// False, True or a name: the name of the column for levels.
wstring_view levels_argument(const Value& argument, int param) {
    if (argument.asString() != nullptr)
        return trim_all(*argument.asString());
    return flag_argument(argument, param) ? wstring_view(u"Level") : wstring_view();
}

wstring_view name_argument(const Value& argument, int param, wstring_view byDefault) {
    return argument.isUndefined() ? byDefault : trim_all(text_argument(argument, param));
}

} // namespace

GenericValue call_group(const TableData& data, std::span<const GenericValue> arguments) {
    Operands operands(data);
    const auto keys = keys_argument(data, operands, arguments[0], 0);
    return value_of(group_by_columns(data, operands, keys, aggregates_argument(arguments[1], 1),
                                     levels_argument(arguments[2], 2), {}));
}

GenericValue call_pivot(const TableData& data, std::span<const GenericValue> arguments) {
    Operands operands(data);
    const auto keys = keys_argument(data, operands, arguments[0], 0);
    const wstring_view* const text = arguments[1].asString();
    const TableColumn& turned = text != nullptr && has_expression(*text)
                                    ? operands.find(*text)
                                    : data.column(column_argument(data, arguments[1], 1));
    return value_of(pivot_by_columns(data, operands, keys, turned, aggregates_argument(arguments[2], 2),
                                     count_argument(arguments[3], 3, kMostPivotColumns), {}));
}

GenericValue call_unpivot(const TableData& data, std::span<const GenericValue> arguments) {
    const ColumnList turned = column_list_argument(data, arguments[0], 0);
    const UnpivotNames names{name_argument(arguments[1], 1, u"Name"),
                             name_argument(arguments[2], 2, u"Value")};
    const bool keep = flag_argument(arguments[3], 3);
    return value_of(unpivot_columns(data, columns_of(data, turned), names,
                                    keep ? EmptyCells::keep : EmptyCells::skip, {}));
}

void call_add_window(TableData& data, std::span<const GenericValue> arguments) {
    const std::vector<WindowFunction> functions = read_windows(text_argument(arguments[0], 0));
    Operands operands(data);
    std::vector<const TableColumn*> partition;
    if (!arguments[1].isUndefined())
        partition = keys_argument(data, operands, arguments[1], 1);
    SortOrder order;
    if (!trim_all(optional_text_argument(arguments[2], 2)).empty())
        order = sort_argument(data, arguments[2], 2);
    add_windows(data, operands, functions, partition, order.columns, {});
}

Value call_total(const TableData& data, RowRange rows, const Value& column) {
    const wstring_view* const text = column.asString();
    if (text == nullptr || text->find(u'(') == wstring_view::npos)
        return total(rows, data.column(column_argument(data, column, 0)));
    const std::vector<Aggregate> aggregates = read_aggregates(*text);
    if (aggregates.size() != 1)
        parameter_value_mismatch(0);
    return total_of(data, rows, aggregates.front());
}

InterfacePtr<IValueTable> group(IValueTableBaseRO& table, const std::vector<wstring>& columns,
                                const std::vector<Aggregate>& aggregates, wstring_view levels,
                                const TableWork& work) {
    const TableData& data = own_table(table, 0);
    Operands operands(data);
    return group_by_columns(data, operands, operands.keys(columns), aggregates, levels, work);
}

GenericValue total(IValueTableBaseRO& table, const Aggregate& aggregate) {
    const TableData& data = own_table(table, 0);
    return total_of(data, RowList(data, kNoRow, false).range(), aggregate);
}

InterfacePtr<IValueTable> pivot(IValueTableBaseRO& table, const std::vector<wstring>& rows,
                                wstring_view column, const std::vector<Aggregate>& aggregates,
                                std::size_t most, const TableWork& work) {
    const TableData& data = own_table(table, 0);
    Operands operands(data);
    return pivot_by_columns(data, operands, operands.keys(rows), operands.find(column), aggregates, most,
                            work);
}

InterfacePtr<IValueTable> unpivot(IValueTableBaseRO& table, const std::vector<wstring>& columns,
                                  wstring_view name, wstring_view value, EmptyCells empty,
                                  const TableWork& work) {
    const TableData& data = own_table(table, 0);
    return unpivot_columns(data, Operands(data).columns(columns), {name, value}, empty, work);
}

void add_windows(IValueTable& table, const std::vector<WindowFunction>& functions,
                 const std::vector<wstring>& partition, wstring_view order, const TableWork& work) {
    TableData* const own = table_data_of(table);
    if (own == nullptr)
        parameter_type_mismatch(0);
    TableData& data = *own;
    SortOrder sort;
    if (!trim_all(order).empty())
        sort = sort_argument(data, Value(order), 3);
    Operands operands(data);
    add_windows(data, operands, functions, operands.keys(partition), sort.columns, work);
}

} // namespace core
