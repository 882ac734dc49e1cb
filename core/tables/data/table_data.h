// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/row_handle.h"
#include "core/tables/data/row_walk.h"
#include "core/tables/data/table_index.h"
#include "core/tables/data/table_watcher.h"

#include <core/context/name_cache.h>
#include <core/tables/losses.h>
#include <core/values/generic_value.h>

#include <memory>
#include <optional>

namespace core {

/// Where the cells of a new row come from.
enum class CellSource {
    given, ///< from a caller: they are adjusted to their columns
    stored ///< from stored data: they were adjusted once, and are taken as they are
};

/// A column that stays when a table is grouped, with its description and its cells from then on.
struct GroupedColumn {
    std::size_t position;
    TypeDomain domain;
    CellColumn cells;
};

/// What a value table or a value tree holds: columns, rows, indexes, and the script objects made for them.
///
///  1. A row is an id below ids_ for as long as it is there. Its cells have that id in every column.
///  2. In a table all rows are in one order. In a tree each row has an order for the rows below it; the
///  topmost
///     rows are in the order of kNoRow.
///  3. Ids of deleted rows are used again, but not while a walk may still hold them.
///
/// If an operation throws, nothing has changed. Threads: one at a time.
class TableData {
  public:
    /// `owner` is the object that this is a part of; it is kept by address.
    TableData(IValue& owner, bool tree);
    TableData(const TableData&) = delete;
    TableData& operator=(const TableData&) = delete;
    ~TableData();

    [[nodiscard]] IValue& owner() const noexcept { return owner_; }
    [[nodiscard]] bool isTree() const noexcept { return tree_; }
    /// Changes whenever columns or rows come, go or move.
    [[nodiscard]] std::uint64_t version() const noexcept { return version_; }
    /// Tells a watcher of each change from now on; it must outlive the data.
    void watch(TableWatcher& watcher) noexcept { watcher_ = &watcher; }
    /// Exchanges columns, rows and indexes with data of which scripts hold no objects.
    void replace(TableData& fresh) noexcept;

    // columns, by position
    [[nodiscard]] std::size_t columnCount() const noexcept { return columns_.size(); }
    [[nodiscard]] TableColumn& column(std::size_t position) noexcept { return *columns_[position]; }
    [[nodiscard]] const TableColumn& column(std::size_t position) const noexcept {
        return *columns_[position];
    }
    [[nodiscard]] std::optional<std::size_t> findColumn(wstring_view name) const;
    [[nodiscard]] std::optional<std::size_t> findColumn(ColumnId id) const noexcept;
    [[nodiscard]] std::size_t positionOf(const TableColumn& column) const noexcept;
    /// Inserts a column with the default of its description in every row. Throws ContextException:
    /// "IDS_VT_COLUMNCODE_ERROR" for a name that is not valid, "IDS_VT_COLUMNS_NOT_UNIQUE" for a name that
    /// another column has. The caller calls tellColumnsChanged() when it is done with the column.
    TableColumn& insertColumn(std::size_t position, ColumnInfo info);
    /// Appends a column with these cells, by row id. Throws as insertColumn() does.
    void appendColumn(ColumnInfo info, CellColumn cells);
    /// Tells the watcher that a column is complete, or that its title or width has changed.
    void tellColumnsChanged() noexcept { tell(&TableWatcher::columnsChanged); }
    /// Throws as insertColumn() does.
    void renameColumn(TableColumn& column, wstring_view name);
    /// Replaces the description and adjusts every cell to it. What a cell cannot keep is added to `losses`;
    /// without them it throws ConversionException, and nothing has changed.
    void setDomain(TableColumn& column, TypeDomain domain, Losses* losses = nullptr);
    /// What the last conversion that went on could not keep.
    [[nodiscard]] const Losses& losses() const noexcept { return losses_; }
    void setLosses(Losses losses) noexcept { losses_ = std::move(losses); }
    /// Removes a column and the indexes over it.
    void removeColumn(std::size_t position) noexcept;
    void moveColumn(std::size_t from, std::size_t to) noexcept;
    void clearColumns() noexcept;

