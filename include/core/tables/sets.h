// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/tables/table_work.h>
#include <core/tables/value_table.h>

#include <vector>

/// Tables as sets of rows. Rows are equal when all their cells are; here Undefined equals Undefined and Null
/// equals Null.
///
/// Two tables must have columns of the same names, in any order; the result has them in the order of the
/// first table. All functions return a new table, owned by the caller, leave those that they are given as
/// they are, and throw ContextException: "IDS_VT_COLUMNS_DIFFER" for tables with different columns,
/// "IDS_PARAMETER_N_TYPE_MISMATCH" for a table of another library; ThreadDeath when they are stopped.
namespace core {

/// What unite() does with rows that are equal.
enum class EqualRows : std::uint8_t {
    once, ///< one of them stays, the first
    all   ///< all stay
};

/// Returns the rows of a table and behind them those of another one. A column admits what either of the two
/// does. Throws as said above, and ContextException ("IDS_VT_TOO_MANY_ROWS") for more rows than a table
/// holds.
[[nodiscard]] CORE_API InterfacePtr<IValueTable> unite(IValueTableBaseRO& table, IValueTableBaseRO& other,
                                                       EqualRows equal = EqualRows::once,
                                                       const TableWork& work = {});
/// Returns the rows of a table that the other one does not have, each once. Throws as said above, and
/// ContextException ("IDS_VT_NEVER_EQUAL") where columns of one name have no type of values in common.
[[nodiscard]] CORE_API InterfacePtr<IValueTable> except(IValueTableBaseRO& table, IValueTableBaseRO& other,
                                                        const TableWork& work = {});
/// Returns the rows of a table that the other one has, too, each once. Throws as except() does.
[[nodiscard]] CORE_API InterfacePtr<IValueTable> intersect(IValueTableBaseRO& table, IValueTableBaseRO& other,
                                                           const TableWork& work = {});
/// Returns the different rows of some columns, each once, in the order of the first ones; no columns stand
/// for all. Throws as said above, and ContextException: "IDS_VT_UNKNOWN_COLUMN_ERROR" for a column that the
/// table does not have, "IDS_VT_COLUMNS_NOT_UNIQUE" for one that comes twice.
[[nodiscard]] CORE_API InterfacePtr<IValueTable>
distinct(IValueTableBaseRO& table, const std::vector<wstring>& columns = {}, const TableWork& work = {});

} // namespace core
