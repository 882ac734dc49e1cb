// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/pivot.h"

#include "core/tables/convert/column_names.h"
#include "core/tables/query/cell_gather.h"
#include "core/tables/query/filled_cells.h"
#include "core/tables/sort/value_ranks.h"

#include <core/strings/integer_text.h>
#include <core/tables/errors.h>
#include <core/values/errors.h>

#include <algorithm>
#include <numeric>

namespace core {
namespace {

/// The values of a column that become columns, in their order.
struct TurnedValues {
    std::vector<Value> values;         ///< by group
    std::vector<std::uint32_t> sorted; ///< the groups, in the order of their values
};

TurnedValues turned_values(const RowGroups& groups, const TableColumn& turned, std::size_t most) {
    if (groups.firstRows.size() > most)
        throw_error<ContextException>(messages::kPivotColumns, {turned.info.name, string_intto(most)});
    TurnedValues turnedValues;
    for (const RowId row : groups.firstRows)
        turnedValues.values.push_back(turned.cells.get(row));
    const auto ranks = rank_values(turnedValues.values, RowRange(turnedValues.values.size()));
    turnedValues.sorted.resize(ranks.size());
    std::iota(turnedValues.sorted.begin(), turnedValues.sorted.end(), 0U);
    std::ranges::sort(turnedValues.sorted, {}, [&](std::uint32_t group) { return ranks[group]; });
    return turnedValues;
}

/// What people read for a value above its column.
wstring title_of(const Value& value) {
    wstring title = value.presentation();
    return title.empty() ? wstring(u"Empty") : title;
}

bool counts(AggregateKind kind) noexcept {
    return kind == AggregateKind::count || kind == AggregateKind::countDistinct;
}

/// The parts of each row group: those of one value of the turned column have its number.
struct Parts {
    RowGroups groups;
    std::vector<std::uint32_t> row;   ///< of each part: the row group
    std::vector<std::uint32_t> value; ///< of each part: the group of the turned column
};

Parts parts_of(const RowGroups& rowGroups, const RowGroups& valueGroups, RowRange rows,
               const CellColumn& turned, WorkWatch& watch) {
    Parts parts{rowGroups, {}, {}};
    split_groups(parts.groups, rows, turned, watch);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (parts.groups.groups[i] == parts.row.size()) { // numbered in the order of their first rows
            parts.row.push_back(rowGroups.groups[i]);
            parts.value.push_back(valueGroups.groups[i]);
        }
    }
    return parts;
}

/// The columns that one aggregate makes, by the group of the turned column.
std::vector<CellColumn> turned_cells(const BoundAggregate& aggregate, RowRange rows, const Parts& parts,
                                     std::size_t rowCount, std::size_t columnCount, WorkWatch& watch) {
    const CellColumn cells = aggregate_cells(aggregate, rows, parts.groups, watch);
    std::vector<CellColumn> columns(columnCount);
    for (CellColumn& column : columns) {
        if (counts(aggregate.kind))
            column.fill(rowCount, 0);
        else
            column.grow(rowCount);
    }
    for (std::size_t part = 0; part < parts.row.size(); ++part) {
        watch.turn();
        columns[parts.value[part]].put(parts.row[part], cells.get(static_cast<RowId>(part)));
    }
    return columns;
}

/// The description that holds the cells of several columns.
TypeDomain common_domain(std::span<const TableColumn* const> columns) {
    TypeDomain domain = columns.front()->info.domain;
    for (const TableColumn* const column : columns) {
        const TypeDomain& other = column->info.domain;
        if (domain.isEmpty() || other.isEmpty())
            return {};
        domain.merge(other);
    }
    return domain;
}

} // namespace

TableContent pivot_table(RowRange rows, std::span<const TableColumn* const> keys, const TableColumn& turned,
                         std::span<const BoundAggregate> aggregates, std::size_t most, WorkWatch& watch) {
    const CellColumn* const turnedCells[] = {&turned.cells};
    const RowGroups valueGroups = group_rows(rows, turnedCells, watch);
    const TurnedValues values = turned_values(valueGroups, turned, most);
    const RowGroups rowGroups = group_rows(rows, cells_of(keys), watch);
    const Parts parts = parts_of(rowGroups, valueGroups, rows, turned.cells, watch);

    NewColumns columns(rowGroups.firstRows.size());
    ColumnNames names;
    for (const TableColumn* const key : keys) {
        columns.add(key->info, gather_cells(key->cells, RowRange(rowGroups.firstRows), watch));
        static_cast<void>(names.make(key->info.name));
    }
    std::vector<std::vector<CellColumn>> byAggregate;
    for (const BoundAggregate& aggregate : aggregates)
        byAggregate.push_back(
            turned_cells(aggregate, rows, parts, rowGroups.firstRows.size(), values.values.size(), watch));
    for (const std::uint32_t group : values.sorted) {
        for (std::size_t i = 0; i < aggregates.size(); ++i) {
            wstring title = title_of(values.values[group]);
            if (aggregates.size() > 1)
                title += u"_" + aggregates[i].name;
            ColumnInfo info{.name = names.make(title), .domain = domain_of(aggregates[i])};
            if (info.name != title)
                info.title.set(Locale(), title);
            if (!counts(aggregates[i].kind))
                admit_undefined(info.domain);
            columns.add(std::move(info), std::move(byAggregate[i][group]));
        }
    }
    return columns.take();
}

TableContent unpivot_table(RowRange rows, std::span<const TableColumn* const> kept,
                           std::span<const TableColumn* const> turned, const UnpivotNames& names,
                           EmptyCells empty, WorkWatch& watch) {
    auto dictionary = std::make_unique<ValueDictionary>();
    std::vector<ValueDictionary::Code> nameCodes;
    for (const TableColumn* const column : turned)
        nameCodes.push_back(dictionary->add(Value(column->info.name)));

    const std::size_t count = turned.size();
    std::vector<bool> taken(rows.size() * count, empty == EmptyCells::keep);
    if (empty == EmptyCells::skip) {
        for (std::size_t c = 0; c < count; ++c)
            for_each_filled(rows, turned[c]->cells, watch,
                            [&](std::size_t i, RowId) { taken[i * count + c] = true; });
    }
    const auto made = static_cast<std::size_t>(std::count(taken.begin(), taken.end(), true));
    if (made > kNoRow)
        throw_error<ContextException>(messages::kTooManyRows, {string_intto(made)});
    std::vector<RowId> picked;
    std::vector<ValueDictionary::Code> codes;
    CellColumn cells;
    cells.grow(made);
    watch.inPieces(taken.size(), [&](std::size_t begin, std::size_t end) {
        for (std::size_t cell = begin; cell < end; ++cell) {
            if (!taken[cell])
                continue;
            watch.turn();
            const RowId row = rows[cell / count];
            cells.put(static_cast<RowId>(picked.size()), turned[cell % count]->cells.get(row));
            picked.push_back(row);
            codes.push_back(nameCodes[cell % count]);
        }
    });
    NewColumns columns(picked.size());
    for (const TableColumn* const column : kept)
        columns.add(column->info, gather_cells(column->cells, RowRange(picked), watch));
    columns.add({.name = wstring(names.name), .domain = TypeDomain(kStringType)},
                CellColumn::ofCodes(std::move(dictionary), std::move(codes)));
    columns.add({.name = wstring(names.value), .domain = common_domain(turned)}, std::move(cells));
    return columns.take();
}

} // namespace core
