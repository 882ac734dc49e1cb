// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/table_data.h"
#include "core/tables/query/new_columns.h"

#include <core/tables/value_table.h>

/// How other layers of the library make a table of whole columns, and read one by columns.
namespace core {

/// Makes a value table of columns that have `count` cells each, and keeps what was lost on the way.
[[nodiscard]] InterfacePtr<IValueTable> make_value_table(std::vector<std::unique_ptr<TableColumn>> columns,
                                                         std::size_t count, Losses losses);
[[nodiscard]] inline InterfacePtr<IValueTable> table_of(TableContent content) {
    return make_value_table(std::move(content.columns), content.rows, {});
}
/// Returns the data of a table, borrowed from it; null for a table that is not one of this library.
[[nodiscard]] const TableData* table_data_of(IValueTableBaseRO& table);
/// Returns the data of a table that is one of this library. Throws ContextException
/// ("IDS_PARAMETER_N_TYPE_MISMATCH") for any other.
[[nodiscard]] const TableData& own_table(IValueTableBaseRO& table, int param);
/// The same, to be changed.
[[nodiscard]] TableData* table_data_of(IValueTable& table);

/// Returns losses as a value table for scripts: row, line, column, text and reason.
[[nodiscard]] GenericValue losses_table(const Losses& losses);

} // namespace core
