// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/index_search.h"

#include "core/tables/query/bound_expression.h"
#include "core/tables/query/expression_binder.h"
#include "core/tables/query/expression_functions.h"
#include "core/tables/sort/row_sort.h"

#include <core/runtime/settings.h>

#include <algorithm>
#include <utility>

namespace core {
namespace {

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

/// What a part of a condition says of a column: how its cell, or a date function of it that rises, is
/// compared with constants.
struct Limits {
    const ExpressionNode* operand = nullptr; // null for a part that says nothing
    const ExpressionNode* least = nullptr;   // literals
    const ExpressionNode* most = nullptr;
    bool leastIncluded = false;
    bool mostIncluded = false;
};

/// Says whether comparing a function of a column is comparing the column.
bool rises(const ExpressionNode& call) noexcept {
    const ExpressionFunction* const function = find_expression_function(call.name);
    return function != nullptr && function->ofWords.rises;
}

Limits limits_of(const ExpressionNode& part, const TableData& data, const TableColumn& column) {
    Limits limits;
    if (part.kind == ExpressionKind::between && !part.negated) {
        limits = {part.operands[0].get(), part.operands[1].get(), part.operands[2].get(), true, true};
    } else if (part.kind == ExpressionKind::comparison) {
        const ExpressionOperator sign = part.operators.front();
        const bool equal = sign == ExpressionOperator::equal;
        const bool least =
            equal || sign == ExpressionOperator::greater || sign == ExpressionOperator::greaterEqual;
        const bool most = equal || sign == ExpressionOperator::less || sign == ExpressionOperator::lessEqual;
        const ExpressionNode* const limit = part.operands[1].get();
        limits = {part.operands[0].get(), least ? limit : nullptr, most ? limit : nullptr,
                  sign != ExpressionOperator::greater, sign != ExpressionOperator::less};
    }
    if (limits.least == nullptr && limits.most == nullptr)
        return {};
    const bool call = limits.operand->kind == ExpressionKind::call && rises(*limits.operand);
    const ExpressionNode& named = call ? *limits.operand->operands.front() : *limits.operand;
    if (named.kind != ExpressionKind::column || data.findColumn(named.name) != data.positionOf(column))
        return {};
    const KindSet kinds = call ? find_expression_function(limits.operand->name)->result
                               : static_cast<KindSet>(column_kinds(column) & ~kEmptyKinds);
    for (const ExpressionNode* const limit : {limits.least, limits.most})
        if (limit != nullptr &&
            (limit->kind != ExpressionKind::literal || kind_bit(limit->value.kind()) != kinds))
            return {};
    return limits;
}

/// The rows in the order of their cells in the first column; none while sorting them does not pay.
std::span<const RowId> sorted_by(const TableData& data, TableIndex& index) {
    const Locale& locale = current_settings().locale;
    if (index.sorted(locale).empty() && index.askSorted()) {
        const SortColumn column{&index.columns().front()->cells};
        index.setSorted(sorted_rows(RowList(data, kNoRow, false).range(), {&column, 1}), locale);
    }
    return index.sorted(locale);
}

/// Takes those of some sorted rows that answer limits.
std::span<const RowId> narrowed(std::span<const RowId> sorted, const TableData& data, const Limits& limits) {
    const StepPtr operand = bind_expression(data, *limits.operand);
    /// Says whether the row stands before a limit; what is not filled stands before all.
    const auto before = [&](const ExpressionNode& limit, bool andEqual) {
        return [&, andEqual](RowId row) {
            const Value value = operand->value(row);
            const int order = is_empty_cell(value) ? -1 : compare_values(value, limit.value);
            return order < 0 || (andEqual && order == 0);
        };
    };
    const auto first = limits.least == nullptr
                           ? sorted.begin()
                           : std::partition_point(sorted.begin(), sorted.end(),
                                                  before(*limits.least, !limits.leastIncluded));
    const auto last =
        limits.most == nullptr
            ? sorted.end()
            : std::partition_point(first, sorted.end(), before(*limits.most, limits.mostIncluded));
    return {first, last};
}

/// The rows that limits of the first column of an index leave, in no particular order; nothing where they are
/// too many for an index.
std::optional<std::vector<RowId>> rows_between(const TableData& data, TableIndex& index,
                                               std::span<const ExpressionPtr> parts) {
    const TableColumn& column = *index.columns().front();
    const KindSet kinds = column_kinds(column) & ~kEmptyKinds;
    if (kinds != kNumberKind && kinds != kDateKind && kinds != kStringKind)
        return std::nullopt;
    std::vector<Limits> all;
    for (const ExpressionPtr& part : parts)
        if (const Limits limits = limits_of(*part, data, column); limits.operand != nullptr)
            all.push_back(limits);
    if (all.empty())
        return std::nullopt;
    const std::span<const RowId> sorted = sorted_by(data, index);
    if (sorted.empty())
        return std::nullopt;
    // The parts of a date beyond the calendar are 0, so they do not rise there.
    const Value latest = column.cells.get(sorted.back());
    if (const Date* const date = latest.asDate(); date != nullptr && !date->isInRange())
        return std::nullopt;
    auto rows = sorted;
    for (const Limits& limits : all)
        rows = narrowed(rows, data, limits);
    constexpr std::size_t kPart = 8;
    if (rows.size() * kPart > sorted.size())
        return std::nullopt;
    return std::vector<RowId>(rows.begin(), rows.end());
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
        auto rows = rows_between(data, *index, parts);
        if (rows) {
            put_in_order(*rows, data.rows());
            return rows;
        }
    }
    return std::nullopt;
}

} // namespace core
