// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/aggregate_cells.h"

#include "core/tables/query/filled_cells.h"
#include "core/tables/query/number_sums.h"
#include "core/tables/query/row_totals.h"
#include "core/tables/sort/value_ranks.h"

#include <core/collections/value_array.h>

#include <algorithm>

namespace core {
namespace {

using Form = CellColumn::Form;

CellColumn cells_of_counts(std::vector<std::int64_t> counts) {
    return CellColumn::ofWords(Form::numbers, 0, std::move(counts));
}

CellColumn cells_of_values(std::span<const Value> values) {
    CellColumn cells;
    cells.grow(values.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        cells.put(static_cast<RowId>(i), values[i]);
    return cells;
}

CellColumn counts_of(RowRange rows, const RowGroups& groups, const TableColumn* column, WorkWatch& watch) {
    std::vector<std::int64_t> counts(groups.firstRows.size());
    if (column == nullptr) {
        for (const std::uint32_t group : groups.groups)
            ++counts[group];
    } else {
        for_each_filled(rows, column->cells, watch,
                        [&](std::size_t i, RowId) { ++counts[groups.groups[i]]; });
    }
    return cells_of_counts(std::move(counts));
}

/// Each group is split by the values of the column, and then its parts are counted.
CellColumn distinct_counts(RowRange rows, const RowGroups& groups, const CellColumn& cells,
                           WorkWatch& watch) {
    RowGroups parts = groups;
    split_groups(parts, rows, cells, watch);
    std::vector<std::int64_t> counts(groups.firstRows.size());
    std::vector<bool> counted(parts.firstRows.size());
    for_each_filled(rows, cells, watch, [&](std::size_t i, RowId) {
        if (counted[parts.groups[i]])
            return;
        counted[parts.groups[i]] = true;
        ++counts[groups.groups[i]];
    });
    return cells_of_counts(std::move(counts));
}

/// The numbers of a group. Sum and count lie side by side, because groups are met in no order.
template <class Sum>
struct GroupSum {
    Sum sum{};
    std::int64_t count = 0;
};

/// Sums of the groups as words; none when one of them is too large for a word.
template <class Sum>
std::optional<std::vector<std::int64_t>> words_of(std::span<const GroupSum<Sum>> sums) {
    std::vector<std::int64_t> words(sums.size(), CellColumn::kEmptyWord);
    for (std::size_t i = 0; i < sums.size(); ++i) {
        if (sums[i].count == 0)
            continue;
        const auto word = sums[i].sum.word();
        if (!word)
            return std::nullopt;
        words[i] = *word;
    }
    return words;
}

/// Adds the numbers of each group up, and calls `work` with the sums.
template <class Work>
void with_sums(RowRange rows, const RowGroups& groups, const CellColumn& cells, WorkWatch& watch, Work work) {
    with_numbers(cells, [&]<class Sum>(const Sum&, auto number_in) {
        std::vector<GroupSum<Sum>> sums(groups.firstRows.size());
        rows.visit([&](auto row_at) {
            watch.inPieces(rows.size(), [&](std::size_t begin, std::size_t end) {
                for (std::size_t i = begin; i < end; ++i) {
                    if (const auto number = number_in(row_at(i))) {
                        GroupSum<Sum>& group = sums[groups.groups[i]];
                        group.sum.add(*number);
                        ++group.count;
                    }
                }
            });
        });
        work(std::span<const GroupSum<Sum>>(sums));
    });
}

CellColumn averages(RowRange rows, const RowGroups& groups, const CellColumn& cells, WorkWatch& watch) {
    std::vector<Value> averages(groups.firstRows.size());
    with_sums(rows, groups, cells, watch, [&](auto sums) {
        for (std::size_t i = 0; i < averages.size(); ++i) {
            if (sums[i].count != 0)
                averages[i] = Value(sums[i].sum.value(cells.scale()) / Numeric(sums[i].count));
        }
    });
    return cells_of_values(averages);
}

/// The row of each group with the largest key, the first of several; kNoRow for a group without filled cells.
template <class Key>
std::vector<RowId> rows_of_largest(RowRange rows, const RowGroups& groups, const CellColumn& cells,
                                   WorkWatch& watch, Key key) {
    std::vector<RowId> best(groups.firstRows.size(), kNoRow);
    std::vector<std::uint64_t> keys(best.size());
    for_each_filled(rows, cells, watch, [&](std::size_t i, RowId row) {
        const std::uint32_t group = groups.groups[i];
        const std::uint64_t own = key(row);
        if (best[group] == kNoRow || own > keys[group]) {
            best[group] = row;
            keys[group] = own;
        }
    });
    return best;
}

/// The rows of the largest or smallest cells. Cells become unsigned keys in the order of their values, turned
/// round for the smallest; values that are in no dictionary are compared.
std::vector<RowId> rows_of_extremes(RowRange rows, const RowGroups& groups, const CellColumn& cells,
                                    bool largest, WorkWatch& watch) {
    const std::uint64_t turn = largest ? 0 : ~std::uint64_t{0};
    switch (cells.form()) {
    case Form::coded: {
        const auto values = cells.dictionary().values();
        const auto ranks = rank_values(values, RowRange(values.size()));
        return rows_of_largest(rows, groups, cells, watch,
                               [&](RowId row) { return turn ^ ranks[cells.codes()[row]]; });
    }
    case Form::values: {
        const auto values = cells.values();
        std::vector<RowId> best(groups.firstRows.size(), kNoRow);
        for_each_filled(rows, cells, watch, [&](std::size_t i, RowId row) {
            RowId& known = best[groups.groups[i]];
            if (known == kNoRow) {
                known = row;
                return;
            }
            const int order = compare_values(values[row], values[known]);
            if (largest ? order > 0 : order < 0)
                known = row;
        });
        return best;
    }
    default: {
        constexpr std::uint64_t kLowest = std::uint64_t{1} << 63;
        return rows_of_largest(rows, groups, cells, watch, [words = cells.words(), turn](RowId row) {
            return turn ^ static_cast<std::uint64_t>(words[row]) ^ kLowest;
        });
    }
    }
}

std::vector<RowId> rows_of_ends(RowRange rows, const RowGroups& groups, const CellColumn& cells, bool last,
                                WorkWatch& watch) {
    std::vector<RowId> ends(groups.firstRows.size(), kNoRow);
    for_each_filled(rows, cells, watch, [&](std::size_t i, RowId row) {
        RowId& end = ends[groups.groups[i]];
        if (last || end == kNoRow)
            end = row;
    });
    return ends;
}

CellColumn lists_of(RowRange rows, const RowGroups& groups, const CellColumn& cells, WorkWatch& watch) {
    std::vector<std::vector<Value>> lists(groups.firstRows.size());
    for_each_filled(rows, cells, watch,
                    [&](std::size_t i, RowId row) { lists[groups.groups[i]].push_back(cells.get(row)); });
    std::vector<Value> arrays;
    arrays.reserve(lists.size());
    for (std::vector<Value>& list : lists)
        arrays.emplace_back(create_value_array(std::move(list)).query<IValue>());
    return CellColumn::ofValues(std::move(arrays));
}

} // namespace

std::vector<BoundAggregate> bind_aggregates(Operands& operands, RowRange rows,
                                            std::span<const Aggregate> aggregates) {
    std::vector<BoundAggregate> bound;
    for (const Aggregate& aggregate : aggregates) {
        const bool ofRows = aggregate.kind == AggregateKind::count && aggregate.argument.empty();
        const TableColumn* const column = ofRows ? nullptr : &operands.find(aggregate.argument);
        if (aggregate.kind == AggregateKind::sum || aggregate.kind == AggregateKind::average)
            require_no_texts(rows, *column);
        const bool named = !aggregate.name.empty() || column == nullptr;
        bound.push_back({aggregate.kind, column, named ? aggregate.name : column->info.name});
    }
    return bound;
}

TypeDomain domain_of(const BoundAggregate& aggregate) {
    switch (aggregate.kind) {
    case AggregateKind::count:
    case AggregateKind::countDistinct:
        return TypeDomain(kNumberType);
    case AggregateKind::sum:
    case AggregateKind::average:
        return domain_of_numbers(aggregate.column->info.domain);
    case AggregateKind::list:
        return TypeDomain(kValueArrayType);
    default: {
        TypeDomain domain = aggregate.column->info.domain;
        if (domain.containsType(ValueKind::null)) // a group of Nulls alone
            admit_undefined(domain);
        return domain;
    }
    }
}

CellColumn aggregate_cells(const BoundAggregate& aggregate, RowRange rows, const RowGroups& groups,
                           WorkWatch& watch) {
    if (aggregate.kind == AggregateKind::count)
        return counts_of(rows, groups, aggregate.column, watch);
    const CellColumn& cells = aggregate.column->cells;
    switch (aggregate.kind) {
    case AggregateKind::countDistinct:
        return distinct_counts(rows, groups, cells, watch);
    case AggregateKind::sum:
        return group_sums(rows, groups, cells, Value(), watch);
    case AggregateKind::average:
        return averages(rows, groups, cells, watch);
    case AggregateKind::min:
    case AggregateKind::max:
        return picked_cells(
            cells, rows_of_extremes(rows, groups, cells, aggregate.kind == AggregateKind::max, watch));
    case AggregateKind::list:
        return lists_of(rows, groups, cells, watch);
    default:
        return picked_cells(cells,
                            rows_of_ends(rows, groups, cells, aggregate.kind == AggregateKind::last, watch));
    }
}

CellColumn group_sums(RowRange rows, const RowGroups& groups, const CellColumn& cells, const Value& none,
                      WorkWatch& watch) {
    std::optional<CellColumn> summed;
    with_sums(rows, groups, cells, watch, [&](auto sums) {
        const bool allFilled =
            std::all_of(sums.begin(), sums.end(), [](const auto& sum) { return sum.count != 0; });
        if (auto words = allFilled || none.isUndefined() ? words_of(sums) : std::nullopt) {
            summed = CellColumn::ofWords(Form::numbers, cells.scale(), std::move(*words));
            return;
        }
        std::vector<Value> values(sums.size(), none);
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (sums[i].count != 0)
                values[i] = Value(sums[i].sum.value(cells.scale()));
        }
        summed = cells_of_values(values);
    });
    return summed ? std::move(*summed) : cells_of_values(std::vector<Value>(groups.firstRows.size(), none));
}

} // namespace core
