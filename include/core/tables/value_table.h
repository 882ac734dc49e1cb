// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/tables/compare_values.h>
#include <core/tables/value_columns.h>
#include <core/values/generic_value.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

/// The value table: rows of values under named columns, each of which may have a type description. Scripts
/// know it as "ValueTable"; <core/tables/table.h> is the shortest way to it in a program.
///
/// Rows have positions from 0, which change when rows are inserted, moved, deleted or sorted. A column has an
/// id that stays when columns come and go or are renamed. A failed call changes nothing. Threads: one at a
/// time.
namespace core {

/// The class id of value tables, by which a stored table is made again.
inline constexpr GUID kValueTableClass = "b2eeec98-e624-4207-bccd-4768231bc9f0"_guid;
/// The type id of value tables.
inline constexpr GUID kValueTableType = "443f09ed-a498-49b2-b555-edf086214cd1"_guid;

class IValueTable;

/// A table that can be read. Every function throws ContextException: "IDS_INDEX_OFFBOUND" for a position
/// without a row or a column, "IDS_VT_UNKNOWN_COLUMN_ERROR" for an id that no column has,
/// "IDS_VT_COLUMNS_NOT_UNIQUE" for one that comes twice among several.
class IValueTableBaseRO : public IUnknown {
  public:
    /// The id of the interface.
    static constexpr GUID IID = "ee168739-63fe-4cc0-9ba6-a5154c5df52f"_guid;

    /// What a column is.
    using Column = ValueColumn;

    // columns
    /// Returns how many columns there are.
    [[nodiscard]] virtual std::size_t columnCount() const noexcept = 0;
    /// Returns a copy of what the column at a position is, without its cells. Throws as said above.
    [[nodiscard]] virtual Column column(std::size_t position) const = 0;
    /// Returns the id of the column with a name, in any case, or -1 when no column has it.
    [[nodiscard]] virtual std::int32_t findColumn(wstring_view name) const = 0;

    // rows
    /// Returns how many rows there are.
    [[nodiscard]] virtual std::size_t rowCount() const noexcept = 0;
    /// Returns the value of a cell. `row` is a position, `column` an id. Throws as said above.
    [[nodiscard]] virtual GenericValue get(std::size_t row, std::int32_t column) const = 0;
    /// Returns the row as scripts hold it, which is an IValueRow. The object keeps the table alive and stays
    /// this row wherever it moves. Throws as said above.
    [[nodiscard]] virtual GenericValue row(std::size_t position) = 0;
    /// Returns the position of a row that row() returned. Throws ContextException:
    /// "IDS_VT_UNKNOWN_ROW_ERROR" for one that was deleted or is another table's,
    /// "IDS_PARAMETER_N_TYPE_MISMATCH" for any other value.
    [[nodiscard]] virtual std::size_t indexOf(const Value& row) const = 0;
    /// Returns the positions, in order, of the rows that meet all conditions; an empty filter finds all rows.
    /// An index whose columns the filter names is used. Throws as said above.
    [[nodiscard]] virtual std::vector<std::size_t>
    IValueTableBaseRO_findRows(std::span<const VTFindParam> filter) const = 0;
    /// Returns the position of the first row with a cell, in one of the columns, that equals `value`; nothing
    /// where no row has one. No columns stand for all. Throws as said above.
    [[nodiscard]] virtual std::optional<std::size_t>
    find(const Value& value, std::span<const std::int32_t> columns = {}) const = 0;

    // whole columns
    /// Returns the exact sum of the Numbers in a column; without any it is 0 in a column of Numbers alone,
    /// else Undefined. Throws as said above, and ContextException: "IDS_VT_TOTAL_OF_TEXTS" for texts,
    /// "IDS_VT_TOTAL_OF_MIXED" for Numbers beside other values.
    [[nodiscard]] virtual Value total(std::int32_t column) const = 0;
    /// Returns the cells of a column, in the order of the rows. Throws as said above.
    [[nodiscard]] virtual std::vector<Value> unloadColumn(std::int32_t column) const = 0;

    // copies
    /// Returns a new table with these columns and all rows; no columns stand for all. Throws as said above.
    [[nodiscard]] virtual InterfacePtr<IValueTable>
    copy(std::span<const std::int32_t> columns = {}) const = 0;
    /// Returns a new table with these columns and the rows at these positions, in their order. Throws as said
    /// above.
    [[nodiscard]] virtual InterfacePtr<IValueTable>
    copyRows(std::span<const std::size_t> rows, std::span<const std::int32_t> columns = {}) const = 0;

    // indexes
    /// Returns how many indexes there are.
    [[nodiscard]] virtual std::size_t indexCount() const noexcept = 0;
    /// Returns the ids of the columns that an index is over. Throws as said above for a position without an
    /// index.
    [[nodiscard]] virtual std::vector<std::int32_t> index(std::size_t position) const = 0;

