// SPDX-License-Identifier: Apache-2.0
#include "core/tables/objects/table_arguments.h"

#include <core/tables/tree.h>

namespace core {

Tree::Tree(std::initializer_list<NewColumn> columns) : Tree() {
    for (const NewColumn& column : columns)
        column.addTo(tree_->columns());
}

void TreeRows::sort(const Text& columns, RowDepth depth) const {
    std::vector<VTSortParam> params;
    for (const SortItem& item : sort_items(columns.view(), 0))
        params.push_back({ColumnKey(item.name).idIn(tree_->columns()), item.descending});
    rows_->sort(params, depth);
}

std::optional<TreeRow> TreeRows::find(const AnyValue& value, ColumnKeys columns, RowDepth depth) const {
    auto row = rows_->find(value, column_ids(tree_->columns(), columns), depth);
    return row ? std::optional(TreeRow(tree_, std::move(row))) : std::nullopt;
}

std::vector<TreeRow> TreeRows::findRows(std::initializer_list<CellEquals> conditions, RowDepth depth) const {
    std::vector<TreeRow> rows;
    for (auto& row : rows_->findRows(find_params(tree_->columns(), conditions), depth))
        rows.emplace_back(tree_, std::move(row));
    return rows;
}

} // namespace core
