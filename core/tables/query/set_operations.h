// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/table_data.h"
#include "core/tables/query/new_columns.h"
#include "core/tables/query/work_watch.h"

#include <core/tables/sets.h>

namespace core {

// What the functions of sets.h do, which tell what is thrown, too.

[[nodiscard]] TableContent unite_tables(const TableData& left, const TableData& right, EqualRows equal,
                                        WorkWatch& watch);

/// Which rows of the left table stay.
enum class RowsOfOther : std::uint8_t {
    excluded, ///< those that the right table does not have
    required  ///< those that it has
};
[[nodiscard]] TableContent compare_tables(const TableData& left, const TableData& right, RowsOfOther rows,
                                          WorkWatch& watch);

/// `columns` are positions.
[[nodiscard]] TableContent distinct_rows(const TableData& data, std::span<const std::size_t> columns,
                                         WorkWatch& watch);

} // namespace core
