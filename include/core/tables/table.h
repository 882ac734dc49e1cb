// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/tables/aggregates.h>
#include <core/tables/expression.h>
#include <core/tables/filter.h>
#include <core/tables/joins.h>
#include <core/tables/row.h>
#include <core/tables/sets.h>
#include <core/tables/windows.h>

#include <initializer_list>
#include <optional>
#include <span>
#include <vector>

namespace core {

/// A value table in the hand of a program:
///
///     Table fruit{"Name", {"Price", kNumberType}};
///     fruit.add({"apple", Numeric::parse("1.20").value()});
///     for (const Row& row : fruit)
///         std::cout << row["Name"] << ' ' << row["Price"] << '\n';
///
/// It is a handle: copies share one table, which scripts know as "ValueTable", and a function that is const
/// may change it. IValueTable has the same operations by ids and positions, and `->` leads to it. A failed
/// call changes nothing. Every function that takes a column throws as ColumnKey::idIn() does, every function
/// that takes several also ContextException ("IDS_VT_COLUMNS_NOT_UNIQUE") for one that comes twice. Threads:
/// one at a time.
class Table {
  public:
    /// Makes a table without columns and rows. Throws std::bad_alloc.
    Table() : table_(create_value_table()) {}
    /// Makes a table of these columns. Throws as IValueColumns::insert() does.
    CORE_API Table(std::initializer_list<NewColumn> columns);
    /// Holds a table that is there, which must not be null.
    Table(InterfacePtr<IValueTable> table) noexcept : table_(std::move(table)) {}
    /// Holds the table that a value is. Throws ContextException ("IDS_PARAMETER_N_TYPE_MISMATCH") for any
    /// other value.
    explicit Table(const Value& value) : table_(from_value<InterfacePtr<IValueTable>>(value)) {}

    /// Returns the table, to be called by ids and positions; borrowed: valid as long as this handle.
    [[nodiscard]] IValueTable* operator->() const noexcept { return table_.get(); }
    /// Returns the table, borrowed: valid as long as this handle.
    [[nodiscard]] IValueTable& operator*() const noexcept { return *table_; }
    /// Returns the table through another interface; null when it does not have that.
    template <class I>
    [[nodiscard]] InterfacePtr<I> query() const noexcept {
        return table_.query<I>();
    }
    /// Returns the table, borrowed: valid as long as this handle.
    operator const InterfacePtr<IValueTable>&() const noexcept { return table_; }
    /// Returns the table as a value.
    operator Value() const { return detail::value_of_pointer(table_.get()); }

    // columns
    /// Returns the columns, to be walked and changed.
    [[nodiscard]] Columns columns() const { return Columns(InterfacePtr<IValueColumns>(&table_->columns())); }

    // rows
    /// Returns how many rows there are.
    [[nodiscard]] std::size_t size() const noexcept { return table_->rowCount(); }
    /// Returns whether there are no rows.
    [[nodiscard]] bool empty() const noexcept { return size() == 0; }
    /// Returns the row at a position. Its cells throw ContextException ("IDS_INDEX_OFFBOUND") when there is
    /// none.
    [[nodiscard]] Row operator[](std::size_t position) const noexcept { return {table_, position}; }
    /// Begins a walk over the rows that there are now, by their positions.
    [[nodiscard]] IndexIterator<Table> begin() const noexcept { return {*this, 0}; }
    /// Returns the end of a walk.
    [[nodiscard]] IndexIterator<Table> end() const noexcept { return {*this, size()}; }

