// SPDX-License-Identifier: Apache-2.0
#include "core/tables/shape/added_rows.h"

#include "core/tables/convert/cell_fit.h"
#include "core/tables/query/row_search.h"

#include <core/collections/value_array.h>
#include <core/collections/value_structure.h>
#include <core/strings/integer_text.h>
#include <core/tables/errors.h>
#include <core/values/errors.h>

namespace core {
namespace {

[[noreturn]] void throw_more_values(std::size_t row, std::size_t values, std::size_t columns) {
    throw_error<ContextException>(messages::kMoreValues,
                                  {string_intto(row + 1), string_intto(values), string_intto(columns)});
}

/// Returns what the cell of a column keeps of a value.
Value fitted(const TableColumn& column, std::size_t row, const Value& value, Losses& losses) {
    FittedCell cell = fit_cell(column.info.domain, value);
    if (cell.loss)
        losses.add(
            {.row = row, .column = column.info.name, .text = value.presentation(), .reason = *cell.loss});
    return std::move(cell.value);
}

} // namespace

/// Returns the position of the column with a name, of a new one where the table has none.
std::size_t AddedRows::columnFor(wstring_view name, const ColumnInfo* info) {
    if (const auto position = data_.findColumn(name))
        return *position;
    const auto [known, isNew] = lackingNames_.emplace(wstring(name), cells_.size());
    if (isNew) {
        lacking_.push_back(info != nullptr ? *info : ColumnInfo{.name = wstring(name)});
        cells_.emplace_back();
    }
    return known->second;
}

void AddedRows::readCell(std::size_t column, const Value& value, Losses& losses) {
    cells_[column].grow(count_ + 1);
    const bool described = column < data_.columnCount() && !data_.column(column).info.domain.isEmpty();
    const auto row = static_cast<RowId>(count_);
    if (described)
        cells_[column].put(row, fitted(data_.column(column), data_.rows().size() + count_, value, losses));
    else
        cells_[column].put(row, value);
}

void AddedRows::readRow(const Value& row, Losses& losses) {
    if (const auto structure = row.query<IValueStructure>()) {
        std::size_t position = 0;
        for (IValuePairs::View pair; structure->next(position, pair);)
            readCell(columnFor(*pair.key->asString(), nullptr), *pair.value, losses);
    } else if (const auto values = row.query<IValueSequence>()) {
        if (values->count() > data_.columnCount())
            throw_more_values(count_, values->count(), data_.columnCount());
        for (std::size_t i = 0; i < values->count(); ++i)
            readCell(i, values->values()[i], losses);
    } else if (const auto object = row.query<IRowObject>()) {
        const TableData& table = object->handle().data();
        const RowId id = object->handle().row();
        for (std::size_t i = 0; i < table.columnCount(); ++i)
            readCell(columnFor(table.column(i).info.name, &table.column(i).info), table.get(id, i), losses);
    } else {
        throw_error<ContextException>(messages::kNotARow,
                                      {string_intto(count_ + 1), row.type().presentation()});
    }
    ++count_;
}

void AddedRows::read(std::span<const Value> rows, Losses& losses) {
    watch_.expect(2 * rows.size()); // to be read, and to be put
    for (const Value& row : rows) {
        watch_.step(1);
        readRow(row, losses);
    }
}

void AddedRows::read(const TableData& table, Losses& losses) {
    std::vector<std::size_t> columns;
    for (std::size_t i = 0; i < table.columnCount(); ++i)
        columns.push_back(columnFor(table.column(i).info.name, &table.column(i).info));
    const RowList list(table, kNoRow, false);
    const RowRange rows = list.range();
    watch_.expect(rows.size());
    for (std::size_t i = 0; i < columns.size(); ++i) {
        watch_.step(0);
        const TableColumn& from = table.column(i);
        const std::size_t to = columns[i];
        const bool same = to >= data_.columnCount() || data_.column(to).info.domain.isEmpty() ||
                          data_.column(to).info.domain == from.info.domain;
        if (same)
            cells_[to] = from.cells.copy(rows); // they fit as they are
        else
            cells_[to].grow(rows.size());
        for (std::size_t row = 0; row < rows.size() && !same; ++row) {
            watch_.turn();
            cells_[to].put(static_cast<RowId>(row), fitted(data_.column(to), data_.rows().size() + row,
                                                           from.cells.get(rows[row]), losses));
        }
    }
    count_ = rows.size();
}

void AddedRows::put() {
    const std::size_t rows = data_.rows().size();
    const std::size_t columns = data_.columnCount();
    try {
        for (ColumnInfo& info : lacking_)
            data_.insertColumn(data_.columnCount(), std::move(info));
        if (!lacking_.empty())
            data_.tellColumnsChanged();
        putRows();
    } catch (...) {
        while (data_.rows().size() > rows)
            data_.removeRow(kNoRow, data_.rows().size() - 1);
        while (data_.columnCount() > columns)
            data_.removeColumn(data_.columnCount() - 1);
        throw;
    }
}

void AddedRows::putRows() {
    std::vector<Value> cells(cells_.size());
    for (std::size_t i = 0; i < count_; ++i) {
        const auto row = static_cast<RowId>(i);
        for (std::size_t column = 0; column < cells.size(); ++column) {
            const bool given = row < cells_[column].size();
            cells[column] = given ? cells_[column].get(row) : Value();
            if (cells[column].isUndefined())
                cells[column] = data_.column(column).defaultValue;
        }
        watch_.step(1);
        data_.insertRow(kNoRow, data_.rows().size(), cells, CellSource::stored);
    }
}

std::vector<Value> fitted_cells(const TableData& data, std::span<const GenericValue> values) {
    while (!values.empty() && values.back().isUndefined())
        values = values.first(values.size() - 1);
    const std::size_t row = data.rows().size();
    if (values.size() > data.columnCount())
        throw_more_values(row, values.size(), data.columnCount());
    Losses losses;
    std::vector<Value> cells;
    cells.reserve(values.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        cells.push_back(fitted(data.column(i), row, values[i], losses));
    losses.check();
    return cells;
}

} // namespace core
