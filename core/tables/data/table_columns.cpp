// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/threads/loop_check.h"
#include "core/tables/convert/cell_fit.h"
#include "core/tables/data/table_data.h"

#include <core/strings/names.h>
#include <core/tables/errors.h>
#include <core/values/errors.h>

#include <algorithm>
#include <utility>

namespace core {

std::optional<std::size_t> TableData::findColumn(wstring_view name) const {
    if (names_.size() == 0) {
        NameTable names; // complete before it is used
        names.reserve(static_cast<int>(columns_.size()));
        for (std::size_t i = 0; i < columns_.size(); ++i)
            names.add(columns_[i]->info.name, static_cast<int>(i));
        names_ = std::move(names);
    }
    const int found = names_.find(name);
    return found >= 0 ? std::optional(static_cast<std::size_t>(found)) : std::nullopt;
}

std::optional<std::size_t> TableData::findColumn(ColumnId id) const noexcept {
    const auto asMade = static_cast<std::size_t>(id); // its position unless columns have moved
    if (asMade < columns_.size() && columns_[asMade]->id == id)
        return asMade;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        if (columns_[i]->id == id)
            return i;
    }
    return std::nullopt;
}

std::size_t TableData::positionOf(const TableColumn& column) const noexcept {
    const auto found = std::find_if(columns_.begin(), columns_.end(),
                                    [&](const auto& candidate) { return candidate.get() == &column; });
    return static_cast<std::size_t>(found - columns_.begin());
}

void TableData::checkName(wstring_view name, const TableColumn* except) const {
    if (!is_valid_name(name))
        throw_error<ContextException>(messages::kBadColumnName, {wstring(name)});
    const auto same = findColumn(name);
    if (same && columns_[*same].get() != except)
        throw_error<ContextException>(messages::kColumnTwice, {wstring(name)});
}

TableColumn& TableData::insertColumn(std::size_t position, ColumnInfo info) {
    checkName(info.name, nullptr);
    auto column = std::make_unique<TableColumn>(nextColumn_, std::move(info));
    column->cells.fill(ids_, column->defaultValue);
    // An appended column adds its name to those of the others: to gather all names each time takes long.
    const bool last = position == columns_.size();
    NameTable names = last ? std::exchange(names_, {}) : NameTable();
    if (names.size() != 0)
        names.add(column->info.name, static_cast<int>(position));
    columns_.insert(columns_.begin() + static_cast<std::ptrdiff_t>(position), std::move(column));
    ++nextColumn_;
    columnsChanged();
    names_ = std::move(names);
    return *columns_[position];
}

void TableData::appendColumn(ColumnInfo info, CellColumn cells) {
    cells.grow(ids_);
    std::swap(insertColumn(columns_.size(), std::move(info)).cells, cells);
    tellColumnsChanged();
}

void TableData::columnsChanged() noexcept {
    names_.clear();
    ++version_;
}

void TableData::renameColumn(TableColumn& column, wstring_view name) {
    checkName(name, &column);
    column.info.name = name;
    names_.clear();
    tell(&TableWatcher::columnsChanged);
}

void TableData::setDomain(TableColumn& column, TypeDomain domain, Losses* losses) {
    if (domain == column.info.domain)
        return; // the cells are adjusted to it; doing it again would cut those that rounding carried past it
    Value byDefault = domain.defaultValue();
    Losses lost;
    CellColumn cells = fitted(column, domain, lost);
    report(std::move(lost), losses);
    std::swap(column.info.domain, domain);
    swap(column.defaultValue, byDefault);
    setCells(column, std::move(cells));
    tell(&TableWatcher::columnsChanged);
}

/// Hands losses to who asked for them; throws them where nobody did.
void TableData::report(Losses lost, Losses* losses) {
    if (losses == nullptr)
        lost.check();
    else
        *losses = std::move(lost);
}

/// The cells of a column as another description has them. A value of a dictionary is converted once.
CellColumn TableData::fitted(const TableColumn& column, const TypeDomain& domain, Losses& losses) const {
    const bool coded = column.cells.form() == CellColumn::Form::coded;
    std::vector<std::optional<FittedCell>> byCode(coded ? column.cells.dictionary().size() : 0);
    CellColumn cells;
    cells.grow(ids_);
    detail::LoopCheck check;
    for (std::size_t i = 0; i < ids_; ++i) {
        check();
        const auto row = static_cast<RowId>(i);
        if (!rows_.contains(row))
            continue;
        std::optional<FittedCell> own;
        std::optional<FittedCell>& cell = coded ? byCode[column.cells.codes()[row]] : own;
        if (!cell)
            cell = fit_cell(domain, column.cells.get(row));
        if (cell->loss)
            losses.add({.row = tree_ ? i : rows_.positionOf(row),
                        .column = column.info.name,
                        .text = column.cells.get(row).presentation(),
                        .reason = *cell->loss});
        Value value = cell->value;
        cells.exchange(row, value);
    }
    return cells;
}

