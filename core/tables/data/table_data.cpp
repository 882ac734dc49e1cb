// SPDX-License-Identifier: Apache-2.0
#include "core/tables/data/table_data.h"

#include "core/runtime/threads/loop_check.h"

#include <core/tables/errors.h>
#include <core/values/errors.h>

#include <algorithm>
#include <new>

namespace core {
namespace {

/// Makes room for `more` elements, in steps that keep it cheap to add them one by one.
template <class T>
void make_room(std::vector<T>& elements, std::size_t more) {
    if (elements.capacity() - elements.size() < more)
        elements.reserve(std::max(elements.size() + more, 2 * elements.capacity()));
}

} // namespace

TableData::TableData(IValue& owner, bool tree)
    : owner_(owner), tree_(tree), chunks_(std::make_unique<ChunksByRow>()), rows_(*chunks_, !tree) {}

TableData::~TableData() = default;

void TableData::replace(TableData& fresh) noexcept {
    detachHandles();
    std::swap(nextColumn_, fresh.nextColumn_);
    columns_.swap(fresh.columns_);
    columnsChanged();
    indexes_.swap(fresh.indexes_);
    chunks_.swap(fresh.chunks_);
    std::swap(rows_, fresh.rows_);
    nodes_.swap(fresh.nodes_);
    std::swap(ids_, fresh.ids_);
    std::swap(count_, fresh.count_);
    free_.swap(fresh.free_);
    tell(&TableWatcher::reloaded);
}

const RowOrder& TableData::rowsOf(RowId parent) const noexcept {
    if (parent == kNoRow)
        return rows_;
    static const RowOrder kNone = [] {
        static ChunksByRow none;
        return RowOrder(none, false);
    }();
    const auto& rows = nodes_[parent].rows;
    return rows ? *rows : kNone;
}

RowOrder& TableData::makeRowsOf(RowId parent) {
    if (parent == kNoRow)
        return rows_;
    auto& rows = nodes_[parent].rows;
    if (!rows)
        rows = std::make_unique<RowOrder>(*chunks_, false);
    return *rows;
}

RowId TableData::nextRow() const {
    if (!free_.empty() && walks_.empty())
        return free_.back();
    if (ids_ == kNoRow)
        throw std::bad_alloc();
    return static_cast<RowId>(ids_);
}

RowId TableData::insertRow(RowId parent, std::size_t position, std::span<const Value> cells,
                           CellSource source) {
    RowOrder& order = makeRowsOf(parent);
    if (position != order.size())
        beforeReorder(order);
    const RowId row = nextRow();
    try {
        putCells(row, cells, source);
        if (tree_) {
            nodes_.resize(std::max<std::size_t>(nodes_.size(), std::size_t{row} + 1));
            nodes_[row].parent = parent;
        }
        order.insert(position, row);
    } catch (...) {
        for (const auto& column : columns_) {
            Value undefined; // a row that is not there holds no object
            if (row < column->cells.size())
                column->cells.exchange(row, undefined);
        }
        throw;
    }
    if (row == ids_)
        ++ids_;
    else
        free_.pop_back();
    ++count_;
    ++version_;
    for (const auto& index : indexes_)
        index->link(row);
    tell(&TableWatcher::rowAdded, parent, position);
    return row;
}

/// Fills the cells, all Undefined, of a row that is not there yet.
void TableData::putCells(RowId row, std::span<const Value> cells, CellSource source) {
    // Values lie anywhere in memory: their objects are fetched together, not one after the other.
    for (const Value& cell : cells)
        __builtin_prefetch(cell.object());
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        TableColumn& column = *columns_[i];
        const TypeDomain& domain = column.info.domain;
        const auto put = [&](const Value& value) {
            return row == column.cells.size() ? column.cells.append(value) : column.cells.put(row, value);
        };
        if (row > column.cells.size())
            column.cells.grow(row);
        bool changed = false;
        if (i >= cells.size())
            changed = put(column.defaultValue);
        else if (source == CellSource::stored || domain.isEmpty() || domain.fits(cells[i]))
            changed = put(cells[i]);
        else
            changed = put(domain.adjust(cells[i]));
        if (changed)
            giveIndexesUp(column);
    }
}

void TableData::removeRow(RowId parent, std::size_t position) {
    RowOrder& order = makeRowsOf(parent);
    const RowId row = order.at(position);
    std::vector<RowId> subordinates;
    if (tree_)
        subordinates = withSubordinates(std::span(&row, 1));
    const std::span<const RowId> doomed = tree_ ? std::span<const RowId>(subordinates) : std::span(&row, 1);
    std::vector<Value> dying;
    prepareRelease(doomed.size(), dying);
    beforeReorder(order);
    order.erase(position);
    release(doomed, dying);
    tell(&TableWatcher::rowDeleted, parent, position);
}

