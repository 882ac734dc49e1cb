// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/cell_gather.h"
#include "core/tables/shape/tree_rows.h"

#include <core/strings/integer_text.h>
#include <core/tables/errors.h>
#include <core/values/errors.h>

namespace core {
namespace {

/// All rows of a tree, each before those below it, and the position of the row above each.
struct FlatTree {
    static constexpr std::uint32_t kNone = ~std::uint32_t{0};

    std::vector<RowId> rows;
    std::vector<std::uint32_t> above; ///< kNone for a topmost row

    FlatTree(const TableData& tree, WorkWatch& watch)
        : rows(tree.withSubordinates(tree.rows().rows())), above(rows.size(), kNone) {
        RowId highest = 0;
        for (const RowId row : rows)
            highest = std::max(highest, row);
        std::vector<std::uint32_t> positions(rows.empty() ? 0 : std::size_t{highest} + 1);
        for (std::size_t i = 0; i < rows.size(); ++i) {
            watch.turn();
            positions[rows[i]] = static_cast<std::uint32_t>(i);
            if (const RowId parent = tree.parentOf(rows[i]); parent != kNoRow)
                above[i] = positions[parent];
        }
    }
};

ColumnInfo number_column(wstring_view name) {
    return {.name = wstring(name), .domain = TypeDomain(kNumberType)};
}

CellColumn cells_of(std::span<const Value> values, WorkWatch& watch) {
    CellColumn cells;
    cells.grow(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        watch.turn();
        cells.put(static_cast<RowId>(i), values[i]);
    }
    return cells;
}

/// The keys of the rows: the cells of a column, which must be filled and differ.
std::vector<Value> keys_of(const FlatTree& flat, const TableColumn& column, WorkWatch& watch) {
    std::vector<Value> keys;
    keys.reserve(flat.rows.size());
    ValueDictionary known;
    for (std::size_t i = 0; i < flat.rows.size(); ++i) {
        watch.turn();
        keys.push_back(column.cells.get(flat.rows[i]));
        if (keys.back().isUndefined() || keys.back().kind() == ValueKind::null)
            throw_error<ContextException>(messages::kTreeNoKey, {row_number(i), column.info.name});
        if (known.add(keys.back()) != i + 1)
            throw_error<ContextException>(messages::kTreeKeyTwice,
                                          {row_number(i), keys.back().presentation(), column.info.name});
    }
    return keys;
}

std::vector<Value> numbers_of(std::size_t count) {
    std::vector<Value> numbers;
    numbers.reserve(count);
    for (std::size_t i = 1; i <= count; ++i)
        numbers.emplace_back(i);
    return numbers;
}

/// Calls `add(position)` for each column of a tree and tells how many cells that makes.
template <class Add>
void for_columns(const TableData& tree, const FlatTree& flat, WorkWatch& watch, Add add) {
    watch.expect(flat.rows.size() * tree.columnCount());
    for (std::size_t i = 0; i < tree.columnCount(); ++i)
        add(i);
}

} // namespace

TableContent table_by_parent(const TableData& tree, wstring_view key, wstring_view parent, WorkWatch& watch) {
    const FlatTree flat(tree, watch);
    const auto own = tree.findColumn(key);
    const auto replaced = tree.findColumn(parent);
    const std::vector<Value> keys =
        own ? keys_of(flat, tree.column(*own), watch) : numbers_of(flat.rows.size());
    std::vector<Value> parents;
    parents.reserve(keys.size());
    for (const std::uint32_t above : flat.above)
        parents.push_back(above != FlatTree::kNone ? keys[above] : Value());
    ColumnInfo info = replaced ? tree.column(*replaced).info : ColumnInfo{.name = wstring(parent)};
    info.domain = own ? tree.column(*own).info.domain : TypeDomain(kNumberType);
    if (!info.domain.isEmpty())
        info.domain.addType(kUndefinedType);
    NewColumns columns(flat.rows.size());
    if (!own)
        columns.add(number_column(key), cells_of(keys, watch));
    if (!replaced)
        columns.add(info, cells_of(parents, watch));
    for_columns(tree, flat, watch, [&](std::size_t i) {
        if (i == replaced)
            columns.add(info, cells_of(parents, watch));
        else
            columns.add(tree.column(i).info, gather_cells(tree.column(i).cells, RowRange(flat.rows), watch));
    });
    return columns.take();
}

TableContent table_by_path(const TableData& tree, std::size_t path, wstring_view separator,
                           WorkWatch& watch) {
    const FlatTree flat(tree, watch);
    const TableColumn& column = tree.column(path);
    std::vector<wstring> paths;
    std::vector<Value> cells;
    for (std::size_t i = 0; i < flat.rows.size(); ++i) {
        watch.turn();
        const Value cell = column.cells.get(flat.rows[i]);
        const wstring_view* const name = cell.asString();
        if (name == nullptr)
            throw_error<ContextException>(messages::kTreeNoPath, {row_number(i), column.info.name});
        if (name->find(separator) != wstring_view::npos)
            throw_error<ContextException>(messages::kTreeSeparator, {row_number(i), wstring(*name),
                                                                     column.info.name, wstring(separator)});
        const std::uint32_t above = flat.above[i];
        paths.push_back(above != FlatTree::kNone ? paths[above] + wstring(separator) + wstring(*name)
                                                 : wstring(*name));
        cells.emplace_back(paths.back());
    }
    NewColumns columns(flat.rows.size());
    for_columns(tree, flat, watch, [&](std::size_t i) {
        ColumnInfo info = tree.column(i).info;
        if (i == path)
            info.domain.setStringQualifiers({}); // a path is longer than its names
        columns.add(std::move(info), i == path
                                         ? cells_of(cells, watch)
                                         : gather_cells(tree.column(i).cells, RowRange(flat.rows), watch));
    });
    return columns.take();
}

TableContent table_by_level(const TableData& tree, wstring_view level, WorkWatch& watch) {
    const FlatTree flat(tree, watch);
    std::vector<std::int64_t> levels;
    levels.reserve(flat.rows.size());
    for (const std::uint32_t above : flat.above)
        levels.push_back(above != FlatTree::kNone ? levels[above] + 1 : 0);
    NewColumns columns(flat.rows.size());
    columns.add(number_column(level), CellColumn::ofWords(CellColumn::Form::numbers, 0, std::move(levels)));
    for_columns(tree, flat, watch, [&](std::size_t i) {
        columns.add(tree.column(i).info, gather_cells(tree.column(i).cells, RowRange(flat.rows), watch));
    });
    return columns.take();
}

} // namespace core
