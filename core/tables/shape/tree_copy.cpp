// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/group_by.h"
#include "core/tables/query/grouping.h"
#include "core/tables/query/row_totals.h"
#include "core/tables/shape/tree_rows.h"

namespace core {
namespace {

/// Rows below several rows that became one, and the row that they are below from now on.
struct Siblings {
    RowId parent;
    std::vector<RowId> rows;
};

/// The rows of each group, in their order.
std::vector<std::vector<RowId>> rows_of_groups(std::span<const RowId> rows,
                                               std::span<const CellColumn* const> columns, WorkWatch& watch) {
    const RowGroups groups = group_rows(RowRange(rows), columns, watch);
    std::vector<std::vector<RowId>> byGroup(groups.firstRows.size());
    for (std::size_t i = 0; i < rows.size(); ++i)
        byGroup[groups.groups[i]].push_back(rows[i]);
    return byGroup;
}

/// The sum of the Numbers in some rows; the default of the column where none is.
Value sum_of(std::span<const RowId> rows, const TableColumn& column, WorkWatch& watch) {
    Numeric sum;
    bool any = false;
    for (const RowId row : rows) {
        watch.turn();
        const Value cell = column.cells.get(row);
        if (const auto number = cell.asNumeric()) {
            sum += *number;
            any = true;
        }
    }
    return any ? Value(std::move(sum)) : column.defaultValue;
}

} // namespace

void copy_tree(const TableData& from, std::span<const std::size_t> columns, TableData& tree,
               WorkWatch& watch) {
    for (const std::size_t position : columns)
        tree.insertColumn(tree.columnCount(), from.column(position).info);
    const std::vector<RowId> rows = from.withSubordinates(from.rows().rows());
    watch.expect(rows.size() * columns.size());
    std::vector<RowId> copies; // of the rows of the other tree, by their ids
    std::vector<Value> cells(columns.size());
    for (const RowId row : rows) {
        for (std::size_t i = 0; i < cells.size(); ++i)
            cells[i] = from.get(row, columns[i]);
        const RowId above = from.parentOf(row);
        const RowId parent = above != kNoRow ? copies[above] : kNoRow;
        const RowId copy = tree.insertRow(parent, tree.rowsOf(parent).size(), cells, CellSource::stored);
        copies.resize(std::max<std::size_t>(copies.size(), std::size_t{row} + 1));
        copies[row] = copy;
        watch.step(cells.size());
    }
}

void group_tree(const TableData& from, std::span<const std::size_t> groupColumns,
                std::span<const std::size_t> totalColumns, TableData& tree, WorkWatch& watch) {
    const std::vector<RowId> all = from.withSubordinates(from.rows().rows());
    std::vector<const CellColumn*> keys;
    for (const std::size_t position : groupColumns) {
        keys.push_back(&from.column(position).cells);
        tree.insertColumn(tree.columnCount(), from.column(position).info);
    }
    for (const std::size_t position : totalColumns) {
        require_no_texts(RowRange(all), from.column(position));
        ColumnInfo info = from.column(position).info;
        info.domain = domain_of_totals(info.domain);
        tree.insertColumn(tree.columnCount(), std::move(info));
    }
    watch.expect(all.size() * (keys.size() + 1));
    std::vector<Siblings> ahead;
    ahead.push_back({kNoRow, from.rows().rows()});
    std::vector<Value> cells;
    while (!ahead.empty()) {
        const Siblings siblings = std::move(ahead.back());
        ahead.pop_back();
        for (const std::vector<RowId>& rows : rows_of_groups(siblings.rows, keys, watch)) {
            cells.clear();
            for (const CellColumn* const key : keys)
                cells.push_back(key->get(rows.front()));
            for (const std::size_t position : totalColumns)
                cells.push_back(sum_of(rows, from.column(position), watch));
            const std::size_t position = tree.rowsOf(siblings.parent).size();
            Siblings below{tree.insertRow(siblings.parent, position, cells, CellSource::stored), {}};
            for (const RowId row : rows) {
                const std::vector<RowId> children = from.rowsOf(row).rows();
                below.rows.insert(below.rows.end(), children.begin(), children.end());
            }
            if (!below.rows.empty())
                ahead.push_back(std::move(below));
            watch.step(rows.size());
        }
    }
}

} // namespace core