    /// Adds a row behind the others and returns it, with a cell for each of the first columns; the other
    /// columns get their defaults. Throws as IValueTable::appendRow() does.
    Row add(AnyValues cells = {}) const { return add(std::span<const Value>(to_values(cells))); }
    /// Adds a row of cells that are values already.
    Row add(std::span<const Value> cells) const {
        table_->appendRow(cells);
        return {table_, size() - 1};
    }
    /// Inserts a row before the one at a position. Throws as IValueTable::insertRow() does.
    Row insert(std::size_t position, AnyValues cells = {}) const {
        table_->insertRow(position, to_values(cells));
        return {table_, position};
    }
    /// Moves a row to where it will have that position. Throws as IValueTable::moveRow() does.
    void move(const Row& row, std::size_t position) const { table_->moveRow(row.position(), position); }
    /// Deletes a row; those behind it move up. Throws as IValueTable::removeRow() does.
    void remove(const Row& row) const { table_->removeRow(row.position()); }
    /// Deletes the rows that pass a filter and returns how many these were. Throws as delete_rows() does.
    std::size_t remove(const Filter& filter) const { return delete_rows(*table_, filter); }
    /// Keeps the rows that pass a filter, `sales.filter("Price > 10")`, and returns how many others were
    /// deleted. Throws as keep_rows() does.
    std::size_t filter(const Filter& filter) const { return keep_rows(*table_, filter); }
    /// Deletes all rows; the columns stay.
    void clear() const { table_->clear(); }
    /// Sorts the rows by names of columns or expressions with "," between them, each of which may be followed
    /// by a direction: "Product, Price * Quantity Desc". Throws as said above, ContextException
    /// ("IDS_PARAMETER_N_VALUE_MISMATCH") for a list that is not of that form, and ExpressionException.
    CORE_API void sort(const Text& columns) const;
    /// Collapses the table as IValueTable::groupBy() does. Throws as that.
    void groupBy(ColumnKeys columns, ColumnKeys totals) const { table_->groupBy(ids(columns), ids(totals)); }

    // search
    /// Returns the first row with a cell, in one of the columns, that equals `value`; nothing where no row
    /// has one. No columns stand for all.
    [[nodiscard]] CORE_API std::optional<Row> find(const AnyValue& value, ColumnKeys columns = {}) const;
    /// Returns the rows, in order, that meet all conditions: `findRows({{"Product", "apple"}})`.
    [[nodiscard]] CORE_API std::vector<Row> findRows(std::initializer_list<CellEquals> conditions) const;
    /// Adds an index over columns, which searches that name them use and which follows every change.
    void addIndex(ColumnKeys columns) const { table_->addIndex(ids(columns)); }

    /// Returns the rows, in order, that pass a filter. Throws as find_rows() does.
    [[nodiscard]] CORE_API std::vector<Row> findRows(const Filter& filter) const;

    // whole columns
    /// Adds a column behind the others whose cells an expression gives, computed now and stored:
    /// `sales.addColumn("Sum", "Price * Quantity")`. Throws as add_column() does.
    Column addColumn(const Text& name, const Text& expression,
                     const ExpressionParameters& parameters = {}) const {
        const std::int32_t id = add_column(*table_, name.view(), expression.view(), parameters);
        return {InterfacePtr<IValueColumns>(&table_->columns()), id};
    }
    /// Returns the exact sum of the Numbers in a column. Throws as IValueTableBaseRO::total() does.
    [[nodiscard]] Value total(const ColumnKey& column) const { return table_->total(id(column)); }
    /// Returns the cells of a column, in the order of the rows.
    [[nodiscard]] std::vector<Value> values(const ColumnKey& column) const {
        return table_->unloadColumn(id(column));
    }
    /// Puts values into the first cells of a column; those that have no row are not used. Throws as
    /// IValueTable::loadColumn() does.
    void setValues(const ColumnKey& column, std::span<const Value> values, Losses* losses = nullptr) const {
        table_->loadColumn(id(column), values, losses);
    }
    /// Puts one value into all rows of these columns; no columns stand for all. Throws as IValueTable::fill()
    /// does.
    void fill(const AnyValue& value, ColumnKeys columns = {}, Losses* losses = nullptr) const {
        table_->fill(value, ids(columns), losses);
    }

    // copies
    /// Returns a new table with these columns and all rows; no columns stand for all.
    [[nodiscard]] Table copy(ColumnKeys columns = {}) const { return table_->copy(ids(columns)); }
    /// Returns a new table with all columns and the rows that pass a filter. Throws as copy_rows() does.
    [[nodiscard]] Table copy(const Filter& filter) const { return copy_rows(*table_, filter); }
    /// Returns a new table with these rows, which must be of this one, and these columns.
    [[nodiscard]] CORE_API Table copy(std::span<const Row> rows, ColumnKeys columns = {}) const;

