// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/lists/compact_reader.h"
#include "core/lists/compact_writer.h"
#include "core/tables/data/table_data.h"

#include <core/persistence/persistence.h>

/// The cells of a table column by column, as the compact form has them: a column of a million prices is one
/// run of bytes, and one of names is a few names and a run of bytes. docs/table-format.md describes it.
namespace core {

/// Writes the cells of a table that has columns.
void put_cells(IOutPersistenceStorage* storage, detail::CompactWriter& out, const TableData& data);
/// Reads the rows of a table that has columns and no rows. Throws ListStreamException for cells that were
/// never written.
void get_cells(IInPersistenceStorage* storage, detail::CompactReader& in, TableData& data);

} // namespace core
