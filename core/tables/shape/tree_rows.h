// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/table_data.h"
#include "core/tables/query/new_columns.h"
#include "core/tables/query/work_watch.h"

#include <core/strings/integer_text.h>

/// Rows of a table that say which row each is below, made a tree, and the way back. <core/tables/trees.h>
/// says what each function does and throws. A tree that is filled is empty before, and without columns.
namespace core {

/// The number of a row in messages, which count from 1.
[[nodiscard]] inline wstring row_number(std::size_t position) {
    return string_intto(position + 1);
}

void tree_by_parent(const TableData& table, std::size_t key, std::size_t parent, TableData& tree,
                    WorkWatch& watch);
void tree_by_path(const TableData& table, std::size_t path, wstring_view separator, TableData& tree,
                  WorkWatch& watch);
void tree_by_level(const TableData& table, std::size_t level, TableData& tree, WorkWatch& watch);

[[nodiscard]] TableContent table_by_parent(const TableData& tree, wstring_view key, wstring_view parent,
                                           WorkWatch& watch);
[[nodiscard]] TableContent table_by_path(const TableData& tree, std::size_t path, wstring_view separator,
                                         WorkWatch& watch);
[[nodiscard]] TableContent table_by_level(const TableData& tree, wstring_view level, WorkWatch& watch);

/// Fills an empty tree without columns with some columns of another one, and all its rows.
void copy_tree(const TableData& from, std::span<const std::size_t> columns, TableData& tree,
               WorkWatch& watch);
/// Fills an empty tree without columns with the groups of the rows of another one: below each row, the rows
/// that are equal in the group columns become one, which has the totals of their cells and, below it, the
/// groups of all rows below them.
void group_tree(const TableData& from, std::span<const std::size_t> groupColumns,
                std::span<const std::size_t> totalColumns, TableData& tree, WorkWatch& watch);

} // namespace core
