// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/query/join.h"
#include "core/tables/query/match_keys.h"

namespace core {

/// A column that a join adds, and its name in the result.
struct AddedColumn {
    const TableColumn* column;
    wstring name;
};

/// Reads which columns must be equal. Throws as join() does.
[[nodiscard]] std::vector<ColumnPair> read_join_pairs(const TableData& left, const TableData& right,
                                                      wstring_view on);
/// Reads which columns of the right table are added. Throws as join() does.
[[nodiscard]] std::vector<AddedColumn> read_added_columns(const TableData& left, const TableData& right,
                                                          const JoinRequest& request,
                                                          std::span<const ColumnPair> pairs);

} // namespace core
