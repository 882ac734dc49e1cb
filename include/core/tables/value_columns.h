// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/locales/local_wstring.h>
#include <core/tables/losses.h>
#include <core/types/type_domain.h>
#include <core/values/value.h>

#include <cstddef>
#include <cstdint>

/// What tables and trees have in common: columns, and rows as scripts hold them.
namespace core {

/// What a column of a table or a tree is, without its cells.
struct ValueColumn {
    std::int32_t id = -1;   ///< names the column as long as it is there
    wstring name;           ///< a valid name, different from those of the other columns in any case
    LocalWString title;     ///< what a user reads; the name in the languages that no title was given for
    std::int32_t width = 0; ///< in characters; 0 where none was given
    TypeDomain domain;      ///< what the cells are adjusted to
};

/// The columns of a table or a tree. A column has an id, which stays when columns come and go, move or are
/// renamed, and a position from 0. A failed call changes nothing. Every function that takes an id throws
/// ContextException ("IDS_VT_UNKNOWN_COLUMN_ERROR") for one that no column has, every function that takes a
/// position ContextException ("IDS_INDEX_OFFBOUND") for one out of bounds. Threads: one at a time.
class IValueColumns : public IUnknown {
  public:
    /// The id of the interface.
    static constexpr GUID IID = "5b73eaf7-b1a1-4359-a7e7-e2a30df890af"_guid;

    /// Returns how many columns there are.
    [[nodiscard]] virtual std::size_t count() const noexcept = 0;
    /// Returns a copy of what the column at a position is. Throws as said above.
    [[nodiscard]] virtual ValueColumn get(std::size_t position) const = 0;
    /// Returns the id of the column with a name, in any case, or -1 when no column has it.
    [[nodiscard]] virtual std::int32_t find(wstring_view name) const = 0;
    /// Returns the id of the column at a position. Throws as said above.
    [[nodiscard]] virtual std::int32_t idAt(std::size_t position) const = 0;
    /// Returns the position of a column. Throws as said above.
    [[nodiscard]] virtual std::size_t positionOf(std::int32_t column) const = 0;

    /// Adds a column before the one at a position, or at the end where the position is the count, with the
    /// default of its description in every row, and returns its id. An empty title stands for the name; the
    /// width is in characters. Throws as said above, and ContextException: "IDS_VT_COLUMNCODE_ERROR" for a
    /// name that is not valid, "IDS_VT_COLUMNS_NOT_UNIQUE" for one that another column has,
    /// "IDS_PARAMETER_N_VALUE_MISMATCH" for a negative width.
    virtual std::int32_t insert(std::size_t position, wstring_view name, TypeDomain domain = {},
                                const LocalWString& title = {}, std::int32_t width = 0) = 0;
    /// Gives a column another name. Throws as insert() does for the name.
    virtual void rename(std::int32_t column, wstring_view name) = 0;
    /// Gives a column another description and converts its cells. Whatever a cell cannot keep is added to
    /// `losses`; where these are null, it throws ConversionException, which names the first cells.
    virtual void setType(std::int32_t column, TypeDomain domain, Losses* losses = nullptr) = 0;
    /// Gives a column another title; an empty one stands for the name. Throws as said above.
    virtual void setTitle(std::int32_t column, const LocalWString& title) = 0;
    /// Gives a column another width in characters; 0 stands for none. Throws as insert() does for the width.
    virtual void setWidth(std::int32_t column, std::int32_t width) = 0;
    /// Moves a column to where it will have that position. Throws as said above.
    virtual void move(std::int32_t column, std::size_t position) = 0;
    /// Deletes a column with its cells, and the indexes over it. Throws as said above.
    virtual void remove(std::int32_t column) = 0;
    /// Deletes all columns; the rows stay.
    virtual void clear() noexcept = 0;

  protected:
    ~IValueColumns() = default;
};

/// A row of a table or a tree as scripts hold it: it keeps the table alive and stays this row wherever it
/// moves. Every function except isDeleted() throws ContextException ("IDS_VT_UNKNOWN_ROW_ERROR") when the row
/// has been deleted. Threads: as the table.
class IValueRow : public IUnknown {
  public:
    /// The id of the interface.
    static constexpr GUID IID = "16920e1d-99dc-43a5-96c2-6a587086d810"_guid;

    /// Returns whether the row has been deleted.
    [[nodiscard]] virtual bool isDeleted() const noexcept = 0;
    /// Returns the position of the row among those of its table, or among those below its parent.
    [[nodiscard]] virtual std::size_t position() const = 0;
    /// Returns the value of a cell. Throws ContextException ("IDS_VT_UNKNOWN_COLUMN_ERROR") for an id that no
    /// column has.
    [[nodiscard]] virtual Value get(std::int32_t column) const = 0;
    /// Puts a value, adjusted to the description of its column, into a cell. Throws as get() does.
    virtual void set(std::int32_t column, const Value& value) = 0;
    /// Returns the table or the tree.
    [[nodiscard]] virtual Value owner() const = 0;

  protected:
    ~IValueRow() = default;
};

/// A condition of a filter: the cell of a column equals a value.
struct VTFindParam {
    std::int32_t column; ///< the id of the column
    Value value;         ///< what its cell is to equal
};

/// A column that rows are sorted by.
struct VTSortParam {
    std::int32_t column;     ///< the id of the column
    bool descending = false; ///< whether the largest values come first
};

} // namespace core
