// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/group_by.h"

#include "core/tables/query/row_search.h"
#include "core/tables/query/row_totals.h"

namespace core {
namespace {

/// The description of a column's sums, which pass any number of digits that the column has.
TypeDomain domain_of_totals(const TypeDomain& domain) {
    TypeDomain totals = domain;
    totals.setNumericQualifiers(NumericQualifiers(0, 0, domain.numericQualifiers().nonnegative()));
    return totals;
}

/// The sums of the groups; a group without a Number has the column's default.
CellColumn total_cells(RowRange rows, const RowGroups& groups, const TableColumn& column) {
    std::vector<Value> sums = group_totals(rows, groups, column.cells);
    CellColumn cells;
    cells.grow(sums.size());
    for (std::size_t i = 0; i < sums.size(); ++i)
        cells.put(static_cast<RowId>(i), sums[i].isUndefined() ? column.defaultValue : sums[i]);
    return cells;
}

} // namespace

void group_by(TableData& data, std::span<const std::size_t> groupColumns,
              std::span<const std::size_t> totalColumns) {
    const RowList list(data, kNoRow, false);
    for (const std::size_t position : totalColumns)
        require_no_texts(list.range(), data.column(position));
    std::vector<const CellColumn*> keys;
    for (const std::size_t position : groupColumns)
        keys.push_back(&data.column(position).cells);
    const RowGroups groups = group_rows(list.range(), keys);
    std::vector<GroupedColumn> columns;
    for (const std::size_t position : groupColumns) {
        const TableColumn& column = data.column(position);
        columns.push_back({position, column.info.domain, column.cells.copy(RowRange(groups.firstRows))});
    }
    for (const std::size_t position : totalColumns) {
        const TableColumn& column = data.column(position);
        columns.push_back(
            {position, domain_of_totals(column.info.domain), total_cells(list.range(), groups, column)});
    }
    data.regroup(columns, groups.firstRows.size());
}

} // namespace core
