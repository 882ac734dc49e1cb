// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/bound_expression.h"

#include "core/tables/query/expression_binder.h"
#include "core/tables/query/expression_errors.h"
#include "core/tables/query/expression_steps.h"
#include "core/tables/query/index_search.h"
#include "core/tables/query/standard_dates.h"

#include <core/runtime/threads/thread.h>

#include <algorithm>
#include <array>

namespace core {
namespace {

using Form = CellColumn::Form;

KindSet described_kinds(const TypeDomain& domain) {
    if (domain.isEmpty())
        return kAnyKinds;
    KindSet kinds = kEmptyKinds;
    std::size_t count = 0;
    for (auto kind = ValueKind::undefined; kind < ValueKind::object;
         kind = static_cast<ValueKind>(static_cast<int>(kind) + 1)) {
        const bool has = domain.containsType(kind);
        kinds |= has ? kind_bit(kind) : KindSet{0};
        count += has ? 1 : 0;
    }
    return domain.pattern().size() > count ? static_cast<KindSet>(kinds | kObjectKind) : kinds;
}

/// Cuts rows into batches and calls `work(batch, position of the first)` for each, until the thread is asked
/// to stop.
template <class Work>
void for_batches(RowRange rows, Work work) {
    std::array<RowId, RowBatch::kMost> ids;
    for (std::size_t begin = 0; begin < rows.size(); begin += RowBatch::kMost) {
        Thread::check();
        const std::size_t count = std::min(RowBatch::kMost, rows.size() - begin);
        for (std::size_t i = 0; i < count; ++i)
            ids[i] = rows[begin + i];
        const bool neighbours =
            ids[count - 1] - ids[0] == count - 1 && std::is_sorted(ids.begin(), ids.begin() + count);
        work(neighbours ? RowBatch(ids[0], count) : RowBatch(std::span<const RowId>(ids).first(count)),
             begin);
    }
}

} // namespace

KindSet column_kinds(const TableColumn& column) {
    const CellColumn& cells = column.cells;
    if (cells.form() == Form::numbers)
        return kNumberKind | kEmptyKinds;
    if (cells.form() == Form::dates)
        return kDateKind | kEmptyKinds;
    const KindSet described = described_kinds(column.info.domain);
    constexpr std::size_t kFew = 4096;
    if (described != kAnyKinds || cells.form() != Form::coded || cells.dictionary().size() > kFew ||
        cells.dictionary().size() == 1)
        return described;
    KindSet kinds = kEmptyKinds;
    for (const Value& value : cells.dictionary().values())
        kinds |= kind_bit(value.kind());
    return kinds;
}

BoundExpression::BoundExpression(const TableData& data, const ExpressionNode& expression)
    : data_(data), step_(bind_expression(data, expression)) {}

/// Says in which row a failure came up.
template <class Work>
void BoundExpression::run(Work work) {
    current_ = kNoRow;
    try {
        work();
    } catch (const ExpressionException& failure) {
        if (current_ == kNoRow)
            throw;
        fail_in_row(failure, data_.rowsOf(data_.parentOf(current_)).positionOf(current_));
    }
}

std::vector<RowId> BoundExpression::rowsWhere(RowRange rows) {
    require_condition(*step_);
    std::vector<RowId> found;
    run([&] {
        std::array<Truth, RowBatch::kMost> truths;
        std::array<RowId, RowBatch::kMost> matches;
        for_batches(rows, [&](const RowBatch& batch, std::size_t) {
            step_->truths(batch, truths, current_);
            std::size_t count = 0;
            for (std::size_t i = 0; i < batch.size(); ++i) {
                matches[count] = batch[i];
                count += truths[i] == Truth::yes ? 1 : 0;
            }
            found.insert(found.end(), matches.begin(), matches.begin() + static_cast<std::ptrdiff_t>(count));
        });
    });
    return found;
}

CellColumn BoundExpression::values(RowRange rows) {
    CellColumn cells;
    if (rows.size() != 0 && step_->wordForm() && takeWords(rows, cells))
        return cells;
    cells.grow(rows.size());
    run([&] {
        for (std::size_t i = 0; i < rows.size(); ++i) {
            if (i % RowBatch::kMost == 0)
                Thread::check();
            current_ = rows[i];
            cells.put(static_cast<RowId>(i), step_->value(current_));
        }
    });
    return cells;
}

bool BoundExpression::takeWords(RowRange rows, CellColumn& out) {
    std::vector<std::int64_t> words(rows.size());
    bool fits = true;
    for_batches(rows, [&](const RowBatch& batch, std::size_t begin) {
        fits = fits && step_->words(batch, std::span(words).subspan(begin, batch.size()));
    });
    if (fits)
        out = CellColumn::ofWords(step_->wordForm()->form, step_->wordForm()->scale, std::move(words));
    return fits;
}

CellColumn computed_cells(const TableData& data, const ExpressionNode& expression) {
    const RowList list(data, kNoRow, data.isTree());
    CellColumn values = BoundExpression(data, expression).values(list.range());
    if (data.rows().isPlain())
        return values;
    CellColumn cells;
    for (std::size_t i = 0; i < list.range().size(); ++i) {
        const RowId row = list.range()[i];
        cells.grow(std::size_t{row} + 1);
        cells.put(row, values.get(static_cast<RowId>(i)));
    }
    return cells;
}

TypeDomain domain_of_cells(const CellColumn& cells) {
    std::vector<GUID> types;
    const auto add = [&](const Value& value) {
        const GUID type = value.type().id();
        if (std::find(types.begin(), types.end(), type) == types.end())
            types.push_back(type);
    };
    if (cells.form() == CellColumn::Form::coded) {
        for (const CellColumn::Code code : cells.codes())
            if (code == 0 && types.empty())
                types.push_back(kUndefinedType);
        for (const Value& value : cells.dictionary().values().subspan(1))
            add(value);
    } else if (cells.form() == CellColumn::Form::values) {
        for (const Value& value : cells.values())
            add(value);
    } else {
        const auto words = cells.words();
        types.push_back(cells.form() == CellColumn::Form::numbers ? kNumberType : kDateType);
        if (std::find(words.begin(), words.end(), CellColumn::kEmptyWord) != words.end())
            types.push_back(kUndefinedType);
    }
    const bool nothing = types.empty() || (types.size() == 1 && types.front() == kUndefinedType);
    TypeDomain domain;
    if (!nothing) // a column without any value may get every value later
        domain.addTypes(types);
    return domain;
}

std::vector<RowId> rows_where(const TableData& data, RowId parent, bool subordinates,
                              const ExpressionNode& condition) {
    // The index and the expression must mean the same day.
    const ExpressionPtr dated = with_standard_dates(condition);
    const ExpressionNode& asked = dated ? *dated : condition;
    BoundExpression bound(data, asked);
    if (const auto rows = rows_by_index(data, asked))
        return bound.rowsWhere(RowRange(*rows));
    const RowList list(data, parent, subordinates);
    return bound.rowsWhere(list.range());
}

} // namespace core