void TableData::removeRows(RowId parent) {
    std::vector<Value> dyingValues;
    if (parent != kNoRow) {
        RowOrder& order = makeRowsOf(parent);
        const std::vector<RowId> doomed = withSubordinates(order.rows());
        prepareRelease(doomed.size(), dyingValues);
        beforeReorder(order);
        order.clear();
        release(doomed, dyingValues);
        tell(&TableWatcher::rowsCleared, parent);
        return;
    }
    std::vector<CellColumn> dying(columns_.size());
    detachHandles();
    giveIndexesUp();
    for (std::size_t i = 0; i < columns_.size(); ++i)
        std::swap(columns_[i]->cells, dying[i]);
    nodes_.clear();
    rows_.clear();
    if (!tree_)
        rows_.makePlain(0);
    free_.clear();
    ids_ = 0;
    count_ = 0;
    ++version_;
    tell(&TableWatcher::rowsCleared, kNoRow);
}

void TableData::moveRow(RowId parent, std::size_t from, std::size_t to) {
    RowOrder& order = makeRowsOf(parent);
    beforeReorder(order);
    order.move(from, to);
    ++version_;
    tell(&TableWatcher::rowMoved, parent, from, to);
}

void TableData::reorder(RowId parent, std::span<const RowId> rows) {
    RowOrder& order = makeRowsOf(parent);
    beforeReorder(order);
    if (tree_)
        order.reorder(rows);
    else
        renumber(rows);
    ++version_;
}

/// Gives all rows of a table the ids 0, 1, 2, ... in their order, so that going through a column is going
/// through memory.
void TableData::renumber(std::span<const RowId> rows) {
    std::vector<CellColumn> room;
    room.reserve(columns_.size());
    for (const auto& column : columns_)
        room.push_back(column->cells.makeRoom(rows.size()));
    std::vector<RowHandle*> handles(handles_.empty() ? 0 : rows.size());
    std::vector<RowId> ids(walks_.empty() ? 0 : ids_, kNoRow);

    for (std::size_t i = 0; i < columns_.size(); ++i)
        columns_[i]->cells.take(rows, std::move(room[i]));
    giveIndexesUp();
    for (std::size_t i = 0; i < handles.size(); ++i) {
        handles[i] = handleOf(rows[i]);
        if (handles[i] != nullptr)
            handles[i]->row_ = static_cast<RowId>(i);
    }
    handles_.swap(handles);
    if (!walks_.empty()) {
        for (std::size_t i = 0; i < rows.size(); ++i)
            ids[rows[i]] = static_cast<RowId>(i);
    }
    for (RowWalk* const walk : walks_) {
        for (RowId& row : walk->rows_)
            row = row != kNoRow ? ids[row] : kNoRow;
    }
    rows_.makePlain(rows.size());
    free_.clear();
    ids_ = rows.size();
}

void TableData::keepRows(std::span<const RowId> rows) {
    std::vector<CellColumn> kept;
    kept.reserve(columns_.size());
    for (const auto& column : columns_)
        kept.push_back(column->cells.copy(RowRange(rows)));
    std::vector<RowHandle*> handles(handles_.empty() ? 0 : rows.size());
    std::vector<RowId> ids(ids_, kNoRow);
    for (std::size_t i = 0; i < rows.size(); ++i)
        ids[rows[i]] = static_cast<RowId>(i);
    beforeReorder(rows_);

    for (RowHandle* const handle : handles_) {
        if (handle == nullptr)
            continue;
        handle->row_ = ids[handle->row_];
        if (handle->row_ != kNoRow)
            handles[handle->row_] = handle;
    }
    handles_.swap(handles);
    for (RowWalk* const walk : walks_) {
        for (RowId& row : walk->rows_)
            row = row != kNoRow ? ids[row] : kNoRow;
    }
    giveIndexesUp();
    for (std::size_t i = 0; i < columns_.size(); ++i)
        std::swap(columns_[i]->cells, kept[i]);
    rows_.makePlain(rows.size());
    free_.clear();
    ids_ = rows.size();
    count_ = rows.size();
    ++version_;
    tell(&TableWatcher::reloaded);
}

void TableData::regroup(std::span<GroupedColumn> columns, std::size_t count) {
    std::vector<std::unique_ptr<TableColumn>> kept(columns.size());
    detachHandles();
    giveIndexesUp();
    for (std::size_t i = 0; i < columns.size(); ++i) {
        kept[i] = std::move(columns_[columns[i].position]);
        std::swap(kept[i]->info.domain, columns[i].domain);
        std::swap(kept[i]->cells,
                  columns[i].cells); // the old cells die with the caller's, when the table is whole
    }
    columns_.swap(kept);
    for (const auto& gone : kept) {
        if (gone)
            std::erase_if(indexes_, [&](const auto& index) { return index->covers(*gone); });
    }
    columnsChanged();
    rows_.makePlain(count);
    free_.clear();
    ids_ = count;
    count_ = count;
    tell(&TableWatcher::reloaded);
}

