// SPDX-License-Identifier: Apache-2.0
#include "core/tables/objects/checked_rows.h"

#include "core/tables/objects/row_collection.h"
#include "core/tables/query/row_totals.h"

#include <core/tables/errors.h>
#include <core/values/errors.h>

#include <algorithm>
#include <numeric>

namespace core {

ColumnList CheckedRows::columns(std::span<const std::int32_t> ids) const {
    ColumnList columns;
    for (const std::int32_t id : ids) {
        columns.push_back(column(id));
        if (std::find(columns.begin(), columns.end() - 1, columns.back()) != columns.end() - 1)
            throw_error<ContextException>(messages::kColumnTwice, {data_.column(columns.back()).info.name});
    }
    return columns;
}

ColumnList CheckedRows::columnsOrAll(std::span<const std::int32_t> ids) const {
    if (!ids.empty())
        return columns(ids);
    ColumnList all(data_.columnCount());
    std::iota(all.begin(), all.end(), std::size_t{0});
    return all;
}

void CheckedRows::checkInsertion(std::size_t position, std::span<const Value> cells) const {
    if (position > rows().size() || cells.size() > data_.columnCount())
        throw_bad_index();
}

void CheckedRows::move(std::size_t from, std::size_t to) {
    static_cast<void>(at(from));
    static_cast<void>(at(to));
    data_.moveRow(parent_, from, to);
}

std::vector<Value> CheckedRows::unload(std::int32_t id) const {
    return column_values(data_, parent_, column(id));
}

RowId CheckedRows::find(const Value& value, std::span<const std::int32_t> ids, bool deep) const {
    std::vector<const TableColumn*> searched;
    for (const std::size_t position : columnsOrAll(ids))
        searched.push_back(&data_.column(position));
    return first_row_with(data_, parent_, deep, searched, value);
}

std::vector<RowId> CheckedRows::findRows(std::span<const VTFindParam> filter, bool deep) const {
    std::vector<RowCondition> conditions;
    for (const VTFindParam& param : filter)
        conditions.push_back({&data_.column(column(param.column)), &param.value});
    return matching_rows(data_, parent_, deep, conditions);
}

Value CheckedRows::total(std::int32_t id, bool deep) const {
    const std::size_t position = column(id);
    const RowList list(data_, parent_, deep);
    return core::total(list.range(), data_.column(position));
}

void CheckedRows::sort(std::span<const VTSortParam> columns, bool deep, ICompareValues* comparison) {
    if (columns.empty())
        return;
    std::vector<std::int32_t> ids;
    for (const VTSortParam& param : columns)
        ids.push_back(param.column);
    const ColumnList positions = this->columns(ids);
    std::vector<SortColumn> sort;
    for (std::size_t i = 0; i < columns.size(); ++i)
        sort.push_back({&data_.column(positions[i]).cells, columns[i].descending});
    sort_rows(data_, parent_, deep, sort, comparison);
}

} // namespace core
