// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/group_by.h"

#include "core/tables/query/aggregate_cells.h"
#include "core/tables/query/row_search.h"
#include "core/tables/query/row_totals.h"

namespace core {

TypeDomain domain_of_totals(const TypeDomain& domain) {
    TypeDomain totals = domain;
    totals.setNumericQualifiers(NumericQualifiers(0, 0, domain.numericQualifiers().nonnegative()));
    return totals;
}

void group_by(TableData& data, std::span<const std::size_t> groupColumns,
              std::span<const std::size_t> totalColumns) {
    const TableWork unwatched;
    WorkWatch watch(unwatched);
    const RowList list(data, kNoRow, false);
    for (const std::size_t position : totalColumns)
        require_no_texts(list.range(), data.column(position));
    std::vector<const CellColumn*> keys;
    for (const std::size_t position : groupColumns)
        keys.push_back(&data.column(position).cells);
    const RowGroups groups = group_rows(list.range(), keys, watch);
    std::vector<GroupedColumn> columns;
    for (const std::size_t position : groupColumns) {
        const TableColumn& column = data.column(position);
        columns.push_back({position, column.info.domain, column.cells.copy(RowRange(groups.firstRows))});
    }
    for (const std::size_t position : totalColumns) {
        const TableColumn& column = data.column(position);
        columns.push_back({position, domain_of_totals(column.info.domain),
                           group_sums(list.range(), groups, column.cells, column.defaultValue, watch)});
    }
    data.regroup(columns, groups.firstRows.size());
}

} // namespace core
