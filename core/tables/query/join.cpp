// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/join.h"

#include "core/tables/query/cell_gather.h"
#include "core/tables/query/join_request.h"
#include "core/tables/query/row_search.h"

#include <core/strings/integer_text.h>
#include <core/tables/errors.h>
#include <core/values/errors.h>

#include <algorithm>

namespace core {
namespace {

/// The right rows of each key, in their order.
class RowsByKey {
  public:
    RowsByKey(RowRange rows, const MatchKeys& keys)
        : starts_(static_cast<std::size_t>(keys.count) + 1), rows_(rows.size()) {
        for (const std::uint32_t key : keys.right)
            ++starts_[key + 1];
        for (std::size_t i = 1; i < starts_.size(); ++i)
            starts_[i] += starts_[i - 1];
        std::vector<std::uint32_t> next(starts_.begin(), starts_.end() - 1);
        for (std::size_t i = 0; i < rows.size(); ++i)
            rows_[next[keys.right[i]]++] = rows[i];
    }
    [[nodiscard]] std::span<const RowId> of(std::uint32_t key) const noexcept {
        if (key == MatchKeys::kNoKey)
            return {};
        return std::span(rows_).subspan(starts_[key], starts_[key + 1] - starts_[key]);
    }

  private:
    std::vector<std::uint32_t> starts_; // of the rows of a key; one more at the end
    std::vector<RowId> rows_;
};

/// The rows that stand side by side; kNoRow where a side has none.
struct RowPairs {
    std::vector<RowId> left;
    std::vector<RowId> right;
    std::size_t fromLeft = 0; ///< how many have a left row; they come first
};

/// Says how many rows the result has, so that it takes its memory at once, and refuses too many.
std::size_t count_pairs(const MatchKeys& keys, const RowsByKey& matches, bool keepsUnmatched) {
    std::uint64_t count = 0;
    for (const std::uint32_t key : keys.left)
        count += std::max<std::size_t>(matches.of(key).size(), keepsUnmatched ? 1 : 0);
    if (count >= std::min<std::uint64_t>(kNoRow, std::vector<RowId>().max_size())) // less with 32 bits
        throw_error<ContextException>(messages::kTooManyRows, {string_intto(count)});
    return static_cast<std::size_t>(count);
}

RowPairs pair_rows(RowRange left, RowRange right, const MatchKeys& keys, JoinKind kind, WorkWatch& watch) {
    const RowsByKey matches(right, keys);
    const bool keeps = kind != JoinKind::inner;
    RowPairs pairs;
    pairs.fromLeft = count_pairs(keys, matches, keeps);
    pairs.left.resize(pairs.fromLeft);
    pairs.right.resize(pairs.fromLeft, kNoRow);
    constexpr std::size_t kPiece = std::size_t{1} << 17; // a key may have many rows on both sides
    std::size_t next = 0;
    std::size_t asked = 0;
    watch.inPieces(left.size(), [&](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i) {
            const auto found = matches.of(keys.left[i]);
            for (const RowId row : found) {
                pairs.left[next] = left[i];
                pairs.right[next++] = row;
            }
            if (keeps && found.empty())
                pairs.left[next++] = left[i];
            if (next - asked > kPiece) {
                watch.step(0);
                asked = next;
            }
        }
    });
    if (kind != JoinKind::full)
        return pairs;
    std::vector<bool> met(static_cast<std::size_t>(keys.count));
    for (const std::uint32_t key : keys.left)
        met[key] = true;
    for (std::size_t i = 0; i < right.size(); ++i) {
        if (keys.right[i] == MatchKeys::kNoKey || !met[keys.right[i]]) {
            pairs.left.push_back(kNoRow);
            pairs.right.push_back(right[i]);
        }
    }
    if (pairs.left.size() >= kNoRow)
        throw_error<ContextException>(messages::kTooManyRows, {string_intto(pairs.left.size())});
    return pairs;
}

/// The rows of the left table that match, or those that do not.
RowPairs filter_rows(RowRange left, const MatchKeys& keys, JoinKind kind) {
    std::vector<bool> known(static_cast<std::size_t>(keys.count));
    for (const std::uint32_t key : keys.right)
        known[key] = true;
    known[MatchKeys::kNoKey] = false;
    RowPairs pairs;
    for (std::size_t i = 0; i < left.size(); ++i) {
        if (known[keys.left[i]] == (kind == JoinKind::semi))
            pairs.left.push_back(left[i]);
    }
    pairs.fromLeft = pairs.left.size();
    return pairs;
}

/// Says whether the rows are 0, 1, 2 and so on, whose cells are copied without a look at each row.
bool are_plain(std::span<const RowId> rows) noexcept {
    RowId next = 0;
    return std::all_of(rows.begin(), rows.end(), [&](RowId row) { return row == next++; });
}

RowRange range_of(std::span<const RowId> rows) noexcept {
    return are_plain(rows) ? RowRange(rows.size()) : RowRange(rows);
}

ColumnInfo with_undefined(ColumnInfo info, bool admits) {
    if (admits && !info.domain.isEmpty())
        info.domain.addType(kUndefinedType);
    return info;
}

/// The columns of the left table. Those that are joined on have the cells of the right rows that are alone.
void add_left_columns(NewColumns& columns, const TableData& left, const RowPairs& rows,
                      std::span<const ColumnPair> joined, JoinKind kind, WorkWatch& watch) {
    const RowRange all = range_of(rows.left);
    for (std::size_t i = 0; i < left.columnCount(); ++i) {
        const TableColumn& column = left.column(i);
        const auto pair = std::find_if(joined.begin(), joined.end(),
                                       [&](const ColumnPair& one) { return one.left == &column; });
        if (kind != JoinKind::full || pair == joined.end()) {
            columns.add(with_undefined(column.info, kind == JoinKind::full),
                        gather_cells(column.cells, all, watch));
            continue;
        }
        ColumnInfo info = column.info;
        info.domain.merge(pair->right->info.domain);
        const CellRun runs[] = {
            {&column.cells, RowRange(std::span(rows.left).first(rows.fromLeft))},
            {&pair->right->cells, RowRange(std::span(rows.right).subspan(rows.fromLeft))},
        };
        columns.add(std::move(info), gather_cells(runs, watch));
    }
}

} // namespace

