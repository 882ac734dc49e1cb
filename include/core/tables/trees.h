// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/tables/table_work.h>
#include <core/tables/value_table.h>
#include <core/tables/value_tree.h>

#include <vector>

/// Tables whose rows say which row they are below, made trees, and trees made tables.
///
/// A tree becomes a table in which each row comes before those below it. All functions except
/// group_tree() return a new object, owned by the caller, and leave what they are given as it is. All throw
/// ContextException: "IDS_VT_UNKNOWN_COLUMN_ERROR" for a column that is not there,
/// "IDS_VT_COLUMNS_NOT_UNIQUE" for a name that two columns would have, "IDS_PARAMETER_N_TYPE_MISMATCH" for a
/// table or a tree of another library; ThreadDeath when they are stopped. Rows are counted from 1 in
/// messages.
namespace core {

/// Returns the tree of a table whose column `parent` holds, for each row, what the row above it has in the
/// column `key`. A row is a topmost one where `parent` is Undefined, Null, or an empty text that no row has
/// as its key. All columns stay. Throws as said above, and ContextException: "IDS_VT_TREE_NO_KEY" for a row
/// without a key, "IDS_VT_TREE_KEY_TWICE" for two rows with one, "IDS_VT_TREE_NO_PARENT" where no row has the
/// key, "IDS_VT_TREE_CIRCLE" for rows that are below themselves.
[[nodiscard]] CORE_API InterfacePtr<IValueTree>
tree_by_parent(IValueTableBaseRO& table, wstring_view key, wstring_view parent, const TableWork& work = {});
/// Returns the table of a tree with the key of the row above in the column `parent`, Undefined in topmost
/// rows. A tree without a column `key` gets one with the numbers 1, 2, 3 and so on. Throws as
/// tree_by_parent() does.
[[nodiscard]] CORE_API InterfacePtr<IValueTable>
table_by_parent(IValueTree& tree, wstring_view key, wstring_view parent, const TableWork& work = {});

/// Returns the tree of a table whose column `path` holds texts as "a/b/c": the row is called "c" and stands
/// below the row of "a/b". Rows that no row of the table is for are added, with the defaults of the other
/// columns; where a path comes twice, what is below it is below the first row. The separator must not be
/// empty. Throws as said above, and ContextException: "IDS_VT_TREE_NO_PATH" for a cell without a text,
/// "IDS_PARAMETER_N_VALUE_MISMATCH" for an empty separator.
[[nodiscard]] CORE_API InterfacePtr<IValueTree> tree_by_path(IValueTableBaseRO& table, wstring_view path,
                                                             wstring_view separator = u"/",
                                                             const TableWork& work = {});
/// Returns the table of a tree whose column `path` holds names; in the table it holds paths. Throws as
/// tree_by_path() does, and ContextException ("IDS_VT_TREE_SEPARATOR") for a name that holds the separator.
[[nodiscard]] CORE_API InterfacePtr<IValueTable>
table_by_path(IValueTree& tree, wstring_view path, wstring_view separator = u"/", const TableWork& work = {});

/// Returns the tree of a table whose column `level` says how many rows each row is below: a row is below the
/// last one before it with a smaller level. This is how save_csv() writes a tree. The column is left out.
/// Throws as said above, and ContextException ("IDS_VT_TREE_LEVEL") for a cell that is not a whole number
/// from 0 to one more than the level of the row before.
[[nodiscard]] CORE_API InterfacePtr<IValueTree>
tree_by_level(IValueTableBaseRO& table, wstring_view level = u"Level", const TableWork& work = {});
/// Returns the table of a tree with a first column `level`, 0 in topmost rows. Throws as said above.
[[nodiscard]] CORE_API InterfacePtr<IValueTable>
table_by_level(IValueTree& tree, wstring_view level = u"Level", const TableWork& work = {});

/// Returns a copy of a tree with some of its columns; no columns stand for all. Throws as said above, and
/// ContextException ("IDS_VT_COLUMNS_NOT_UNIQUE") for a column that comes twice.
[[nodiscard]] CORE_API InterfacePtr<IValueTree>
copy_tree(IValueTree& tree, const std::vector<wstring>& columns = {}, const TableWork& work = {});
/// Collapses a tree to the group columns and the total columns, as IValueTable::groupBy() does with a table:
/// below each row, those that are equal in all group columns become one with the sums of their cells in the
/// total columns; all rows below them are grouped in turn. Objects of rows are detached. Throws as
/// copy_tree() does, and ContextException: "IDS_VT_GROUPBY_INTERSECT_ERROR" for a column in both lists,
/// "IDS_VT_GROUPBY_NO_COLUMN_ERROR" for no column, "IDS_VT_TOTAL_OF_TEXTS" for a total of texts; nothing has
/// changed then.
CORE_API void group_tree(IValueTree& tree, const std::vector<wstring>& columns,
                         const std::vector<wstring>& totals = {}, const TableWork& work = {});

} // namespace core
