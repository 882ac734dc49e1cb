// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/strings/text.h>
#include <core/tables/table_work.h>
#include <core/tables/value_table.h>

/// Columns that are computed over neighbouring rows: running totals, ranks, differences to the row before.
namespace core {

/// What a window function gives a row.
enum class WindowKind : std::uint8_t {
    runningTotal, ///< the sum of the column up to this row
    rowNumber,    ///< the row's place, from 1
    rank,         ///< 1 and how many rows come before it; rows that are equal in the order have one rank
    denseRank,    ///< 1 and how many different ranks come before it
    difference,   ///< the cell less that of the row before, for dates in seconds; Undefined in the first row
    lag,          ///< the cell of an earlier row; Undefined where none exists
    lead,         ///< the cell of a later row; Undefined where none exists
    share         ///< the cell divided by the sum of all, with the digits of Numeric's division
};

/// A window function of a column, and the name of the column that it makes.
struct WindowFunction {
    WindowKind kind = WindowKind::rowNumber; ///< what it gives a row
    wstring argument;         ///< the column's name, or an expression; empty for the ranks and rowNumber
    wstring name;             ///< the name of the new column
    std::size_t distance = 1; ///< how many rows away lag and lead look
};

/// Returns the running total of a column. Cells without a number leave it as it is; it is Undefined before
/// the first number.
[[nodiscard]] inline WindowFunction running_total(const Text& column, const Text& name) {
    return {WindowKind::runningTotal, wstring(column.view()), wstring(name.view())};
}
/// Returns the number of each row, from 1.
[[nodiscard]] inline WindowFunction row_number(const Text& name = u"RowNumber") {
    return {WindowKind::rowNumber, {}, wstring(name.view())};
}
/// Returns the rank of each row in the order, which must be given: 1, 2, 2, 4.
[[nodiscard]] inline WindowFunction rank(const Text& name = u"Rank") {
    return {WindowKind::rank, {}, wstring(name.view())};
}
/// Returns the rank without gaps, in an order that must be given: 1, 2, 2, 3.
[[nodiscard]] inline WindowFunction dense_rank(const Text& name = u"DenseRank") {
    return {WindowKind::denseRank, {}, wstring(name.view())};
}
/// Returns the difference of the numbers or dates of a column to the row before; Undefined where one of the
/// two has none.
[[nodiscard]] inline WindowFunction difference(const Text& column, const Text& name) {
    return {WindowKind::difference, wstring(column.view()), wstring(name.view())};
}
/// Returns the cell of the row that is `distance` rows before.
[[nodiscard]] inline WindowFunction lag(const Text& column, const Text& name, std::size_t distance = 1) {
    return {WindowKind::lag, wstring(column.view()), wstring(name.view()), distance};
}
/// Returns the cell of the row that is `distance` rows behind.
[[nodiscard]] inline WindowFunction lead(const Text& column, const Text& name, std::size_t distance = 1) {
    return {WindowKind::lead, wstring(column.view()), wstring(name.view()), distance};
}
/// Returns the share of each number in the sum of its column; Undefined where the cell is not a number or the
/// sum is 0.
[[nodiscard]] inline WindowFunction share(const Text& column, const Text& name) {
    return {WindowKind::share, wstring(column.view()), wstring(name.view())};
}

/// Adds a column for each function behind the others; the rows stay where they are. The functions work within
/// each group of rows whose cells are equal in all columns of `partition`, without such columns within all
/// rows, and see the rows in `order`: columns as Sort takes them, "Region, Day Desc"; rows that are equal in
/// it, and all rows without an order, as they stand in the table.
///
/// Throws ContextException and changes nothing: "IDS_VT_UNKNOWN_COLUMN_ERROR" for a column that the table
/// does not have, "IDS_VT_COLUMNS_NOT_UNIQUE" for a name that is taken, "IDS_VT_COLUMNCODE_ERROR" for one
/// that is not valid, "IDS_VT_TOTAL_OF_TEXTS" and "IDS_VT_TOTAL_OF_MIXED" for a total, a difference or a
/// share of texts, or of numbers beside other values, "IDS_VT_RANK_WITHOUT_ORDER" for a rank without an
/// order, "IDS_PARAMETER_N_VALUE_MISMATCH" for an order that is malformed, and
/// "IDS_PARAMETER_N_TYPE_MISMATCH" for a table that is not one of this library. `work` can watch and
/// end it.
CORE_API void add_windows(IValueTable& table, const std::vector<WindowFunction>& functions,
                          const std::vector<wstring>& partition = {}, wstring_view order = {},
                          const TableWork& work = {});

} // namespace core
