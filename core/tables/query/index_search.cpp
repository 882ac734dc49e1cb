// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/index_search.h"

#include "core/tables/query/bound_expression.h"
#include "core/tables/query/expression_operations.h"
#include "core/tables/sort/row_sort.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace core {
namespace {

using Form = CellColumn::Form;

/// The parts of a condition that all hold in each row that passes.
std::span<const ExpressionPtr> parts_of(const ExpressionNode& condition,
                                        const ExpressionPtr& alone) noexcept {
    return condition.kind == ExpressionKind::logicalAnd ? std::span(condition.operands)
                                                        : std::span(&alone, 1);
}

/// Adds what a part of a condition says of a column that must equal a constant. Only a column that can hold
/// values of that kind alone counts: in any other one a cell may be there that cannot be compared.
void add_equality(std::vector<RowCondition>& equalities, const TableData& data, const ExpressionNode& part) {
    if (part.kind != ExpressionKind::comparison || part.operators.front() != ExpressionOperator::equal)
        return;
    const ExpressionNode* column = part.operands[0].get();
    const ExpressionNode* literal = part.operands[1].get();
    if (column->kind != ExpressionKind::column)
        std::swap(column, literal);
    if (column->kind != ExpressionKind::column || literal->kind != ExpressionKind::literal ||
        is_empty_cell(literal->value))
        return;
    const auto position = data.findColumn(column->name);
    const KindSet allowed = kEmptyKinds | kind_bit(literal->value.kind());
    if (position && (column_kinds(data.column(*position)) & ~allowed) == 0)
        equalities.push_back({&data.column(*position), &literal->value});
}

/// Narrows an interval to the words of a column that a part of a condition lets pass; returns whether the
/// part says anything of them.
bool narrow(WordInterval& interval, const TableData& data, const TableColumn& column,
            const ExpressionNode& part) {
    if (part.negated || part.operands.empty() || part.operands[0]->kind != ExpressionKind::column ||
        data.findColumn(part.operands[0]->name) != data.positionOf(column))
        return false;
    const CellColumn& cells = column.cells;
    const ValueKind kind = cells.form() == Form::numbers ? ValueKind::number : ValueKind::date;
    const auto limit = [&](ExpressionOperator sign, const ExpressionNode& literal) {
        if (literal.kind != ExpressionKind::literal || literal.value.kind() != kind)
            return false;
        const WordInterval words = word_interval(sign, literal.value, {cells.form(), cells.scale()});
        interval = {std::max(interval.least, words.least), std::min(interval.most, words.most)};
        return true;
    };
    if (part.kind == ExpressionKind::between)
        return limit(ExpressionOperator::greaterEqual, *part.operands[1]) &&
               limit(ExpressionOperator::lessEqual, *part.operands[2]);
    return part.kind == ExpressionKind::comparison && part.operators[0] != ExpressionOperator::notEqual &&
           limit(part.operators[0], *part.operands[1]);
}

/// The rows whose words lie in an interval, in no particular order; nothing while sorting them does not pay,
/// or where they are too many for it.
std::optional<std::vector<RowId>> rows_between(const TableData& data, TableIndex& index,
                                               WordInterval interval) {
    const CellColumn& cells = index.columns().front()->cells;
    if (index.sorted().empty()) {
        if (!index.askSorted())
            return std::nullopt;
        const SortColumn column{&cells};
        index.setSorted(sorted_rows(RowList(data, kNoRow, false).range(), {&column, 1}));
    }
    const auto words = cells.words();
    const auto sorted = index.sorted();
    const auto first = std::lower_bound(sorted.begin(), sorted.end(), interval.least,
                                        [&](RowId row, std::int64_t least) { return words[row] < least; });
    const auto last = std::upper_bound(first, sorted.end(), interval.most,
                                       [&](std::int64_t most, RowId row) { return most < words[row]; });
    constexpr std::ptrdiff_t kPart = 8;
    if ((last - first) * kPart > std::ssize(sorted))
        return std::nullopt;
    return std::vector<RowId>(first, std::max(first, last));
}

} // namespace

std::optional<std::vector<RowId>> rows_by_index(const TableData& data, const ExpressionNode& condition) {
    if (data.indexes().empty() || data.isTree())
        return std::nullopt;
    const ExpressionPtr alone(ExpressionPtr(), &condition); // owns nothing
    const auto parts = parts_of(condition, alone);
    std::vector<RowCondition> equalities;
    for (const ExpressionPtr& part : parts)
        add_equality(equalities, data, *part);
    if (has_index_for(data, equalities))
        return matching_rows(data, kNoRow, false, equalities);
    for (const auto& index : data.indexes()) {
        const TableColumn& column = *index->columns().front();
        if (column.cells.form() != Form::numbers && column.cells.form() != Form::dates)
            continue;
        constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
        WordInterval interval{-kMost, kMost};
        bool narrowed = false;
        for (const ExpressionPtr& part : parts)
            narrowed = narrow(interval, data, column, *part) || narrowed;
        auto rows = narrowed ? rows_between(data, *index, interval) : std::nullopt;
        if (rows) {
            put_in_order(*rows, data.rows());
            return rows;
        }
    }
    return std::nullopt;
}

} // namespace core
