// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/table_column.h"
#include "core/tables/query/work_watch.h"

namespace core {

/// A column of one table and the column of another one that it is compared with.
struct ColumnPair {
    const TableColumn* left;
    const TableColumn* right;
};

/// What cells without content, Undefined and Null, match.
enum class BlankCells : std::uint8_t {
    never, ///< nothing: a row with one has no key
    equal  ///< cells that equal them, like any others
};

/// The rows of two tables by small numbers: rows match when their keys are equal and not kNoKey.
struct MatchKeys {
    static constexpr std::uint32_t kNoKey = 0;

    std::vector<std::uint32_t> left;  ///< of each row of the left range
    std::vector<std::uint32_t> right; ///< of each row of the right range
    std::uint64_t count = 1;          ///< all keys are below it
};

/// Finds the keys of rows that are equal in all pairs of columns; without pairs every row matches every
/// other. A left row that matches no right one may have kNoKey.
[[nodiscard]] MatchKeys match_keys(RowRange left, RowRange right, std::span<const ColumnPair> pairs,
                                   BlankCells blank, WorkWatch& watch);

/// Which kinds of values two columns must share.
enum class SharedKinds : std::uint8_t {
    all, ///< all filled cells of both are of one kind
    some ///< the columns have a kind in common, unless one of them is empty
};

/// Throws ContextException ("IDS_VT_NEVER_EQUAL") for a pair of columns whose values cannot be equal because
/// they are of different types: a number and a text that looks like it, as a rule.
void require_shared_kinds(RowRange left, RowRange right, const ColumnPair& pair, SharedKinds shared);

} // namespace core
