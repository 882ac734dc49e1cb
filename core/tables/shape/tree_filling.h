// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/table_data.h"
#include "core/tables/query/work_watch.h"

namespace core {

/// A row that a tree gets: those of its cells that differ from the row of the table that it is made of.
struct NewTreeRow {
    static constexpr std::uint32_t kNone = ~std::uint32_t{0};

    RowId source = kNoRow; ///< the row of the table; kNoRow for a row that has the defaults of its columns
    std::uint32_t parent =
        kNone; ///< the position of the row above among the new rows; kNone for a topmost one
    std::optional<Value> cell{}; ///< what stands in the column that TreeFilling names
};

/// How the columns of a table become those of a tree.
struct TreeColumns {
    std::vector<std::size_t> columns; ///< the columns of the table that the tree has
    std::optional<std::size_t> replaced =
        std::nullopt; ///< the position among them of the one with cells of its own
};

/// Gives an empty tree the columns and the rows. Rows below one row stand in the order given; a row may come
/// before the one that it is below. Returns the position of a row that is not in the tree because it is below
/// itself; kNone where all are.
[[nodiscard]] std::uint32_t fill_tree(TableData& tree, const TableData& table, const TreeColumns& columns,
                                      std::span<const NewTreeRow> rows, WorkWatch& watch);

} // namespace core
