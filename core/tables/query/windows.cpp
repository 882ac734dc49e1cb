// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/windows.h"

#include "core/tables/query/grouping.h"
#include "core/tables/query/number_sums.h"
#include "core/tables/query/row_totals.h"

#include <core/tables/errors.h>
#include <core/values/errors.h>

#include <algorithm>
#include <numeric>

namespace core {
namespace {

using Form = CellColumn::Form;
using Rows = std::span<const RowId>;

/// The digits behind the point that a count of ticks in seconds has.
constexpr std::uint32_t kTickDigits = 4;

CellColumn empty_cells(std::size_t ids) {
    CellColumn cells;
    cells.grow(ids);
    return cells;
}

/// Numbers rows: `number(rows, i, before)` gives that of the i-th row of a partition, whose predecessor has
/// `before`.
template <class Number>
CellColumn numbered(const WindowRows& window, std::size_t ids, Number number) {
    std::vector<std::int64_t> words(ids, CellColumn::kEmptyWord);
    window.forEach([&](Rows rows) {
        std::int64_t before = 0;
        for (std::size_t i = 0; i < rows.size(); ++i)
            words[rows[i]] = before = number(rows, i, before);
    });
    return CellColumn::ofWords(Form::numbers, 0, std::move(words));
}

/// The running totals as words; none when one of them is too large.
std::optional<std::vector<std::int64_t>> running_words(const WindowRows& window, std::size_t ids,
                                                       std::span<const std::int64_t> words) {
    std::vector<std::int64_t> totals(ids, CellColumn::kEmptyWord);
    bool fits = true;
    window.forEach([&](Rows rows) {
        std::int64_t total = 0;
        bool any = false;
        for (const RowId row : rows) {
            if (words[row] != CellColumn::kEmptyWord) {
                fits = !__builtin_add_overflow(total, words[row], &total) && fits;
                any = true;
            }
            fits = fits && total != CellColumn::kEmptyWord;
            if (any)
                totals[row] = total;
        }
    });
    return fits ? std::optional(std::move(totals)) : std::nullopt;
}

CellColumn running_totals(const CellColumn& cells, const WindowRows& window, std::size_t ids) {
    if (cells.form() == Form::numbers) {
        if (auto words = running_words(window, ids, cells.words()))
            return CellColumn::ofWords(Form::numbers, cells.scale(), std::move(*words));
    }
    CellColumn totals = empty_cells(ids);
    window.forEach([&](Rows rows) {
        std::optional<Numeric> total;
        for (const RowId row : rows) {
            const Value cell = cells.get(row);
            if (const auto number = cell.asNumeric())
                total = total ? *total + *number : *number;
            if (total)
                totals.put(row, Value(*total));
        }
    });
    return totals;
}

/// The cell less the one before, where both are numbers or both dates; otherwise Undefined.
Value difference_of(const Value& cell, const Value& before) {
    if (const auto number = cell.asNumeric()) {
        const auto other = before.asNumeric();
        return other ? Value(*number - *other) : Value();
    }
    const Date* const date = cell.asDate();
    const Date* const other = before.asDate();
    if (date == nullptr || other == nullptr)
        return {};
    return Value(Numeric::fromScaled(static_cast<std::int64_t>(date->ticks() - other->ticks()), kTickDigits));
}

CellColumn differences(const CellColumn& cells, const WindowRows& window, std::size_t ids) {
    if (cells.form() == Form::numbers || cells.form() == Form::dates) {
        const auto words = cells.words();
        std::vector<std::int64_t> found(ids, CellColumn::kEmptyWord);
        bool fits = true;
        window.forEach([&](Rows rows) {
            for (std::size_t i = 1; i < rows.size(); ++i) {
                const std::int64_t cell = words[rows[i]];
                const std::int64_t before = words[rows[i - 1]];
                if (cell != CellColumn::kEmptyWord && before != CellColumn::kEmptyWord)
                    fits = !__builtin_sub_overflow(cell, before, &found[rows[i]]) && fits;
            }
        });
        if (fits)
            return CellColumn::ofWords(
                Form::numbers, cells.form() == Form::dates ? kTickDigits : cells.scale(), std::move(found));
    }
    CellColumn found = empty_cells(ids);
    window.forEach([&](Rows rows) {
        for (std::size_t i = 1; i < rows.size(); ++i)
            found.put(rows[i], difference_of(cells.get(rows[i]), cells.get(rows[i - 1])));
    });
    return found;
}

CellColumn shifted(const CellColumn& cells, const WindowRows& window, std::size_t ids, std::size_t distance,
                   bool later) {
    std::vector<RowId> sources(ids, kNoRow);
    window.forEach([&](Rows rows) {
        for (std::size_t i = distance; i < rows.size(); ++i)
            later ? sources[rows[i - distance]] = rows[i] : sources[rows[i]] = rows[i - distance];
    });
    return picked_cells(cells, sources);
}

CellColumn shares(const CellColumn& cells, const WindowRows& window, std::size_t ids) {
    CellColumn found = empty_cells(ids);
    with_numbers(cells, [&](auto zero, auto number_in) {
        window.forEach([&](Rows rows) {
            auto sum = zero;
            for (const RowId row : rows) {
                if (const auto number = number_in(row))
                    sum.add(*number);
            }
            const Numeric all = sum.value(cells.scale());
            if (all == Numeric())
                return;
            for (const RowId row : rows) {
                const Value cell = cells.get(row);
                if (const auto number = cell.asNumeric())
                    found.put(row, Value(*number / all));
            }
        });
    });
    return found;
}

CellColumn ranks(const WindowFunction& function, const WindowRows& window, std::size_t ids) {
    const bool dense = function.kind == WindowKind::denseRank;
    if (!window.isOrdered())
        throw_error<ContextException>(messages::kRankWithoutOrder, {function.name});
    return numbered(window, ids, [&](Rows rows, std::size_t i, std::int64_t before) {
        if (i != 0 && window.equal(rows[i - 1], rows[i]))
            return before;
        return dense ? before + 1 : static_cast<std::int64_t>(i) + 1;
    });
}

} // namespace

WindowRows::WindowRows(RowRange rows, std::span<const CellColumn* const> partition,
                       std::span<const SortColumn> order, WorkWatch& watch)
    : order_(order.begin(), order.end()) {
    const RowGroups groups = group_rows(rows, partition, watch);
    std::vector<std::uint32_t> positions(rows.size());
    std::iota(positions.begin(), positions.end(), 0U);
    if (!order_.empty())
        positions = sorted_positions(rows, order_);
    // Rows are counted out to their partitions, in the order of the window.
    begins_.resize(groups.firstRows.size() + 1);
    for (const std::uint32_t group : groups.groups)
        ++begins_[group + 1];
    std::partial_sum(begins_.begin(), begins_.end(), begins_.begin());
    std::vector<std::size_t> ends(begins_.begin(), begins_.end());
    rows_.resize(rows.size());
    for (const std::uint32_t position : positions)
        rows_[ends[groups.groups[position]]++] = rows[position];
}

bool WindowRows::equal(RowId a, RowId b) const noexcept {
    return std::all_of(order_.begin(), order_.end(),
                       [=](const SortColumn& column) { return column.cells->equal(a, b); });
}

WindowCells window_cells(const WindowFunction& function, const TableColumn* column, RowRange rows,
                         const WindowRows& window, std::size_t ids) {
    switch (function.kind) {
    case WindowKind::rowNumber:
        return {TypeDomain(kNumberType),
                numbered(window, ids, [](Rows, std::size_t, std::int64_t before) { return before + 1; })};
    case WindowKind::rank:
    case WindowKind::denseRank:
        return {TypeDomain(kNumberType), ranks(function, window, ids)};
    default:
        break;
    }
    const CellColumn& cells = column->cells;
    if (function.kind == WindowKind::lag || function.kind == WindowKind::lead) {
        TypeDomain domain = column->info.domain;
        admit_undefined(domain);
        return {std::move(domain),
                shifted(cells, window, ids, function.distance, function.kind == WindowKind::lead)};
    }
    require_no_texts(rows, *column);
    if (function.kind == WindowKind::runningTotal)
        return {domain_of_numbers(column->info.domain), running_totals(cells, window, ids)};
    TypeDomain numbers{kNumberType, kUndefinedType};
    if (function.kind == WindowKind::difference)
        return {std::move(numbers), differences(cells, window, ids)};
    return {std::move(numbers), shares(cells, window, ids)};
}

} // namespace core
