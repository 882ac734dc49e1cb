// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/table_column.h"

namespace core {

/// Throws ContextException ("IDS_VT_TOTAL_OF_TEXTS") for a column whose cells are texts, as far as they are
/// filled: numbers that were never converted, as a rule, whose sum nobody would miss.
void require_no_texts(RowRange rows, const TableColumn& column);

/// The sum of the Numbers among the cells of a column. Throws as require_no_texts() does. Where there is no
/// Number it is 0 if the column holds only Numbers, and Undefined otherwise.
[[nodiscard]] Value total(RowRange rows, const TableColumn& column);

} // namespace core
