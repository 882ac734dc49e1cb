// SPDX-License-Identifier: Apache-2.0
#include "core/tables/objects/row_collection.h"

#include "core/collections/array_impl.h"

#include <core/collections/value_structure.h>
#include <core/context/arguments.h>
#include <core/context/errors.h>
#include <core/tables/errors.h>
#include <core/tables/filter.h>
#include <core/values/errors.h>

namespace core {

std::vector<RowCondition> filter_argument(const TableData& data, const Value& argument, int param) {
    const auto structure = argument.query<IValueStructure>();
    if (!structure)
        parameter_type_mismatch(param);
    std::vector<RowCondition> filter;
    std::size_t position = 0;
    for (IValuePairs::View pair; structure->next(position, pair);)
        filter.push_back({&data.column(column_named(data, *pair.key->asString())), pair.value});
    return filter;
}

std::vector<Value> array_argument(const Value& argument, int param) {
    return copy_values(*object_argument<IValueSequence>(argument, param));
}

GenericValue array_of_rows(TableData& data, std::span<const RowId> rows) {
    std::vector<Value> values;
    values.reserve(rows.size());
    for (const RowId row : rows)
        values.push_back(row_value(data, row));
    return Value(create_value_array(std::move(values)).query<IValue>());
}

GenericValue find_row(TableData& data, RowId parent, bool subordinates, const Value& value,
                      const Value& columns) {
    if (value.isObject() && value.type() == Type(kFilterType)) {
        const std::vector<RowId> rows = filtered_rows(data, parent, subordinates, value, 0);
        return rows.empty() ? GenericValue() : row_value(data, rows.front());
    }
    std::vector<const TableColumn*> searched;
    for (const std::size_t column : optional_columns_argument(data, columns, 1))
        searched.push_back(&data.column(column));
    const RowId row = first_row_with(data, parent, subordinates, searched, value);
    return row != kNoRow ? row_value(data, row) : GenericValue();
}

namespace {

/// The rows below a parent in their new order.
struct SortedRows {
    RowId parent;
    std::vector<RowId> rows;
};

} // namespace

std::vector<Value> column_values(const TableData& data, RowId parent, std::size_t column) {
    const CellColumn& cells = data.column(column).cells;
    std::vector<Value> values;
    values.reserve(data.rowsOf(parent).size());
    data.rowsOf(parent).walk([&](RowId row) {
        values.push_back(cells.get(row));
        return true;
    });
    return values;
}

void sort_rows(TableData& data, RowId parent, bool subordinates, const Value& columns,
               const Value& comparison, int comparisonParam) {
    const SortOrder order = sort_argument(data, columns, 0);
    const std::span<const SortColumn> sort = order.columns;
    const auto object = comparison.query<ICompareValues>();
    if (!object && !comparison.isUndefined())
        parameter_type_mismatch(comparisonParam);
    sort_rows(data, parent, subordinates, sort, object.get());
}

void sort_rows(TableData& data, RowId parent, bool subordinates, std::span<const SortColumn> columns,
               ICompareValues* comparison) {
    if (comparison == nullptr && !data.isTree()) {
        data.reorder(parent, sorted_rows(RowList(data, parent, false).range(), columns));
        data.tellRowsSorted(parent);
        return;
    }
    // All orders are found before the first is changed, so that a failure moves no row. An object that
    // compares may have changed the table: the orders found are then worth nothing.
    const std::uint64_t version = data.version();
    std::vector<SortedRows> orders = {{parent, data.rowsOf(parent).rows()}};
    for (std::size_t i = 0; i < orders.size(); ++i) {
        const RowRange rows{std::span<const RowId>(orders[i].rows)};
        std::vector<RowId> sorted =
            comparison != nullptr ? sorted_rows(rows, columns, *comparison) : sorted_rows(rows, columns);
        if (data.version() != version)
            throw_error<ContextException>(messages::kChangedWhileSorting);
        orders[i].rows.swap(sorted);
        for (std::size_t row = 0; subordinates && row < orders[i].rows.size(); ++row) {
            const RowId below = orders[i].rows[row];
            if (data.rowsOf(below).size() != 0)
                orders.push_back({below, data.rowsOf(below).rows()});
        }
    }
    for (const SortedRows& sorted : orders)
        data.reorder(sorted.parent, sorted.rows);
    data.tellRowsSorted(parent);
}

} // namespace core
