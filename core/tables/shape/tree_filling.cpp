// SPDX-License-Identifier: Apache-2.0
#include "core/tables/shape/tree_filling.h"

namespace core {
namespace {

/// The positions of the rows below each row, in their order; those of the topmost ones come first.
class RowsBelow {
  public:
    explicit RowsBelow(std::span<const NewTreeRow> rows) : starts_(rows.size() + 2), rows_(rows.size()) {
        for (const NewTreeRow& row : rows)
            ++starts_[slot(row.parent) + 1];
        for (std::size_t i = 1; i < starts_.size(); ++i)
            starts_[i] += starts_[i - 1];
        std::vector<std::uint32_t> next(starts_.begin(), starts_.end() - 1);
        for (std::size_t i = 0; i < rows.size(); ++i)
            rows_[next[slot(rows[i].parent)]++] = static_cast<std::uint32_t>(i);
    }
    [[nodiscard]] std::span<const std::uint32_t> of(std::uint32_t parent) const noexcept {
        return std::span(rows_).subspan(starts_[slot(parent)],
                                        starts_[slot(parent) + 1] - starts_[slot(parent)]);
    }

  private:
    [[nodiscard]] static std::size_t slot(std::uint32_t parent) noexcept {
        return parent != NewTreeRow::kNone ? std::size_t{parent} + 1 : 0;
    }

    std::vector<std::uint32_t> starts_; // of the rows below each slot; one more at the end
    std::vector<std::uint32_t> rows_;
};

void read_cells(std::vector<Value>& cells, const TableData& table, const TreeColumns& columns,
                const NewTreeRow& row) {
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const TableColumn& column = table.column(columns.columns[i]);
        if (columns.replaced == i && row.cell)
            cells[i] = *row.cell;
        else
            cells[i] = row.source != kNoRow ? column.cells.get(row.source) : column.defaultValue;
    }
}

} // namespace

std::uint32_t fill_tree(TableData& tree, const TableData& table, const TreeColumns& columns,
                        std::span<const NewTreeRow> rows, WorkWatch& watch) {
    for (const std::size_t position : columns.columns)
        tree.insertColumn(tree.columnCount(), table.column(position).info);
    watch.expect(rows.size() * columns.columns.size());
    const RowsBelow below(rows);
    struct Ahead {
        std::uint32_t position;
        RowId row;
    };
    std::vector<Ahead> ahead = {{NewTreeRow::kNone, kNoRow}}; // whose rows below are to come
    std::vector<bool> placed(rows.size());
    std::vector<Value> cells(columns.columns.size());
    while (!ahead.empty()) {
        const Ahead above = ahead.back();
        ahead.pop_back();
        for (const std::uint32_t position : below.of(above.position)) {
            read_cells(cells, table, columns, rows[position]);
            const RowId row =
                tree.insertRow(above.row, tree.rowsOf(above.row).size(), cells, CellSource::stored);
            placed[position] = true;
            if (!below.of(position).empty())
                ahead.push_back({position, row});
            watch.step(cells.size());
        }
    }
    const auto missing = std::find(placed.begin(), placed.end(), false);
    return missing != placed.end() ? static_cast<std::uint32_t>(missing - placed.begin()) : NewTreeRow::kNone;
}

} // namespace core
