// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/strings/text.h>
#include <core/tables/table_work.h>
#include <core/tables/value_table.h>

#include <utility>

/// Totals of many kinds: grouping into a new table, subtotals, and tables turned from rows into columns and
/// back.
///
/// An aggregate makes one value of many cells. Cells without content, Undefined and Null, take part in none,
/// not even in a count of a column; count() counts rows. Sums are exact. The tables that are given are
/// read, never changed; new ones are owned by the caller and hold copies. All functions here throw
/// ContextException: "IDS_VT_UNKNOWN_COLUMN_ERROR" for a column that the table does not have,
/// "IDS_VT_COLUMNS_NOT_UNIQUE" for two columns of the result with one name, "IDS_VT_COLUMNCODE_ERROR" for a
/// name that is not valid, ExpressionException for an expression that is malformed or cannot be computed,
/// "IDS_VT_TOTAL_OF_TEXTS" and "IDS_VT_TOTAL_OF_MIXED" for a sum or an average of texts, or of numbers beside
/// other values, "IDS_PARAMETER_N_TYPE_MISMATCH" for a table that is not one of this library, and where
/// nothing would be made "IDS_VT_GROUPBY_NO_COLUMN_ERROR" or "IDS_PARAMETER_N_VALUE_MISMATCH". `work` can
/// watch and end what takes long (table_work.h).
namespace core {

/// What an aggregate makes of the cells.
enum class AggregateKind : std::uint8_t {
    count,         ///< how many rows there are, or how many filled cells where a column is given
    countDistinct, ///< how many different values the cells have
    sum,           ///< the sum of the numbers; Undefined without any
    min,           ///< the smallest cell, in the order of compare_values()
    max,           ///< the largest cell
    average,       ///< the sum divided by how many numbers there are, with the digits of Numeric's division
    first,         ///< the first filled cell, in the order of the rows
    last,          ///< the last filled cell
    list           ///< an array of the cells, in the order of the rows
};

/// An aggregate of a column, or of an expression over the columns (docs/tables.md), and the name that its
/// result has, which an expression needs.
struct Aggregate {
    AggregateKind kind = AggregateKind::count; ///< what it makes of the cells
    wstring argument; ///< the column's name, or an expression; empty for a count of rows
    wstring name;     ///< the result's name; empty for the name of the column
};

/// Returns the count of rows, called `name`.
[[nodiscard]] inline Aggregate count(const Text& name = u"Count") {
    return {AggregateKind::count, {}, wstring(name.view())};
}
/// Returns the count of the filled cells of a column, called `name` or, where that is empty, as the column.
[[nodiscard]] inline Aggregate count_filled(const Text& column, const Text& name = u"") {
    return {AggregateKind::count, wstring(column.view()), wstring(name.view())};
}
/// Returns the count of the different values of a column, called `name` or as the column.
[[nodiscard]] inline Aggregate count_distinct(const Text& column, const Text& name = u"") {
    return {AggregateKind::countDistinct, wstring(column.view()), wstring(name.view())};
}
/// Returns the sum of a column, called `name` or as the column.
[[nodiscard]] inline Aggregate sum(const Text& column, const Text& name = u"") {
    return {AggregateKind::sum, wstring(column.view()), wstring(name.view())};
}
/// Returns the smallest value of a column, called `name` or as the column.
[[nodiscard]] inline Aggregate min(const Text& column, const Text& name = u"") {
    return {AggregateKind::min, wstring(column.view()), wstring(name.view())};
}
/// Returns the largest value of a column, called `name` or as the column.
[[nodiscard]] inline Aggregate max(const Text& column, const Text& name = u"") {
    return {AggregateKind::max, wstring(column.view()), wstring(name.view())};
}
/// Returns the average of a column, called `name` or as the column.
[[nodiscard]] inline Aggregate average(const Text& column, const Text& name = u"") {
    return {AggregateKind::average, wstring(column.view()), wstring(name.view())};
}
/// Returns the first filled cell of a column, called `name` or as the column.
[[nodiscard]] inline Aggregate first(const Text& column, const Text& name = u"") {
    return {AggregateKind::first, wstring(column.view()), wstring(name.view())};
}
/// Returns the last filled cell of a column, called `name` or as the column.
[[nodiscard]] inline Aggregate last(const Text& column, const Text& name = u"") {
    return {AggregateKind::last, wstring(column.view()), wstring(name.view())};
}
/// Returns the filled cells of a column as an array, called `name` or as the column.
[[nodiscard]] inline Aggregate list(const Text& column, const Text& name = u"") {
    return {AggregateKind::list, wstring(column.view()), wstring(name.view())};
}

/// Returns a new table with a row for each group of rows whose cells are equal in all `columns`, in the order
/// of the first ones: the cells of these columns, then the aggregates of the group. Instead of a column may
/// stand an expression with a name: "Year(Day) As Year". Without columns all rows
/// are one group; a table without rows has no group.
///
/// Where `levels` names a column, it stands in front, and there are totals besides: a row of level 0 for all
/// rows, one of level 1 for each value of the first column, and so on; those of the last level are the
/// groups. Each row comes before those that it adds up, as the rows of a tree. A total is Undefined in the
/// columns that it goes over.
[[nodiscard]] CORE_API InterfacePtr<IValueTable> group(IValueTableBaseRO& table,
                                                       const std::vector<wstring>& columns,
                                                       const std::vector<Aggregate>& aggregates,
                                                       wstring_view levels = {}, const TableWork& work = {});

/// Returns an aggregate of all rows of a table. Without rows a count is 0, a sum 0 where the column holds
/// only Numbers, a list empty, and any other aggregate Undefined.
[[nodiscard]] CORE_API GenericValue total(IValueTableBaseRO& table, const Aggregate& aggregate);

/// How many columns pivot() makes at the most, unless it is told otherwise.
inline constexpr std::size_t kMostPivotColumns = 1000;

/// Returns a new table with a row for each group of `rows`, as group() makes them, and behind their columns
/// one for each value of `column` and each aggregate: the aggregate of the rows of the group that have this
/// value. These columns come in the order of the values. One is called as its value is presented, made a
/// valid name; with several aggregates the name of the aggregate follows behind "_". Where no row meets, the
/// cell is Undefined, and 0 for counts. Throws ContextException ("IDS_VT_PIVOT_COLUMNS") for more than `most`
/// different values.
[[nodiscard]] CORE_API InterfacePtr<IValueTable> pivot(IValueTableBaseRO& table,
                                                       const std::vector<wstring>& rows, wstring_view column,
                                                       const std::vector<Aggregate>& aggregates,
                                                       std::size_t most = kMostPivotColumns,
                                                       const TableWork& work = {});

/// What unpivot() does with cells without content.
enum class EmptyCells : std::uint8_t {
    skip, ///< they give no row
    keep  ///< they give a row like any other
};

/// Returns a new table with a row for each cell of some `columns`: the cells of the other columns in its row,
/// then in a column called `name` the name of its column, and in one called `value` the cell.
[[nodiscard]] CORE_API InterfacePtr<IValueTable>
unpivot(IValueTableBaseRO& table, const std::vector<wstring>& columns, wstring_view name = u"Name",
        wstring_view value = u"Value", EmptyCells empty = EmptyCells::skip, const TableWork& work = {});

} // namespace core
