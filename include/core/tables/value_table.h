// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/locales/local_wstring.h>
#include <core/tables/losses.h>
#include <core/types/type_domain.h>
#include <core/values/generic_value.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// The value table: rows of values under named columns, each of which may have a type description. Scripts
/// know it as "ValueTable".
///
/// Rows have positions from 0, which change when rows are inserted, moved, deleted or sorted. A column has an
/// id that stays when columns come and go or are renamed. A failed call changes nothing. Threads: one at a
/// time.
namespace core {

/// The class id of value tables, by which a stored table is made again.
inline constexpr GUID kValueTableClass = "b2eeec98-e624-4207-bccd-4768231bc9f0"_guid;
/// The type id of value tables.
inline constexpr GUID kValueTableType = "443f09ed-a498-49b2-b555-edf086214cd1"_guid;

/// A condition of a filter: the cell of a column equals a value.
struct VTFindParam {
    std::int32_t column; ///< the id of the column
    Value value;         ///< what its cell is to equal
};

/// A table that can be read.
class IValueTableBaseRO : public IUnknown {
  public:
    /// The id of the interface.
    static constexpr GUID IID = "ee168739-63fe-4cc0-9ba6-a5154c5df52f"_guid;

    /// What a column is.
    struct Column {
        std::int32_t id = -1;   ///< names the column as long as it is there
        wstring name;           ///< a valid name, different from those of the other columns in any case
        LocalWString title;     ///< what a user reads; the name in the languages that no title was given for
        std::int32_t width = 0; ///< in characters; 0 where none was given
        TypeDomain domain;      ///< what the cells are adjusted to
    };

    // columns
    /// Returns how many columns there are.
    [[nodiscard]] virtual std::size_t columnCount() const noexcept = 0;
    /// Returns a copy of what a column is, without its cells. Throws ContextException ("IDS_INDEX_OFFBOUND")
    /// for a position without a column.
    [[nodiscard]] virtual Column column(std::size_t position) const = 0;
    /// Returns the id of the column with a name, in any case, or -1 when no column has it.
    [[nodiscard]] virtual std::int32_t findColumn(wstring_view name) const = 0;

    // rows
    /// Returns how many rows there are.
    [[nodiscard]] virtual std::size_t rowCount() const noexcept = 0;
    /// Returns the value of a cell. `row` is a position, `column` an id. Throws ContextException:
    /// "IDS_INDEX_OFFBOUND" for a position without a row, "IDS_VT_UNKNOWN_COLUMN_ERROR" for an id that no
    /// column has.
    [[nodiscard]] virtual GenericValue get(std::size_t row, std::int32_t column) const = 0;
    /// Returns the row as scripts hold it. The object keeps the table alive and stays this row wherever it
    /// moves. Throws ContextException ("IDS_INDEX_OFFBOUND") for a position without a row.
    [[nodiscard]] virtual GenericValue row(std::size_t position) = 0;
    /// Returns the positions, in order, of the rows that meet all conditions; an empty filter finds all rows.
    /// An index whose columns the filter names is used. Throws ContextException
    /// ("IDS_VT_UNKNOWN_COLUMN_ERROR") for an id that no column has.
    [[nodiscard]] virtual std::vector<std::size_t>
    IValueTableBaseRO_findRows(std::span<const VTFindParam> filter) const = 0;

  protected:
    ~IValueTableBaseRO() = default;
};

/// A table that can be changed. Values that are put in are adjusted to the descriptions of their columns.
class IValueTable : public IValueTableBaseRO {
  public:
    /// The id of the interface.
    static constexpr GUID IID = "d392422d-7733-44a5-8d04-b4fbfd925781"_guid;

    /// Adds a column behind the others, with the default of its description in every row, and returns its id.
    /// An empty title stands for the name; the width is in characters. Throws ContextException:
    /// "IDS_VT_COLUMNCODE_ERROR" for a name that is not valid, "IDS_VT_COLUMNS_NOT_UNIQUE" for one that
    /// another column has, "IDS_PARAMETER_N_VALUE_MISMATCH" for a negative width.
    virtual std::int32_t addColumn(wstring_view name, TypeDomain domain = {}, const LocalWString& title = {},
                                   std::int32_t width = 0) = 0;
    /// Gives a column another description and converts its cells. Whatever a cell cannot keep is added to
    /// `losses`; where these are null, it throws ConversionException, which names the first cells. Throws
    /// ContextException ("IDS_VT_UNKNOWN_COLUMN_ERROR") for an id that no column has.
    virtual void setColumnType(std::int32_t column, TypeDomain domain, Losses* losses = nullptr) = 0;
    /// Returns what could not be kept when the table was loaded, or a script converted a column, and went on;
    /// borrowed until the next time.
    [[nodiscard]] virtual const Losses& losses() const noexcept = 0;
    /// Adds a row behind the others, with a cell for each of the first columns; the other columns get their
    /// defaults. Throws ContextException ("IDS_INDEX_OFFBOUND") for more cells than columns.
    virtual void appendRow(std::span<const Value> cells) = 0;
    /// Puts a value into a cell. `row` is a position, `column` an id. Throws as get() does.
    virtual void set(std::size_t row, std::int32_t column, const Value& value) = 0;
    /// Deletes a row; those behind it move up. Throws ContextException ("IDS_INDEX_OFFBOUND") for a position
    /// without a row.
    virtual void removeRow(std::size_t row) = 0;
    /// Deletes all rows; the columns stay.
    virtual void clear() = 0;

  protected:
    ~IValueTable() = default;
};

/// Returns a new table without columns and rows.
[[nodiscard]] CORE_API InterfacePtr<IValueTable> create_value_table();

} // namespace core
