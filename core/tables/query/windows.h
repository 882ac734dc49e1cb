// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/query/operands.h"
#include "core/tables/query/work_watch.h"
#include "core/tables/sort/row_sort.h"

#include <core/tables/windows.h>

namespace core {

/// What window functions see: the rows of each partition, in the order of the window.
class WindowRows {
  public:
    /// Of rows in their order, grouped by the cells of some columns and sorted by others.
    WindowRows(RowRange rows, std::span<const CellColumn* const> partition, std::span<const SortColumn> order,
               WorkWatch& watch);

    /// Calls `work` with the rows of each partition.
    template <class Work>
    void forEach(Work work) const {
        for (std::size_t i = 0; i + 1 < begins_.size(); ++i)
            work(std::span<const RowId>(rows_).subspan(begins_[i], begins_[i + 1] - begins_[i]));
    }
    /// Says whether two rows are equal in the order.
    [[nodiscard]] bool equal(RowId a, RowId b) const noexcept;
    [[nodiscard]] bool isOrdered() const noexcept { return !order_.empty(); }

  private:
    std::vector<SortColumn> order_;
    std::vector<RowId> rows_;         // partition by partition
    std::vector<std::size_t> begins_; // of the partitions in rows_, and the end
};

/// The cells of a new column, by row id, and its description.
struct WindowCells {
    TypeDomain domain;
    CellColumn cells;
};

/// Computes a function over `rows`, which the window was made of; `column` is null for a function without an
/// argument. The cells are for `ids` row ids. Throws ContextException: "IDS_VT_TOTAL_OF_TEXTS",
/// "IDS_VT_RANK_WITHOUT_ORDER".
[[nodiscard]] WindowCells window_cells(const WindowFunction& function, const TableColumn* column,
                                       RowRange rows, const WindowRows& window, std::size_t ids);

} // namespace core
