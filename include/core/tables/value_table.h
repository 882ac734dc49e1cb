// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/types/type_domain.h>
#include <core/values/generic_value.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// The value table: rows of values under named columns, each of which may be held to a type description.
/// Scripts know it as "ValueTable".
///
/// Rows are numbered from 0 in their order, which changes when rows are inserted, moved, deleted or sorted. A
/// column has an id that stays when columns come and go or are renamed. ContextException:
/// "IDS_INDEX_OFFBOUND" for a row that is not there, "IDS_VT_UNKNOWN_COLUMN_ERROR" for a column; a failed
/// call changes nothing. Threads: one at a time.
namespace core {

inline constexpr GUID kValueTableClass = "b2eeec98-e624-4207-bccd-4768231bc9f0"_guid;
inline constexpr GUID kValueTableType = "443f09ed-a498-49b2-b555-edf086214cd1"_guid;

/// A condition of a filter: the cell of a column equals a value.
struct VTFindParam {
    std::int32_t column;
    Value value;
};

/// A table to be read.
class IValueTableBaseRO : public IUnknown {
  public:
    static constexpr GUID IID = "ee168739-63fe-4cc0-9ba6-a5154c5df52f"_guid;

    struct Column {
        std::int32_t id = -1;
        wstring name;
        wstring title; ///< what a user reads
        std::int32_t width = 0;
        TypeDomain domain;
    };

    // columns
    [[nodiscard]] virtual std::size_t columnCount() const noexcept = 0;
    [[nodiscard]] virtual Column column(std::size_t position) const = 0;
    /// The id of the column with a name, in any case; -1 when there is none.
    [[nodiscard]] virtual std::int32_t findColumn(wstring_view name) const = 0;

    // rows
    [[nodiscard]] virtual std::size_t rowCount() const noexcept = 0;
    [[nodiscard]] virtual GenericValue get(std::size_t row, std::int32_t column) const = 0;
    /// The row as scripts hold it.
    [[nodiscard]] virtual GenericValue row(std::size_t position) = 0;
    /// The rows, in order, that meet all conditions.
    [[nodiscard]] virtual std::vector<std::size_t>
    IValueTableBaseRO_findRows(std::span<const VTFindParam> filter) const = 0;

  protected:
    ~IValueTableBaseRO() = default;
};

/// A table that can be changed. Values are adjusted to the descriptions of their columns.
class IValueTable : public IValueTableBaseRO {
  public:
    static constexpr GUID IID = "d392422d-7733-44a5-8d04-b4fbfd925781"_guid;

    /// Adds a column behind the others and returns its id. ContextException for what is no valid
    /// name ("IDS_VT_COLUMNCODE_ERROR") or that of another column ("IDS_VT_COLUMNS_NOT_UNIQUE").
    /// An empty title is the name.
    virtual std::int32_t addColumn(wstring_view name, TypeDomain domain = {}, wstring_view title = {},
                                   std::int32_t width = 0) = 0;
    /// Adds a row behind the others. Columns for which there is no cell get their defaults.
    virtual void appendRow(std::span<const Value> cells) = 0;
    virtual void set(std::size_t row, std::int32_t column, const Value& value) = 0;
    virtual void removeRow(std::size_t row) = 0;
    virtual void clear() = 0;

  protected:
    ~IValueTable() = default;
};

[[nodiscard]] CORE_API InterfacePtr<IValueTable> create_value_table();

} // namespace core