void TableData::set(RowId row, std::size_t position, GenericValue value) {
    TableColumn& column = *columns_[position];
    Value cell = column.info.domain.adjust(std::move(value));
    for (const auto& index : indexes_) {
        if (index->covers(column))
            index->unlink(row);
    }
    bool changed = false;
    try {
        changed = column.cells.exchange(row, cell);
    } catch (...) {
        giveIndexesUp(column);
        throw;
    }
    for (const auto& index : indexes_) {
        if (!index->covers(column))
            continue;
        if (changed)
            index->giveUp();
        else
            index->link(row);
    }
    tell(&TableWatcher::rowChanged, row, position);
}

std::vector<RowId> TableData::withSubordinates(std::span<const RowId> rows) const {
    std::vector<RowId> all;
    std::vector<RowId> ahead(rows.rbegin(), rows.rend());
    detail::LoopCheck check;
    while (!ahead.empty()) {
        check();
        const RowId row = ahead.back();
        ahead.pop_back();
        all.push_back(row);
        const auto first = static_cast<std::ptrdiff_t>(ahead.size());
        rowsOf(row).walk([&](RowId below) {
            ahead.push_back(below);
            return true;
        });
        std::reverse(ahead.begin() + first, ahead.end());
    }
    return all;
}

/// Makes room for all that release() keeps.
void TableData::prepareRelease(std::size_t rows, std::vector<Value>& dying) {
    const auto mixed = std::count_if(columns_.begin(), columns_.end(), [](const auto& column) {
        return column->cells.form() == CellColumn::Form::values;
    });
    dying.reserve(rows * static_cast<std::size_t>(mixed));
    make_room(free_, rows);
}

/// Forgets rows that are no longer in an order. Objects that die with their cells are left to the caller,
/// because they may look at this table.
void TableData::release(std::span<const RowId> rows, std::vector<Value>& dying) noexcept {
    for (const RowId row : rows) {
        for (const auto& index : indexes_)
            index->unlink(row);
        if (RowHandle* const handle = handleOf(row)) {
            handle->row_ = kNoRow;
            handles_[row] = nullptr;
        }
        for (const auto& column : columns_) {
            Value cell;
            column->cells.exchange(row, cell);
            if (cell.isObject())
                dying.push_back(std::move(cell));
        }
        if (tree_ && nodes_[row].rows) {
            for (RowWalk* const walk : walks_) {
                if (walk->order_ == nodes_[row].rows.get())
                    walk->end();
            }
            nodes_[row].rows->clear();
            nodes_[row].rows.reset();
        }
        free_.push_back(row);
    }
    count_ -= rows.size();
    ++version_;
    if (count_ != 0)
        return;
    for (RowWalk* const walk : walks_)
        walk->end();
    free_.clear();
    ids_ = 0;
    if (!tree_)
        rows_.makePlain(0);
}

/// Makes the walks over an order keep the rows that they still have to show.
void TableData::beforeReorder(const RowOrder& order) {
    for (RowWalk* const walk : walks_) {
        if (walk->order_ == &order)
            walk->copy();
    }
}

/// Detaches the objects of all rows and ends all walks: the rows go, or are no longer what they were.
void TableData::detachHandles() noexcept {
    for (RowHandle* const handle : handles_) {
        if (handle != nullptr)
            handle->row_ = kNoRow;
    }
    handles_.clear();
    for (RowWalk* const walk : walks_)
        walk->end();
}

RowHandle::RowHandle(IValue& self, IValue& owner, TableData& data, RowId row)
    : self_(self), owner_(&owner), data_(data), row_(row) {
    if (data_.handles_.size() <= row)
        data_.handles_.resize(std::size_t{row} + 1);
    data_.handles_[row] = this;
}

RowHandle::~RowHandle() {
    if (row_ != kNoRow)
        data_.handles_[row_] = nullptr;
}

RowId RowHandle::row() const {
    if (row_ == kNoRow)
        throw_error<ContextException>(messages::kUnknownRow);
    return row_;
}

RowWalk::RowWalk(TableData& data, RowId parent)
    : data_(data), order_(&data.rowsOf(parent)), end_(order_->size()) {
    data_.walks_.push_back(this);
}

RowWalk::~RowWalk() {
    std::erase(data_.walks_, this);
}

RowId RowWalk::next() {
    while (next_ < end_) {
        if (order_ != nullptr)
            return order_->at(next_++);
        const RowId row = rows_[next_++];
        if (row != kNoRow && data_.rows_.contains(row))
            return row;
    }
    return kNoRow;
}

void RowWalk::copy() {
    std::vector<RowId> rows = order_->rows();
    rows.erase(rows.begin(), rows.begin() + static_cast<std::ptrdiff_t>(next_));
    rows.resize(end_ - next_);
    rows_.swap(rows);
    end_ = rows_.size();
    next_ = 0;
    order_ = nullptr;
}

void RowWalk::end() noexcept {
    order_ = nullptr;
    rows_.clear();
    next_ = end_ = 0;
}

} // namespace core
