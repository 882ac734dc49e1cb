// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/table_column.h"

namespace core {

/// Throws ContextException for a column whose sum would be wrong in silence: "IDS_VT_TOTAL_OF_TEXTS" where
/// all filled cells are texts, which are numbers that were never converted, as a rule, and
/// "IDS_VT_TOTAL_OF_MIXED" where there are both Numbers and other values.
void require_no_texts(RowRange rows, const TableColumn& column);

/// The sum of the Numbers among the cells of a column. Throws as require_no_texts() does. Where there is no
/// Number it is 0 if the column holds only Numbers, and Undefined otherwise.
[[nodiscard]] Value total(RowRange rows, const TableColumn& column);

} // namespace core
