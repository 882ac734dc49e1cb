// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/table_data.h"
#include "core/tables/objects/table_expressions.h"
#include "core/tables/query/operands.h"

#include <core/context/arguments.h>

#include <span>

/// Reading the arguments of script calls that are rows and columns. Wrong ones throw ContextException: of a
/// wrong type "IDS_PARAMETER_N_TYPE_MISMATCH", others as said.
namespace core {

/// The position of a row below `parent`, which is given by an index or as a row; "IDS_VT_UNKNOWN_ROW_ERROR"
/// for one that is not there.
[[nodiscard]] std::size_t row_argument(const TableData& data, RowId parent, const Value& argument, int param);
/// The same for a row only, at any level.
[[nodiscard]] RowId row_object_argument(const TableData& data, const Value& argument, int param);

/// A column, given by its name, its index or as a column; "IDS_VT_UNKNOWN_COLUMN_ERROR"
/// for one that is not there.
[[nodiscard]] std::size_t column_argument(const TableData& data, const Value& argument, int param);
/// The column of a name.
[[nodiscard]] std::size_t column_named(const TableData& data, wstring_view name);
/// The column with an id.
[[nodiscard]] std::size_t column_with_id(const TableData& data, ColumnId id);

/// Positions of columns.
using ColumnList = std::vector<std::size_t>;
enum class BlankList { refused, noColumn };
/// Names with "," between them. "IDS_VT_UNKNOWN_COLUMN_ERROR", "IDS_VT_COLUMNS_NOT_UNIQUE", and
/// "IDS_PARAMETER_N_VALUE_MISMATCH" where no name stands.
[[nodiscard]] ColumnList column_list_argument(const TableData& data, const Value& argument, int param,
                                              BlankList blank = BlankList::refused);
/// The same; Undefined stands for all columns.
[[nodiscard]] ColumnList optional_columns_argument(const TableData& data, const Value& argument, int param);
/// What rows are grouped by: columns and, borrowed from `operands`, expressions with names.
[[nodiscard]] std::vector<const TableColumn*> keys_argument(const TableData& data, Operands& operands,
                                                            const Value& argument, int param);
/// A column to sort by, as a text names it; the name is borrowed from that.
struct SortItem {
    wstring_view name;
    bool descending;
};
/// Names with "," between them, each of which may be followed by a direction; the names are not looked for.
[[nodiscard]] std::vector<SortItem> sort_items(wstring_view text, int param);
/// The same with the columns of the names, and with expressions among them.
[[nodiscard]] SortOrder sort_argument(const TableData& data, const Value& argument, int param);

/// What a grouping is by, and what it totals.
struct GroupingColumns {
    ColumnList columns;
    ColumnList totals;
};
/// Throws "IDS_VT_GROUPBY_INTERSECT_ERROR" for a column in both lists, "IDS_VT_GROUPBY_NO_COLUMN_ERROR" for
/// none at all.
void check_grouping(const TableData& data, const ColumnList& columns, const ColumnList& totals);
/// Two lists of names, the second of which may be Undefined, checked.
[[nodiscard]] GroupingColumns grouping_arguments(const TableData& data,
                                                 std::span<const GenericValue> arguments);

} // namespace core