  protected:
    ~IValueTableBaseRO() = default;
};

/// A table that can be changed. Values that are put in are adjusted to the descriptions of their columns.
/// Every function throws as those of IValueTableBaseRO do.
class IValueTable : public IValueTableBaseRO {
  public:
    /// The id of the interface.
    static constexpr GUID IID = "d392422d-7733-44a5-8d04-b4fbfd925781"_guid;

    // columns
    /// Returns the columns, to be changed; borrowed from the table, which a reference to them keeps alive.
    [[nodiscard]] virtual IValueColumns& columns() noexcept = 0;
    /// Adds a column behind the others, as IValueColumns::insert() does, and returns its id. Throws as that.
    virtual std::int32_t addColumn(wstring_view name, TypeDomain domain = {}, const LocalWString& title = {},
                                   std::int32_t width = 0) = 0;
    /// Gives a column another description and converts its cells, as IValueColumns::setType() does. Throws as
    /// that.
    virtual void setColumnType(std::int32_t column, TypeDomain domain, Losses* losses = nullptr) = 0;
    /// Returns what could not be kept when the table was loaded, or a script converted a column, and went on;
    /// borrowed until the next time.
    [[nodiscard]] virtual const Losses& losses() const noexcept = 0;

    // rows
    /// Adds a row behind the others, with a cell for each of the first columns; the other columns get their
    /// defaults. Throws ContextException ("IDS_INDEX_OFFBOUND") for more cells than columns.
    virtual void appendRow(std::span<const Value> cells) = 0;
    /// Inserts such a row before the one at a position, or at the end where the position is the count. Throws
    /// as appendRow() does, also for a position behind the end.
    virtual void insertRow(std::size_t position, std::span<const Value> cells = {}) = 0;
    /// Puts a value into a cell. `row` is a position, `column` an id. Throws as get() does.
    virtual void set(std::size_t row, std::int32_t column, const Value& value) = 0;
    /// Moves a row to where it will have the position `to`. Throws as said above.
    virtual void moveRow(std::size_t from, std::size_t to) = 0;
    /// Deletes a row; those behind it move up. Throws ContextException ("IDS_INDEX_OFFBOUND") for a position
    /// without a row.
    virtual void removeRow(std::size_t row) = 0;
    /// Deletes all rows; the columns stay.
    virtual void clear() = 0;
    /// Sorts the rows by the first column, ties by the second, and so on; equal rows come in any order. An
    /// object that compares replaces the order of values. Throws as said above, what the object throws, and
    /// ContextException ("IDS_VT_CHANGED_WHILE_SORTING") where it changed the table; no row has moved then.
    virtual void sort(std::span<const VTSortParam> columns, ICompareValues* comparison = nullptr) = 0;
    /// Collapses the table to these columns: one row for the rows that are equal in the first ones, in the
    /// order of the first of them, with the sums of their cells in the others. Throws as said above, and
    /// ContextException: "IDS_VT_GROUPBY_INTERSECT_ERROR" for a column among both,
    /// "IDS_VT_GROUPBY_NO_COLUMN_ERROR" without any, those of total().
    virtual void groupBy(std::span<const std::int32_t> columns, std::span<const std::int32_t> totals) = 0;
    /// Lets the user choose a row, through the service IChooser, and returns its position; nothing where he
    /// cancels or no service is there. The title may be empty. Throws as said above.
    [[nodiscard]] virtual std::optional<std::size_t> chooseRow(const wstring& title = {},
                                                               std::optional<std::size_t> initial = {}) = 0;

    // whole columns
    /// Puts values into the first cells of a column; those that have no row are not used. Throws as said
    /// above. What a cell cannot keep is put into `losses`, where the row is the position of the value; where
    /// these are null, it throws ConversionException, and nothing has changed.
    virtual void loadColumn(std::int32_t column, std::span<const Value> values, Losses* losses = nullptr) = 0;
    /// Puts one value into all rows of these columns; no columns stand for all. Throws as loadColumn() does.
    virtual void fill(const Value& value, std::span<const std::int32_t> columns = {},
                      Losses* losses = nullptr) = 0;

    // indexes
    /// Adds an index over columns, behind the others: searches that name its columns use it. It follows every
    /// change. Throws as said above, and ContextException ("IDS_PARAMETER_N_VALUE_MISMATCH") without columns.
    virtual void addIndex(std::span<const std::int32_t> columns) = 0;
    /// Deletes an index. Throws as index() does.
    virtual void removeIndex(std::size_t position) = 0;
    /// Deletes all indexes.
    virtual void clearIndexes() noexcept = 0;

  protected:
    ~IValueTable() = default;
};

/// Returns a new table without columns and rows. Throws std::bad_alloc.
[[nodiscard]] CORE_API InterfacePtr<IValueTable> create_value_table();

} // namespace core