    // rows, by their parent and position; the parent is kNoRow in a table
    [[nodiscard]] const RowOrder& rowsOf(RowId parent) const noexcept;
    [[nodiscard]] const RowOrder& rows() const noexcept { return rows_; }
    [[nodiscard]] RowId parentOf(RowId row) const noexcept { return tree_ ? nodes_[row].parent : kNoRow; }
    /// Returns rows of a tree together with all rows below them; each row comes before those below it.
    [[nodiscard]] std::vector<RowId> withSubordinates(std::span<const RowId> rows) const;
    /// Returns how many ids there have been: those of rows are below it, and every column has a cell for
    /// each.
    [[nodiscard]] std::size_t idCount() const noexcept { return ids_; }
    /// Returns the id that the next row gets.
    [[nodiscard]] RowId nextRow() const;
    /// Inserts a row with these cells; the others hold the defaults of their columns.
    RowId insertRow(RowId parent, std::size_t position, std::span<const Value> cells = {},
                    CellSource source = CellSource::given);
    /// Removes a row with the rows below it.
    void removeRow(RowId parent, std::size_t position);
    /// Removes all rows below a parent, with those below them.
    void removeRows(RowId parent);
    void moveRow(RowId parent, std::size_t from, std::size_t to);
    /// Keeps these rows of a table, which come in their order, and removes all others.
    void keepRows(std::span<const RowId> rows);
    /// Puts the rows below a parent into another order. The caller calls tellRowsSorted() after the last of
    /// several.
    void reorder(RowId parent, std::span<const RowId> rows);
    /// Tells the watcher that the rows below a parent have been sorted.
    void tellRowsSorted(RowId parent) noexcept { tell(&TableWatcher::rowsSorted, parent); }
    /// Fills a table that has no columns yet with columns that have `count` cells each.
    void assign(std::vector<std::unique_ptr<TableColumn>> columns, std::size_t count) noexcept;
    /// Gives a table without rows its rows: `count` cells for each column.
    void setRows(std::span<CellColumn> cells, std::size_t count) noexcept;
    /// Replaces the table by some of its columns with other cells, `count` in each.
    void regroup(std::span<GroupedColumn> columns, std::size_t count);

    // cells
    [[nodiscard]] Value get(RowId row, std::size_t column) const { return columns_[column]->cells.get(row); }
    /// Puts a value, adjusted to the column's description, into a cell.
    void set(RowId row, std::size_t column, GenericValue value);
    /// Does the same for the rows below a parent, as far as there are rows and values. What a cell cannot
    /// keep is stored in `losses`; without them it throws ConversionException, and nothing has changed.
    void load(RowId parent, std::size_t column, std::span<const Value> values, Losses* losses = nullptr);
    /// Puts one value into all rows of a table in several columns. Losses are those of load().
    void fill(std::span<const std::size_t> columns, const GenericValue& value, Losses* losses = nullptr);

    // indexes
    [[nodiscard]] std::span<const std::unique_ptr<TableIndex>> indexes() const noexcept { return indexes_; }
    TableIndex& addIndex(std::vector<const TableColumn*> columns);
    void removeIndex(std::size_t position) noexcept;
    void clearIndexes() noexcept { indexes_.clear(); }

    // objects of rows
    [[nodiscard]] RowHandle* handleOf(RowId row) const noexcept {
        return row < handles_.size() ? handles_[row] : nullptr;
    }

  private:
    friend class RowHandle;
    friend class RowWalk;

    struct Node {
        RowId parent = kNoRow;
        std::unique_ptr<RowOrder> rows; // null when there are none
    };

    /// Tells the watcher of a change that is complete; for nobody it is one test.
    template <class... Args>
    void tell(void (TableWatcher::*change)(Args...) noexcept, Args... arguments) noexcept {
        if (watcher_ != nullptr)
            (watcher_->*change)(arguments...);
    }
    void putCells(RowId row, std::span<const Value> cells, CellSource source);
    void checkName(wstring_view name, const TableColumn* except) const;
    [[nodiscard]] CellColumn fitted(const TableColumn& column, const TypeDomain& domain,
                                    Losses& losses) const;
    static void report(Losses lost, Losses* losses);
    RowOrder& makeRowsOf(RowId parent);
    void release(std::span<const RowId> rows, std::vector<Value>& dying) noexcept;
    void prepareRelease(std::size_t rows, std::vector<Value>& dying);
    void beforeReorder(const RowOrder& order);
    void renumber(std::span<const RowId> rows);
    void setCells(TableColumn& column, CellColumn cells) noexcept;
    void giveIndexesUp(const TableColumn& column) noexcept;
    void giveIndexesUp() noexcept;
    void columnsChanged() noexcept;
    void detachHandles() noexcept;

    IValue& owner_;
    const bool tree_;
    TableWatcher* watcher_ = nullptr;
    std::uint64_t version_ = 0;
    ColumnId nextColumn_ = 0;
    std::vector<std::unique_ptr<TableColumn>> columns_;
    mutable NameTable names_; // of the columns; empty until it is needed
    std::vector<std::unique_ptr<TableIndex>> indexes_;

    std::unique_ptr<ChunksByRow> chunks_; // of all orders
    RowOrder rows_;
    std::vector<Node> nodes_; // of a tree, by row
    std::size_t ids_ = 0;
    std::size_t count_ = 0;
    std::vector<RowId> free_;
    std::vector<RowHandle*> handles_; // by row; may be shorter than ids_
    std::vector<RowWalk*> walks_;
    Losses losses_;
};

} // namespace core