TableContent join_tables(const TableData& left, const TableData& right, const JoinRequest& request,
                         WorkWatch& watch) {
    const std::vector<ColumnPair> pairs = read_join_pairs(left, right, request.on);
    const std::vector<AddedColumn> added = read_added_columns(left, right, request, pairs);
    const RowList leftList(left, kNoRow, false);
    const RowList rightList(right, kNoRow, false);
    const RowRange leftRows = leftList.range();
    const RowRange rightRows = rightList.range();
    for (const ColumnPair& pair : pairs)
        require_shared_kinds(leftRows, rightRows, pair, SharedKinds::all);
    const MatchKeys keys = match_keys(leftRows, rightRows, pairs, BlankCells::never, watch);
    const bool filters = request.kind == JoinKind::semi || request.kind == JoinKind::anti;
    const RowPairs rows = filters ? filter_rows(leftRows, keys, request.kind)
                                  : pair_rows(leftRows, rightRows, keys, request.kind, watch);
    watch.expect(rows.left.size() * (left.columnCount() + added.size()));
    NewColumns columns(rows.left.size());
    add_left_columns(columns, left, rows, pairs, request.kind, watch);
    const bool lacks = request.kind == JoinKind::left || request.kind == JoinKind::full;
    for (const AddedColumn& one : added) {
        ColumnInfo info = with_undefined(one.column->info, lacks);
        info.name = one.name;
        columns.add(std::move(info), gather_cells(one.column->cells, RowRange(rows.right), watch));
    }
    return columns.take();
}

} // namespace core
