// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/objects/native_enumeration.h>
#include <core/tables/table_work.h>
#include <core/tables/value_table.h>

#include <cstdint>
#include <optional>

/// Two tables side by side: rows that are equal in some columns become one row.
namespace core {

/// Which rows a join has. The numbers are stored.
enum class JoinKind : std::int32_t {
    inner = 0, ///< a row for each pair of rows that match
    left = 1,  ///< the same, and the rows of the first table that match none
    full = 2,  ///< the same, and the rows of both tables that match none
    semi = 3,  ///< the rows of the first table that match any, each once
    anti = 4   ///< the rows of the first table that match none
};

/// Returns the enumeration "JoinKind" of scripts, which lives as long as the library.
[[nodiscard]] CORE_API Enumeration* script_enumeration(JoinKind) noexcept;

/// Returns a new table with the rows of `table` beside those of `other` that match: all columns of `table`,
/// then `columns` of the other one. Both tables stay as they are.
///
/// `on` names the columns that must be equal, with "," between them: "Product = Code, Day", where one name
/// stands for the same one in both tables. Undefined and Null match nothing. `columns` is a list of names,
/// each of which may get another one: "Name, Group As Family"; an empty list adds none, and without a list
/// all are added except those that `on` names. JoinKind::semi and JoinKind::anti add no columns.
///
/// Rows stand in the order of `table`, rows that match the same one in the order of `other`, rows of `other`
/// alone at the end. Cells that a row lacks are Undefined, which the descriptions of their columns then
/// admit. In a row of `other` alone the columns of `table` that `on` names have the cells of that row.
///
/// Throws ContextException: "IDS_VT_JOIN_CONDITION" for an `on` of another form,
/// "IDS_VT_UNKNOWN_COLUMN_ERROR" for a column that is not there, "IDS_VT_JOIN_NAME_TAKEN" for a name that
/// two columns of the result would have, "IDS_VT_JOIN_ADDS_NOTHING" for columns that the kind does not add,
/// "IDS_VT_NEVER_EQUAL" where the columns to be equal hold values of several types, as 1 and "1",
/// "IDS_VT_TOO_MANY_ROWS" for a result that no table holds, "IDS_PARAMETER_N_TYPE_MISMATCH" for a table of
/// another library; ThreadDeath when it is stopped.
[[nodiscard]] CORE_API InterfacePtr<IValueTable> join(IValueTableBaseRO& table, IValueTableBaseRO& other,
                                                      wstring_view on,
                                                      const std::optional<wstring>& columns = std::nullopt,
                                                      JoinKind kind = JoinKind::inner,
                                                      const TableWork& work = {});

} // namespace core