    // totals
    /// Returns a new table with a row for each group of rows that are equal in `columns`, and aggregates of
    /// the group: `sales.group({"Product"}, {count("Sales"), sum("Price")})`. Where `levels` names a column,
    /// there are totals besides. Throws as core::group() does.
    [[nodiscard]] Table group(ColumnKeys columns, const std::vector<Aggregate>& aggregates,
                              const Text& levels = u"", const TableWork& work = {}) const {
        return core::group(*table_, names(columns), aggregates, levels.view(), work);
    }
    /// Returns an aggregate of all rows: `sales.total(max("Day"))`. Throws as core::total() does.
    [[nodiscard]] Value total(const Aggregate& aggregate) const { return core::total(*table_, aggregate); }
    /// Returns a new table whose columns are the values of a column. Throws as core::pivot() does.
    [[nodiscard]] Table pivot(ColumnKeys rows, const ColumnKey& column,
                              const std::vector<Aggregate>& aggregates, std::size_t most = kMostPivotColumns,
                              const TableWork& work = {}) const {
        return core::pivot(*table_, names(rows), name(column), aggregates, most, work);
    }
    /// Returns a new table with a row for each cell of some columns. Throws as core::unpivot() does.
    [[nodiscard]] Table unpivot(ColumnKeys columns, const Text& name = u"Name", const Text& value = u"Value",
                                EmptyCells empty = EmptyCells::skip, const TableWork& work = {}) const {
        return core::unpivot(*table_, names(columns), name.view(), value.view(), empty, work);
    }
    /// Adds columns that are computed over neighbouring rows: running totals, ranks, differences. Throws as
    /// add_windows() does.
    void addWindows(const std::vector<WindowFunction>& functions, ColumnKeys partition = {},
                    const Text& order = u"", const TableWork& work = {}) const {
        add_windows(*table_, functions, names(partition), order.view(), work);
    }

    // sets of rows; each returns a new table, and this one stays as it is
    /// Returns the rows beside those of another table that are equal in the columns that `on` names, with all
    /// columns of the other one: `sales.join(products, "Product = Code")`. Throws as core::join() does.
    [[nodiscard]] Table join(const Table& other, const Text& on, JoinKind kind = JoinKind::inner,
                             const TableWork& work = {}) const {
        return core::join(*table_, *other, on.view(), std::nullopt, kind, work);
    }
    /// Returns the same with some columns of the other table: "Name, Group As Family". Throws as core::join()
    /// does.
    [[nodiscard]] Table join(const Table& other, const Text& on, const Text& columns,
                             JoinKind kind = JoinKind::inner, const TableWork& work = {}) const {
        return core::join(*table_, *other, on.view(), wstring(columns.view()), kind, work);
    }
    /// Returns the rows and behind them those of another table. Throws as core::unite() does.
    [[nodiscard]] Table unite(const Table& other, EqualRows equal = EqualRows::once,
                              const TableWork& work = {}) const {
        return core::unite(*table_, *other, equal, work);
    }
    /// Returns the rows that another table does not have, each once. Throws as core::except() does.
    [[nodiscard]] Table except(const Table& other, const TableWork& work = {}) const {
        return core::except(*table_, *other, work);
    }
    /// Returns the rows that another table has, too, each once. Throws as core::intersect() does.
    [[nodiscard]] Table intersect(const Table& other, const TableWork& work = {}) const {
        return core::intersect(*table_, *other, work);
    }
    /// Returns the different rows of some columns, each once; no columns stand for all. Throws as
    /// core::distinct() does.
    [[nodiscard]] CORE_API Table distinct(ColumnKeys columns = {}, const TableWork& work = {}) const;

  private:
    /// The name of a column, and those of several.
    [[nodiscard]] CORE_API wstring name(const ColumnKey& column) const;
    [[nodiscard]] CORE_API std::vector<wstring> names(ColumnKeys columns) const;
    [[nodiscard]] std::int32_t id(const ColumnKey& column) const { return column.idIn(table_->columns()); }
    [[nodiscard]] std::vector<std::int32_t> ids(ColumnKeys columns) const {
        return column_ids(table_->columns(), columns);
    }

    InterfacePtr<IValueTable> table_;
};

/// A value table.
template <>
struct NativeValue<Table> {
    /// Returns the table; refuses the type of every other value.
    static Table from(const Value& value, ValueReceiver receiver) {
        return from_value<InterfacePtr<IValueTable>>(value, receiver);
    }
    /// Returns the table as a value.
    static Value to(const Table& table) { return table; }
    /// Returns the type of value tables.
    static const GUID* type() noexcept { return &kValueTableType; }
};

} // namespace core