void TableData::assign(std::vector<std::unique_ptr<TableColumn>> columns, std::size_t count) noexcept {
    columns_.swap(columns);
    for (const auto& column : columns_)
        nextColumn_ = std::max(nextColumn_, column->id + 1);
    columnsChanged();
    rows_.makePlain(count);
    ids_ = count;
    count_ = count;
}

void TableData::setRows(std::span<CellColumn> cells, std::size_t count) noexcept {
    for (std::size_t i = 0; i < columns_.size(); ++i)
        setCells(*columns_[i], std::move(cells[i]));
    rows_.makePlain(count);
    ids_ = count;
    count_ = count;
    ++version_;
}

void TableData::removeColumn(std::size_t position) noexcept {
    const std::unique_ptr<TableColumn> dying = std::move(columns_[position]);
    columns_.erase(columns_.begin() + static_cast<std::ptrdiff_t>(position));
    std::erase_if(indexes_, [&](const auto& index) { return index->covers(*dying); });
    columnsChanged();
    tell(&TableWatcher::columnsChanged);
}

void TableData::moveColumn(std::size_t from, std::size_t to) noexcept {
    const auto first = columns_.begin() + static_cast<std::ptrdiff_t>(std::min(from, to));
    const auto last = columns_.begin() + static_cast<std::ptrdiff_t>(std::max(from, to)) + 1;
    std::rotate(first, from < to ? first + 1 : last - 1, last);
    columnsChanged();
    tell(&TableWatcher::columnsChanged);
}

void TableData::clearColumns() noexcept {
    const auto dying = std::exchange(columns_, {});
    indexes_.clear();
    columnsChanged();
    tell(&TableWatcher::columnsChanged);
}

void TableData::fill(std::span<const std::size_t> columns, const GenericValue& value, Losses* losses) {
    std::vector<CellColumn> filled(columns.size());
    Losses lost;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const ColumnInfo& info = columns_[columns[i]]->info;
        const FittedCell cell = fit_cell(info.domain, value);
        const wstring text = cell.loss ? value.presentation() : wstring();
        for (std::size_t row = 0; cell.loss && row < count_; ++row)
            lost.add({.row = row, .column = info.name, .text = text, .reason = *cell.loss});
        filled[i].fill(ids_, cell.value);
        for (const RowId row : free_) { // a row that is not there holds no object
            Value undefined;
            filled[i].exchange(row, undefined);
        }
    }
    report(std::move(lost), losses);
    for (std::size_t i = 0; i < columns.size(); ++i)
        setCells(*columns_[columns[i]], std::move(filled[i]));
    tell(&TableWatcher::reloaded);
}

void TableData::load(RowId parent, std::size_t position, std::span<const Value> values, Losses* losses) {
    TableColumn& column = *columns_[position];
    const std::size_t count = std::min(values.size(), rowsOf(parent).size());
    std::vector<Value> cells;
    cells.reserve(count);
    Losses lost;
    detail::LoopCheck check;
    for (const Value& value : values.first(count)) {
        check();
        FittedCell cell = fit_cell(column.info.domain, value);
        if (cell.loss)
            lost.add({.row = cells.size(),
                      .column = column.info.name,
                      .text = value.presentation(),
                      .reason = *cell.loss});
        cells.push_back(std::move(cell.value));
    }
    report(std::move(lost), losses);
    giveIndexesUp(column);
    column.cells.exchange(rowsOf(parent), cells);
    tell(&TableWatcher::reloaded);
}

void TableData::setCells(TableColumn& column, CellColumn cells) noexcept {
    giveIndexesUp(column);
    std::swap(column.cells, cells);
}

TableIndex& TableData::addIndex(std::vector<const TableColumn*> columns) {
    return *indexes_.emplace_back(std::make_unique<TableIndex>(std::move(columns)));
}

void TableData::removeIndex(std::size_t position) noexcept {
    indexes_.erase(indexes_.begin() + static_cast<std::ptrdiff_t>(position));
}

void TableData::giveIndexesUp(const TableColumn& column) noexcept {
    for (const auto& index : indexes_) {
        if (index->covers(column))
            index->giveUp();
    }
}

void TableData::giveIndexesUp() noexcept {
    for (const auto& index : indexes_)
        index->giveUp();
}

} // namespace core
