// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/table_data.h"

#include <core/persistence/persistence.h>

namespace core {

/// The body of a table or a tree, as docs/table-format.md describes it.
void serialize_table(IOutPersistenceStorage* storage, const TableData& data);
/// ListStreamException for text that was never written; the data is then unchanged.
void deserialize_table(IInPersistenceStorage* storage, TableData& data);

} // namespace core
