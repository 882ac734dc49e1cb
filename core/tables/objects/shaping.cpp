// SPDX-License-Identifier: Apache-2.0
// Trees and structures of tables, and the way back, for C++ code.
#include "core/tables/objects/table_arguments.h"
#include "core/tables/objects/table_parts.h"
#include "core/tables/objects/tree_objects.h"
#include "core/tables/shape/added_rows.h"
#include "core/tables/shape/tree_rows.h"

#include <core/collections/value_structure.h>
#include <core/context/arguments.h>
#include <core/tables/errors.h>
#include <core/tables/structures.h>
#include <core/tables/trees.h>
#include <core/values/errors.h>

#include <algorithm>

namespace core {
namespace {

TableData& own_tree(IValueTree& tree) {
    TableData* const data = tree_data_of(tree);
    if (data == nullptr)
        parameter_type_mismatch(0);
    return *data;
}

ColumnList positions_of(const TableData& data, const std::vector<wstring>& columns) {
    ColumnList positions;
    for (const wstring& column : columns) {
        positions.push_back(column_named(data, column));
        if (std::count(positions.begin(), positions.end(), positions.back()) != 1)
            throw_error<ContextException>(messages::kColumnTwice, {column});
    }
    return positions;
}

wstring_view require_separator(wstring_view separator) {
    if (separator.empty())
        parameter_value_mismatch(1);
    return separator;
}

} // namespace

void add_rows(IValueTable& table, const Value& rows, Losses* losses, const TableWork& work) {
    TableData* const data = table_data_of(table);
    if (data == nullptr)
        parameter_type_mismatch(0);
    WorkWatch watch(work);
    AddedRows added(*data, watch);
    Losses lost;
    if (const auto other = rows.query<IValueTableBaseRO>())
        added.read(own_table(*other, 1), lost);
    else
        added.read(object_argument<IValueSequence>(rows, 1)->values(), lost);
    if (losses == nullptr)
        lost.check();
    added.put();
    if (losses != nullptr)
        *losses = std::move(lost);
}

InterfacePtr<IValueTable> table_of_rows(const Value& rows, const TableWork& work) {
    InterfacePtr<IValueTable> table = create_value_table();
    add_rows(*table, rows, nullptr, work);
    return table;
}

InterfacePtr<IValueArray> structures_of(IValueTableBaseRO& table, const TableWork& work) {
    const TableData& data = own_table(table, 0);
    std::vector<Value> names;
    for (std::size_t i = 0; i < data.columnCount(); ++i)
        names.emplace_back(data.column(i).info.name);
    std::vector<Value> structures;
    structures.reserve(data.rows().size());
    WorkWatch watch(work);
    watch.expect(data.rows().size());
    data.rows().walk([&](RowId row) {
        watch.step(1);
        const auto structure = create_value_structure();
        for (std::size_t i = 0; i < names.size(); ++i)
            structure->insert(names[i], data.get(row, i));
        structures.emplace_back(structure.query<IValue>());
        return true;
    });
    return create_value_array(std::move(structures));
}

InterfacePtr<IValueTree> tree_by_parent(IValueTableBaseRO& table, wstring_view key, wstring_view parent,
                                        const TableWork& work) {
    const TableData& data = own_table(table, 0);
    const std::size_t keys = column_named(data, key);
    const std::size_t parents = column_named(data, parent);
    WorkWatch watch(work);
    return make_value_tree([&](TableData& tree) { tree_by_parent(data, keys, parents, tree, watch); });
}

InterfacePtr<IValueTable> table_by_parent(IValueTree& tree, wstring_view key, wstring_view parent,
                                          const TableWork& work) {
    WorkWatch watch(work);
    return table_of(table_by_parent(own_tree(tree), key, parent, watch));
}

InterfacePtr<IValueTree> tree_by_path(IValueTableBaseRO& table, wstring_view path, wstring_view separator,
                                      const TableWork& work) {
    const TableData& data = own_table(table, 0);
    const std::size_t paths = column_named(data, path);
    static_cast<void>(require_separator(separator));
    WorkWatch watch(work);
    return make_value_tree([&](TableData& tree) { tree_by_path(data, paths, separator, tree, watch); });
}

InterfacePtr<IValueTable> table_by_path(IValueTree& tree, wstring_view path, wstring_view separator,
                                        const TableWork& work) {
    const TableData& data = own_tree(tree);
    WorkWatch watch(work);
    return table_of(table_by_path(data, column_named(data, path), require_separator(separator), watch));
}

InterfacePtr<IValueTree> tree_by_level(IValueTableBaseRO& table, wstring_view level, const TableWork& work) {
    const TableData& data = own_table(table, 0);
    const std::size_t levels = column_named(data, level);
    WorkWatch watch(work);
    return make_value_tree([&](TableData& tree) { tree_by_level(data, levels, tree, watch); });
}

InterfacePtr<IValueTable> table_by_level(IValueTree& tree, wstring_view level, const TableWork& work) {
    WorkWatch watch(work);
    return table_of(table_by_level(own_tree(tree), level, watch));
}

InterfacePtr<IValueTree> copy_tree(IValueTree& tree, const std::vector<wstring>& columns,
                                   const TableWork& work) {
    const TableData& data = own_tree(tree);
    const ColumnList positions =
        columns.empty() ? optional_columns_argument(data, Value(), 1) : positions_of(data, columns);
    WorkWatch watch(work);
    return make_value_tree([&](TableData& copy) { copy_tree(data, positions, copy, watch); });
}

void group_tree(IValueTree& tree, const std::vector<wstring>& columns, const std::vector<wstring>& totals,
                const TableWork& work) {
    TableData& data = own_tree(tree);
    const ColumnList keys = positions_of(data, columns);
    const ColumnList sums = positions_of(data, totals);
    check_grouping(data, keys, sums);
    WorkWatch watch(work);
    TableData fresh(data.owner(), true);
    group_tree(data, keys, sums, fresh, watch);
    data.replace(fresh);
}

} // namespace core
