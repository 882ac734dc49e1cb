// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/table_data.h"
#include "core/tables/query/new_columns.h"
#include "core/tables/query/work_watch.h"

#include <core/tables/joins.h>

namespace core {

/// What a join is to do, as callers say it.
struct JoinRequest {
    wstring_view on;
    std::optional<wstring_view> columns;
    JoinKind kind = JoinKind::inner;
};

/// Joins two tables, as join() in joins.h says, which tells what is thrown, too.
[[nodiscard]] TableContent join_tables(const TableData& left, const TableData& right,
                                       const JoinRequest& request, WorkWatch& watch);

} // namespace core
