// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/tables/cell.h>
#include <core/tables/columns.h>

#include <initializer_list>
#include <optional>
#include <span>
#include <vector>

namespace core {

class TreeRows;

/// A row of a tree: a handle, which keeps the tree alive and stays this row wherever it moves. Every function
/// throws ContextException ("IDS_VT_UNKNOWN_ROW_ERROR") when the row has been deleted. Threads: as the tree.
class TreeRow {
  public:
    /// Makes the handle of a row of a tree; neither may be null.
    TreeRow(InterfacePtr<IValueTree> tree, InterfacePtr<IValueTreeRow> row) noexcept
        : tree_(std::move(tree)), row_(std::move(row)) {}

    /// Returns the row, borrowed: valid as long as this handle.
    [[nodiscard]] IValueTreeRow* operator->() const noexcept { return row_.get(); }
    /// Returns the row as scripts hold it.
    operator Value() const { return detail::value_of_pointer(row_.get()); }

    /// Returns the position among the rows below the same parent. Throws as said above.
    [[nodiscard]] std::size_t position() const { return row_->position(); }
    /// Returns the row that this one is below; nothing for a topmost row. Throws as said above.
    [[nodiscard]] std::optional<TreeRow> parent() const {
        auto parent = row_->parent();
        return parent ? std::optional(TreeRow(tree_, std::move(parent))) : std::nullopt;
    }
    /// Returns the rows below this one. Throws as said above.
    [[nodiscard]] TreeRows rows() const;

    /// Returns how many cells there are.
    [[nodiscard]] std::size_t size() const noexcept { return tree_->columns().count(); }
    /// Returns the cell in a column, by its name, position or handle: `row["Price"]`. Throws as
    /// ColumnKey::idIn() does.
    [[nodiscard]] TreeCell operator[](const ColumnKey& column) const {
        return TreeCell({row_.get(), column.idIn(tree_->columns())});
    }
    /// Begins a walk over the cells; changes of the columns end it.
    [[nodiscard]] IndexIterator<TreeRow> begin() const noexcept { return {*this, 0}; }
    /// Returns the end of a walk.
    [[nodiscard]] IndexIterator<TreeRow> end() const noexcept { return {*this, size()}; }

  private:
    InterfacePtr<IValueTree> tree_;
    InterfacePtr<IValueTreeRow> row_;
};

/// The rows of a tree below one row, or the topmost ones: a handle, which keeps the tree alive.
/// IValueTreeRows has the same operations by ids and positions, and `->` leads to it. Every function throws
/// ContextException
/// ("IDS_VT_UNKNOWN_ROW_ERROR") when the row above has been deleted, and every function that takes a column
/// throws as ColumnKey::idIn() does. Threads: as the tree.
class TreeRows {
  public:
    /// Makes the handle of rows of a tree; neither may be null.
    TreeRows(InterfacePtr<IValueTree> tree, InterfacePtr<IValueTreeRows> rows) noexcept
        : tree_(std::move(tree)), rows_(std::move(rows)) {}

    /// Returns the rows, borrowed: valid as long as this handle.
    [[nodiscard]] IValueTreeRows* operator->() const noexcept { return rows_.get(); }

    /// Returns how many rows there are, without those below them. Throws as said above.
    [[nodiscard]] std::size_t size() const { return rows_->count(); }
    /// Returns whether there are none. Throws as said above.
    [[nodiscard]] bool empty() const { return size() == 0; }
    /// Returns the row at a position. Throws as IValueTreeRows::row() does.
    [[nodiscard]] TreeRow operator[](std::size_t position) const { return {tree_, rows_->row(position)}; }
    /// Begins a walk over the rows that there are now, by their positions.
    [[nodiscard]] IndexIterator<TreeRows> begin() const noexcept { return {*this, 0}; }
    /// Returns the end of a walk. Throws as said above.
    [[nodiscard]] IndexIterator<TreeRows> end() const { return {*this, size()}; }

    /// Adds a row behind the others and returns it. Throws as IValueTreeRows::add() does.
    TreeRow add(AnyValues cells = {}) const { return {tree_, rows_->add(to_values(cells))}; }
    /// Inserts a row before the one at a position. Throws as IValueTreeRows::insert() does.
    TreeRow insert(std::size_t position, AnyValues cells = {}) const {
        return {tree_, rows_->insert(position, to_values(cells))};
    }
    /// Moves a row, one of these, with those below it. Throws as IValueTreeRows::move() does.
    void move(const TreeRow& row, std::size_t position) const { rows_->move(rows_->indexOf(row), position); }
    /// Deletes a row, one of these, with those below it. Throws as IValueTreeRows::remove() does.
    void remove(const TreeRow& row) const { rows_->remove(rows_->indexOf(row)); }
    /// Deletes all rows with those below them. Throws as said above.
    void clear() const { rows_->clear(); }
    /// Sorts the rows by a list as Table::sort() takes it. Throws as that.
    CORE_API void sort(const Text& columns, RowDepth depth = RowDepth::children) const;

