// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/tables/compare_values.h>
#include <core/tables/value_columns.h>
#include <core/values/generic_value.h>

#include <cstddef>
#include <span>
#include <vector>

/// The value tree: rows of values under named columns, each of which may have rows below it. Scripts know it
/// as "ValueTree"; <core/tables/tree.h> is the shortest way to it in a program.
namespace core {

/// The class id of value trees, by which a stored tree is made again.
inline constexpr GUID kValueTreeClass = "97f56523-60eb-47da-b476-44668f1fa86f"_guid;
/// The type id of value trees.
inline constexpr GUID kValueTreeType = "8e826792-4cd6-48d5-9b7f-db068bd5bccb"_guid;

/// How deep an operation on the rows of a tree goes.
enum class RowDepth : unsigned char {
    children, ///< the rows themselves
    all       ///< with the rows below them, at every level
};

class IValueTreeRows;

/// A row of a tree.
class IValueTreeRow : public IValueRow {
  public:
    /// The id of the interface.
    static constexpr GUID IID = "8a1a1c3c-06a2-4a5b-84c9-1617952dca23"_guid;

    /// Returns the rows below this one, borrowed from the row, which a reference to them keeps alive. Throws
    /// as IValueRow says.
    [[nodiscard]] virtual IValueTreeRows& rows() const = 0;
    /// Returns the row that this one is below; null for a topmost row. Throws as IValueRow says.
    [[nodiscard]] virtual InterfacePtr<IValueTreeRow> parent() const = 0;

  protected:
    ~IValueTreeRow() = default;
};

/// The rows of a tree below one row, or the topmost ones, by their positions from 0. Values that are put in
/// are adjusted to the descriptions of their columns. A failed call changes nothing.
///
/// Every function throws ContextException: "IDS_VT_UNKNOWN_ROW_ERROR" when the row above has been deleted,
/// "IDS_INDEX_OFFBOUND" for a position without a row, "IDS_VT_UNKNOWN_COLUMN_ERROR" for an id that no column
/// has, "IDS_VT_COLUMNS_NOT_UNIQUE" for one that comes twice among several. Threads: as the tree.
class IValueTreeRows : public IUnknown {
  public:
    /// The id of the interface.
    static constexpr GUID IID = "7c5f7de3-7a2d-4bf5-b731-5f379acffe73"_guid;

    /// Returns how many rows there are, without those below them. Throws as said above.
    [[nodiscard]] virtual std::size_t count() const = 0;
    /// Returns a row. Throws as said above.
    [[nodiscard]] virtual InterfacePtr<IValueTreeRow> row(std::size_t position) = 0;
    /// Returns the position of a row. Throws as said above, and "IDS_VT_UNKNOWN_ROW_ERROR" for a row that was
    /// deleted or is not among these.
    [[nodiscard]] virtual std::size_t indexOf(const Value& row) const = 0;
    /// Returns the value of a cell. `row` is a position, `column` an id. Throws as said above.
    [[nodiscard]] virtual Value get(std::size_t row, std::int32_t column) const = 0;
    /// Puts a value into a cell. `row` is a position, `column` an id. Throws as said above.
    virtual void set(std::size_t row, std::int32_t column, const Value& value) = 0;

    /// Adds a row behind the others and returns it, with a cell for each of the first columns; the other
    /// columns get their defaults. Throws as said above, also for more cells than columns.
    virtual InterfacePtr<IValueTreeRow> add(std::span<const Value> cells = {}) = 0;
    /// Inserts such a row before the one at a position, or at the end where the position is the count. Throws
    /// as add() does, also for a position behind the end.
    virtual InterfacePtr<IValueTreeRow> insert(std::size_t position, std::span<const Value> cells = {}) = 0;
    /// Moves a row, with those below it, to where it will have the position `to`. Throws as said above.
    virtual void move(std::size_t from, std::size_t to) = 0;
    /// Deletes a row with those below it. Throws as said above.
    virtual void remove(std::size_t position) = 0;
    /// Deletes all rows with those below them. Throws as said above.
    virtual void clear() = 0;
    /// Sorts the rows as IValueTable::sort() does; with RowDepth::all those below each row among themselves,
    /// too. Throws as that.
    virtual void sort(std::span<const VTSortParam> columns, RowDepth depth = RowDepth::children,
                      ICompareValues* comparison = nullptr) = 0;

    /// Returns the first row with a cell, in one of the columns, that equals `value`; null where no row has
    /// one. No columns stand for all. A row comes before those below it. Throws as said above.
    [[nodiscard]] virtual InterfacePtr<IValueTreeRow> find(const Value& value,
                                                           std::span<const std::int32_t> columns = {},
                                                           RowDepth depth = RowDepth::children) = 0;
    /// Returns the rows, in order, that meet all conditions; an empty filter finds all rows. Throws as said
    /// above.
    [[nodiscard]] virtual std::vector<InterfacePtr<IValueTreeRow>>
    findRows(std::span<const VTFindParam> filter, RowDepth depth = RowDepth::children) = 0;
    /// Returns the exact sum of the Numbers in a column, as IValueTableBaseRO::total() does. Throws as that.
    [[nodiscard]] virtual Value total(std::int32_t column, RowDepth depth = RowDepth::children) const = 0;
    /// Puts values into the first cells of a column, as IValueTable::loadColumn() does. Throws as that.
    virtual void loadColumn(std::int32_t column, std::span<const Value> values, Losses* losses = nullptr) = 0;
    /// Returns the cells of a column, in the order of the rows. Throws as said above.
    [[nodiscard]] virtual std::vector<Value> unloadColumn(std::int32_t column) const = 0;

  protected:
    ~IValueTreeRows() = default;
};

/// A value tree. Threads: one at a time.
class IValueTree : public IUnknown {
  public:
    /// The id of the interface.
    static constexpr GUID IID = "d6719d1f-4724-4eaa-90e5-45125bfc1466"_guid;

    /// Returns the columns, borrowed from the tree, which a reference to them keeps alive.
    [[nodiscard]] virtual IValueColumns& columns() noexcept = 0;
    /// Returns the topmost rows, borrowed from the tree, which a reference to them keeps alive.
    [[nodiscard]] virtual IValueTreeRows& rows() noexcept = 0;

  protected:
    ~IValueTree() = default;
};

/// Returns a new tree without columns and rows. Throws std::bad_alloc.
[[nodiscard]] CORE_API InterfacePtr<IValueTree> create_value_tree();

} // namespace core
