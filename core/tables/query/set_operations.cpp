// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/set_operations.h"

#include "core/tables/query/cell_gather.h"
#include "core/tables/query/grouping.h"
#include "core/tables/query/match_keys.h"
#include "core/tables/query/row_search.h"

#include <core/strings/integer_text.h>
#include <core/tables/errors.h>
#include <core/values/errors.h>

namespace core {
namespace {

/// The columns of two tables by their names.
std::vector<ColumnPair> same_columns(const TableData& left, const TableData& right) {
    std::vector<ColumnPair> pairs;
    for (std::size_t i = 0; i < left.columnCount(); ++i) {
        const TableColumn& column = left.column(i);
        const auto other = right.findColumn(column.info.name);
        if (!other)
            throw_error<ContextException>(messages::kColumnsDiffer, {column.info.name});
        pairs.push_back({&column, &right.column(*other)});
    }
    for (std::size_t i = 0; i < right.columnCount() && pairs.size() < right.columnCount(); ++i) {
        if (!left.findColumn(right.column(i).info.name))
            throw_error<ContextException>(messages::kColumnsDiffer, {right.column(i).info.name});
    }
    return pairs;
}

/// The first one of each of the rows that are equal in all columns.
std::vector<RowId> first_rows(RowRange rows, std::span<const CellColumn* const> columns, WorkWatch& watch) {
    return group_rows(rows, columns, watch).firstRows;
}

} // namespace

TableContent unite_tables(const TableData& left, const TableData& right, EqualRows equal, WorkWatch& watch) {
    const std::vector<ColumnPair> pairs = same_columns(left, right);
    const RowList leftRows(left, kNoRow, false);
    const RowList rightRows(right, kNoRow, false);
    const std::uint64_t count = std::uint64_t{left.rows().size()} + right.rows().size();
    if (count >= kNoRow)
        throw_error<ContextException>(messages::kTooManyRows, {string_intto(count)});
    watch.expect(count * pairs.size());
    NewColumns all(static_cast<std::size_t>(count));
    for (const ColumnPair& pair : pairs) {
        ColumnInfo info = pair.left->info;
        info.domain.merge(pair.right->info.domain);
        const CellRun runs[] = {{&pair.left->cells, leftRows.range()},
                                {&pair.right->cells, rightRows.range()}};
        all.add(std::move(info), gather_cells(runs, watch));
    }
    TableContent content = all.take();
    if (equal == EqualRows::all)
        return content;
    std::vector<const CellColumn*> cells;
    for (const auto& column : content.columns)
        cells.push_back(&column->cells);
    const std::vector<RowId> rows = first_rows(RowRange(content.rows), cells, watch);
    if (rows.size() == content.rows)
        return content;
    NewColumns once(rows.size());
    for (const auto& column : content.columns)
        once.add(std::move(column->info), gather_cells(column->cells, RowRange(rows), watch));
    return once.take();
}

TableContent compare_tables(const TableData& left, const TableData& right, RowsOfOther wanted,
                            WorkWatch& watch) {
    const std::vector<ColumnPair> pairs = same_columns(left, right);
    const RowList leftList(left, kNoRow, false);
    const RowList rightList(right, kNoRow, false);
    std::vector<const CellColumn*> cells;
    for (const ColumnPair& pair : pairs) {
        require_shared_kinds(leftList.range(), rightList.range(), pair, SharedKinds::some);
        cells.push_back(&pair.left->cells);
    }
    std::vector<RowId> rows;
    {
        const MatchKeys keys =
            match_keys(leftList.range(), rightList.range(), pairs, BlankCells::equal, watch);
        std::vector<bool> known(static_cast<std::size_t>(keys.count));
        for (const std::uint32_t key : keys.right)
            known[key] = true;
        known[MatchKeys::kNoKey] = false;
        for (std::size_t i = 0; i < keys.left.size(); ++i) {
            if (known[keys.left[i]] == (wanted == RowsOfOther::required))
                rows.push_back(leftList.range()[i]);
        }
    }
    rows = first_rows(RowRange(rows), cells, watch);
    NewColumns columns(rows.size());
    for (const ColumnPair& pair : pairs)
        columns.add(pair.left->info, gather_cells(pair.left->cells, RowRange(rows), watch));
    return columns.take();
}

TableContent distinct_rows(const TableData& data, std::span<const std::size_t> columns, WorkWatch& watch) {
    const RowList list(data, kNoRow, false);
    std::vector<const CellColumn*> cells;
    for (const std::size_t position : columns)
        cells.push_back(&data.column(position).cells);
    watch.expect(list.range().size() * cells.size());
    const std::vector<RowId> rows = first_rows(list.range(), cells, watch);
    NewColumns made(rows.size());
    for (const std::size_t position : columns)
        made.add(data.column(position).info,
                 gather_cells(data.column(position).cells, RowRange(rows), watch));
    return made.take();
}

} // namespace core