    /// Returns the first row with a cell, in one of the columns, that equals `value`; nothing where no row
    /// has one. No columns stand for all.
    [[nodiscard]] CORE_API std::optional<TreeRow> find(const AnyValue& value, ColumnKeys columns = {},
                                                       RowDepth depth = RowDepth::children) const;
    /// Returns the rows, in order, that meet all conditions.
    [[nodiscard]] CORE_API std::vector<TreeRow> findRows(std::initializer_list<CellEquals> conditions,
                                                         RowDepth depth = RowDepth::children) const;
    /// Returns the exact sum of the Numbers in a column. Throws as IValueTableBaseRO::total() does.
    [[nodiscard]] Value total(const ColumnKey& column, RowDepth depth = RowDepth::children) const {
        return rows_->total(column.idIn(tree_->columns()), depth);
    }
    /// Returns the cells of a column, in the order of the rows.
    [[nodiscard]] std::vector<Value> values(const ColumnKey& column) const {
        return rows_->unloadColumn(column.idIn(tree_->columns()));
    }
    /// Puts values into the first cells of a column; those that have no row are not used. Throws as
    /// IValueTreeRows::loadColumn() does.
    void setValues(const ColumnKey& column, std::span<const Value> values, Losses* losses = nullptr) const {
        rows_->loadColumn(column.idIn(tree_->columns()), values, losses);
    }

  private:
    InterfacePtr<IValueTree> tree_;
    InterfacePtr<IValueTreeRows> rows_;
};

inline TreeRows TreeRow::rows() const {
    return {tree_, InterfacePtr<IValueTreeRows>(&row_->rows())};
}

/// A value tree in the hand of a program:
///
///     Tree parts{"Name", {"Price", kNumberType}};
///     const TreeRow wheel = parts.rows().add({"wheel"});
///     wheel.rows().add({"spoke", 2});
///     std::cout << parts.rows().total("Price", RowDepth::all) << '\n';
///
/// It is a handle: copies share one tree, which scripts know as "ValueTree", and a function that is const may
/// change it. Threads: one at a time.
class Tree {
  public:
    /// Makes a tree without columns and rows. Throws std::bad_alloc.
    Tree() : tree_(create_value_tree()) {}
    /// Makes a tree of these columns. Throws as IValueColumns::insert() does.
    CORE_API Tree(std::initializer_list<NewColumn> columns);
    /// Holds a tree that is there, which must not be null.
    Tree(InterfacePtr<IValueTree> tree) noexcept : tree_(std::move(tree)) {}
    /// Holds the tree that a value is. Throws ContextException ("IDS_PARAMETER_N_TYPE_MISMATCH") for any
    /// other value.
    explicit Tree(const Value& value) : tree_(from_value<InterfacePtr<IValueTree>>(value)) {}

    /// Returns the tree, borrowed: valid as long as this handle.
    [[nodiscard]] IValueTree* operator->() const noexcept { return tree_.get(); }
    /// Returns the tree, borrowed: valid as long as this handle.
    operator const InterfacePtr<IValueTree>&() const noexcept { return tree_; }
    /// Returns the tree as a value.
    operator Value() const { return detail::value_of_pointer(tree_.get()); }

    /// Returns the columns, to be walked and changed.
    [[nodiscard]] Columns columns() const { return Columns(InterfacePtr<IValueColumns>(&tree_->columns())); }
    /// Returns the topmost rows, to be walked and changed.
    [[nodiscard]] TreeRows rows() const { return {tree_, InterfacePtr<IValueTreeRows>(&tree_->rows())}; }

  private:
    InterfacePtr<IValueTree> tree_;
};

/// A value tree.
template <>
struct NativeValue<Tree> {
    /// Returns the tree; refuses the type of every other value.
    static Tree from(const Value& value, ValueReceiver receiver) {
        return from_value<InterfacePtr<IValueTree>>(value, receiver);
    }
    /// Returns the tree as a value.
    static Value to(const Tree& tree) { return tree; }
    /// Returns the type of value trees.
    static const GUID* type() noexcept { return &kValueTreeType; }
};

} // namespace core
