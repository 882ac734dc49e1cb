// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/collections/value_array.h>
#include <core/tables/losses.h>
#include <core/tables/table_work.h>
#include <core/tables/value_table.h>

/// Tables as arrays of structures, and back. `work` can watch and end what takes long (table_work.h).
namespace core {

/// Adds rows behind those of a table, all or none. `rows` is another table, or an array of structures, arrays
/// and rows of tables. The keys of a structure and the columns of a table find columns by their names; a
/// column that the table lacks is added, and holds Undefined in the other rows. The values of an array are
/// those of the first columns. Cells that nothing is given for have the defaults of their columns.
///
/// Whatever a cell cannot keep is added to `losses`; where these are null, it throws ConversionException,
/// which names the first cells. Throws ContextException: "IDS_VT_NO_ROW" for an element that is not a row,
/// "IDS_VT_MORE_VALUES" for an array that is longer than a row, "IDS_PARAMETER_N_TYPE_MISMATCH" for `rows` of
/// another type or a table of another library; ThreadDeath when it is stopped.
CORE_API void add_rows(IValueTable& table, const Value& rows, Losses* losses = nullptr,
                       const TableWork& work = {});

/// Returns a new table, owned by the caller, of rows as add_rows() reads them: columns come in the order in
/// which they are met and admit every value. Throws as add_rows() does.
[[nodiscard]] CORE_API InterfacePtr<IValueTable> table_of_rows(const Value& rows, const TableWork& work = {});

/// Returns a new array, owned by the caller, of a structure for each row: the names of the columns lead to
/// the cells. Throws ContextException ("IDS_PARAMETER_N_TYPE_MISMATCH") for a table of another library, and
/// ThreadDeath when it is stopped.
[[nodiscard]] CORE_API InterfacePtr<IValueArray> structures_of(IValueTableBaseRO& table,
                                                               const TableWork& work = {});

} // namespace core
