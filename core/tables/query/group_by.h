// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/table_data.h"

namespace core {

/// Collapses a table to the group columns and the total columns: one row for the rows whose cells are equal
/// in all group columns, in the order of the first ones, with the sums of their cells in the total columns. A
/// column of totals loses its limit of digits, so that it holds every sum. If anything throws, the table is
/// unchanged.
void group_by(TableData& data, std::span<const std::size_t> groupColumns,
              std::span<const std::size_t> totalColumns);

/// The description of a column's sums, which pass any number of digits that the column has.
[[nodiscard]] TypeDomain domain_of_totals(const TypeDomain& domain);

} // namespace core
