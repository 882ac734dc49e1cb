// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/row_search.h"

#include "core/tables/query/index_search.h"

#include <algorithm>
#include <limits>

namespace core {
namespace {

const RowCondition* condition_for(std::span<const RowCondition> filter, const TableColumn* column) noexcept {
    const auto found = std::find_if(filter.begin(), filter.end(), [=](const RowCondition& condition) {
        return condition.column == column;
    });
    return found != filter.end() ? &*found : nullptr;
}

/// Returns the index with most columns among those whose columns the filter names all, or null.
TableIndex* index_for(const TableData& data, std::span<const RowCondition> filter) noexcept {
    TableIndex* best = nullptr;
    for (const auto& index : data.indexes()) {
        const auto columns = index->columns();
        const bool named = std::all_of(columns.begin(), columns.end(), [&](const TableColumn* column) {
            return condition_for(filter, column) != nullptr;
        });
        if (named && (best == nullptr || best->columns().size() < columns.size()))
            best = index.get();
    }
    return best;
}

/// Calls `work` with a function that tests a row for the value; does not call it when no row can match.
template <class Work>
void with_test(const CellColumn& cells, const Value& value, Work work) {
    const CellProbe probe = cells.probe(value);
    if (!probe.possible)
        return;
    cells.visit([&]<class Cell>(std::span<const Cell> all) {
        if constexpr (std::is_same_v<Cell, Value>)
            work([=](RowId row) { return all[row].equals(*probe.value); });
        else
            work([all, word = static_cast<Cell>(probe.word)](RowId row) { return all[row] == word; });
    });
}

std::vector<RowId> matching_in(RowRange rows, const RowCondition& condition) {
    std::vector<RowId> matches;
    with_test(condition.column->cells, *condition.value, [&](auto test) {
        rows.forEach([&](RowId row) {
            if (test(row))
                matches.push_back(row);
        });
    });
    return matches;
}

/// Returns the rows that an index has for a filter, in no particular order.
std::vector<RowId> looked_up(const TableData& data, TableIndex& index, std::span<const RowCondition> filter) {
    if (!index.isCurrent())
        index.refresh(RowList(data, kNoRow, false).range());
    std::vector<CellProbe> probes;
    for (const TableColumn* const column : index.columns())
        probes.push_back(column->cells.probe(*condition_for(filter, column)->value));
    std::vector<RowId> rows;
    index.find(probes, rows);
    return rows;
}

/// How many rows are looked at before an index. A frequent value is found among them, which is quicker than
/// to go through all its rows in the index.
constexpr std::size_t kTopRows = 64;

std::vector<RowId> first_rows(const RowOrder& order, std::size_t count) {
    std::vector<RowId> rows;
    rows.reserve(std::min(count, order.size()));
    order.walk([&](RowId row) {
        if (rows.size() == count)
            return false;
        rows.push_back(row);
        return true;
    });
    return rows;
}

/// The first row that any of several searches finds.
class FirstRow {
  public:
    [[nodiscard]] RowId row() const noexcept { return row_; }

    /// Looks at the rows before the one found so far, where `rows` begin with the first one of the order.
    /// Returns whether one of them matches.
    bool scan(RowRange rows, const RowCondition& condition) {
        bool found = false;
        with_test(condition.column->cells, *condition.value, [&](auto test) {
            const std::size_t end = std::min(rows.size(), position_);
            for (std::size_t i = 0; i < end && !found; ++i) {
                found = test(rows[i]);
                if (found)
                    take(i, rows[i]);
            }
        });
        return found;
    }
    void lookUp(const TableData& data, TableIndex& index, const RowCondition& condition) {
        for (const RowId row : looked_up(data, index, {&condition, 1})) {
            if (const std::size_t position = data.rows().positionOf(row); position < position_)
                take(position, row);
        }
    }

  private:
    void take(std::size_t position, RowId row) noexcept {
        position_ = position;
        row_ = row;
    }

    std::size_t position_ = std::numeric_limits<std::size_t>::max();
    RowId row_ = kNoRow;
};

} // namespace

RowList::RowList(const TableData& data, RowId parent, bool subordinates)
    : count_(data.rowsOf(parent).size()), plain_(data.rowsOf(parent).isPlain()) {
    if (plain_)
        return;
    rows_ = data.rowsOf(parent).rows();
    if (subordinates)
        rows_ = data.withSubordinates(rows_);
}

void put_in_order(std::vector<RowId>& rows, const RowOrder& order) {
    std::vector<std::pair<std::size_t, RowId>> positions;
    positions.reserve(rows.size());
    for (const RowId row : rows)
        positions.emplace_back(order.positionOf(row), row);
    if (std::is_sorted(positions.begin(), positions.end()))
        return;
    std::sort(positions.begin(), positions.end());
    std::transform(positions.begin(), positions.end(), rows.begin(),
                   [](const auto& position) { return position.second; });
}

bool has_index_for(const TableData& data, std::span<const RowCondition> filter) noexcept {
    return index_for(data, filter) != nullptr;
}

std::vector<RowId> matching_rows(const TableData& data, RowId parent, bool subordinates,
                                 std::span<const RowCondition> filter) {
    if (TableIndex* const index = index_for(data, filter)) {
        std::vector<RowId> rows = looked_up(data, *index, filter);
        put_in_order(rows, data.rows());
        for (const RowCondition& condition : filter) {
            const bool answered =
                index->covers(*condition.column) && condition_for(filter, condition.column) == &condition;
            if (!answered)
                rows = matching_in(RowRange(rows), condition);
        }
        return rows;
    }
    const RowList all(data, parent, subordinates);
    if (filter.empty()) {
        std::vector<RowId> rows;
        rows.reserve(all.range().size());
        all.range().forEach([&](RowId row) { rows.push_back(row); });
        return rows;
    }
    std::vector<RowId> rows = matching_in(all.range(), filter.front());
    for (const RowCondition& condition : filter.subspan(1))
        rows = matching_in(RowRange(rows), condition);
    return rows;
}

RowId first_row_with(const TableData& data, RowId parent, bool subordinates,
                     std::span<const TableColumn* const> columns, const Value& value) {
    FirstRow first;
    std::vector<const TableColumn*> scanned;
    const std::vector<RowId> top = first_rows(data.rowsOf(parent), kTopRows);
    for (const TableColumn* const column : columns) {
        const RowCondition condition{column, &value};
        TableIndex* const index = index_for(data, {&condition, 1});
        if (index == nullptr)
            scanned.push_back(column);
        else if (!first.scan(RowRange(top), condition))
            first.lookUp(data, *index, condition);
    }
    if (!scanned.empty()) {
        const RowList all(data, parent, subordinates);
        for (const TableColumn* const column : scanned)
            first.scan(all.range(), {column, &value});
    }
    return first.row();
}

} // namespace core
