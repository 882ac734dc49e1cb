// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/any_value.h>
#include <core/runtime/index_iterator.h>
#include <core/strings/text.h>
#include <core/tables/value_columns.h>

#include <concepts>
#include <cstddef>
#include <initializer_list>
#include <utility>
#include <vector>

/// Columns of tables and trees as a program names and changes them.
namespace core {

/// A column of a table or a tree: a handle, which keeps its table alive and stays this column wherever it
/// moves. Every function except isOf() and id() throws ContextException ("IDS_VT_UNKNOWN_COLUMN_ERROR") when
/// the column has been deleted. Threads: as the table.
class Column {
  public:
    /// Makes the handle of the column with an id, which is not looked for before it is used.
    Column(InterfacePtr<IValueColumns> columns, std::int32_t id) noexcept
        : columns_(std::move(columns)), id_(id) {}

    /// Returns whether the column is one of `columns`, or was before it was deleted.
    [[nodiscard]] bool isOf(const IValueColumns& columns) const noexcept { return columns_ == &columns; }
    /// Returns the id of the column.
    [[nodiscard]] std::int32_t id() const noexcept { return id_; }
    /// Returns a copy of all that the column is. Throws as said above.
    [[nodiscard]] ValueColumn info() const { return columns_->get(position()); }
    /// Returns the position of the column. Throws as said above.
    [[nodiscard]] std::size_t position() const { return columns_->positionOf(id_); }
    /// Returns the name. Throws as said above.
    [[nodiscard]] wstring name() const { return info().name; }
    /// Returns the title for the user of the calling thread. Throws as said above.
    [[nodiscard]] wstring title() const { return info().title.text(); }
    /// Returns the width in characters, 0 for none. Throws as said above.
    [[nodiscard]] std::int32_t width() const { return info().width; }
    /// Returns what the cells are adjusted to. Throws as said above.
    [[nodiscard]] TypeDomain type() const { return info().domain; }

    /// Gives the column another name. Throws as said above and as IValueColumns::rename() does.
    void rename(const Text& name) const { columns_->rename(id_, name.view()); }
    /// Converts the cells to another type. Throws as said above and as IValueColumns::setType() does.
    void setType(TypeDomain type, Losses* losses = nullptr) const {
        columns_->setType(id_, std::move(type), losses);
    }
    /// Gives the column another title. Throws as said above.
    void setTitle(const LocalWString& title) const { columns_->setTitle(id_, title); }
    /// Gives the column another width in characters. Throws as IValueColumns::setWidth() does.
    void setWidth(std::int32_t width) const { columns_->setWidth(id_, width); }
    /// Moves the column to where it will have that position. Throws as IValueColumns::move() does.
    void move(std::size_t position) const { columns_->move(id_, position); }
    /// Deletes the column with its cells. Throws as said above.
    void remove() const { columns_->remove(id_); }

  private:
    InterfacePtr<IValueColumns> columns_;
    std::int32_t id_;
};

/// A parameter that names a column: by its name in any case, in UTF-16 or UTF-8, by its position from 0, or
/// as a Column. It is for parameters alone: it borrows the name.
class ColumnKey {
  public:
    /// Takes a name. Throws ConverterException for bytes that are not UTF-8.
    template <class T>
    requires std::convertible_to<const T&, Text> ColumnKey(const T& name) : name_(name) {}
    /// Takes a position.
    template <NumericInteger T>
    ColumnKey(T position) noexcept
        : name_(wstring_view()), position_(static_cast<std::size_t>(position)), kind_(Kind::position) {}
    /// Takes a column, which must outlive the key.
    ColumnKey(const Column& column) noexcept : name_(wstring_view()), column_(&column), kind_(Kind::column) {}

    /// Returns the id of the column among `columns`. Throws ContextException: "IDS_VT_UNKNOWN_COLUMN_ERROR"
    /// for a name that none of them has and for a column of another table, "IDS_INDEX_OFFBOUND" for a
    /// position without a column.
    [[nodiscard]] CORE_API std::int32_t idIn(const IValueColumns& columns) const;

  private:
    enum class Kind : unsigned char { name, position, column };

    Text name_;
    std::size_t position_ = 0;
    const Column* column_ = nullptr;
    Kind kind_ = Kind::name;
};

/// Several columns, in their order: `{"Product", "Region"}`.
using ColumnKeys = std::initializer_list<ColumnKey>;

/// Returns the ids of several columns. Throws as ColumnKey::idIn() does.
[[nodiscard]] CORE_API std::vector<std::int32_t> column_ids(const IValueColumns& columns, ColumnKeys keys);

/// A condition of a search: the cell of a column equals a value: `{"Product", "apple"}`.
struct CellEquals {
    ColumnKey column; ///< the column
    AnyValue value;   ///< what its cell is to equal
};

/// Returns the conditions by the ids of their columns. Throws as ColumnKey::idIn() does.
[[nodiscard]] CORE_API std::vector<VTFindParam> find_params(const IValueColumns& columns,
                                                            std::initializer_list<CellEquals> conditions);

/// A parameter that says what a new column is: `"Product"`, or with a type `{"Price", kNumberType}`.
class NewColumn {
  public:
    /// A column of a name whose cells may hold everything. Throws ConverterException for bytes that are not
    /// UTF-8.
    template <class T>
    requires std::convertible_to<const T&, Text> NewColumn(const T& name) : name_(name) {}
    /// A column of a name and the id of a type.
    template <class T>
    requires std::convertible_to<const T&, Text> NewColumn(const T& name, const GUID& type)
        : NewColumn(name, TypeDomain(TypeDomainPattern{type})) {}
    /// A column of a name and a type description.
    template <class T>
    requires std::convertible_to<const T&, Text> NewColumn(const T& name, TypeDomain type)
        : name_(name), type_(std::move(type)) {}

    /// Adds the column behind the others and returns its id. Throws as IValueColumns::insert() does.
    CORE_API std::int32_t addTo(IValueColumns& columns) const;

  private:
    Text name_;
    TypeDomain type_;
};

/// The columns of a table or a tree, to be walked and changed: a handle, which keeps the table alive.
/// Threads: as the table.
class Columns {
  public:
    /// Makes the handle of columns that are there.
    explicit Columns(InterfacePtr<IValueColumns> columns) noexcept : columns_(std::move(columns)) {}

    /// Returns how many columns there are.
    [[nodiscard]] std::size_t size() const noexcept { return columns_->count(); }
    /// Returns whether there are none.
    [[nodiscard]] bool empty() const noexcept { return size() == 0; }
    /// Returns a column by its name or position. Throws as ColumnKey::idIn() does.
    [[nodiscard]] Column operator[](const ColumnKey& column) const {
        return {columns_, column.idIn(*columns_)};
    }
    /// Returns whether a column has a name, in any case.
    [[nodiscard]] bool contains(const Text& name) const { return columns_->find(name.view()) >= 0; }
    /// Begins a walk over the columns; changes of the columns end it.
    [[nodiscard]] IndexIterator<Columns> begin() const noexcept { return {*this, 0}; }
    /// Returns the end of a walk.
    [[nodiscard]] IndexIterator<Columns> end() const noexcept { return {*this, size()}; }

    /// Adds a column behind the others and returns it. Throws as IValueColumns::insert() does.
    Column add(const NewColumn& column) const { return {columns_, column.addTo(*columns_)}; }
    /// Adds a column of a name and a type behind the others and returns it. Throws as
    /// IValueColumns::insert() does.
    Column add(const Text& name, TypeDomain type, const LocalWString& title = {},
               std::int32_t width = 0) const {
        return {columns_, columns_->insert(size(), name.view(), std::move(type), title, width)};
    }
    /// Inserts a column before the one at a position and returns it. Throws as IValueColumns::insert() does.
    Column insert(std::size_t position, const Text& name, TypeDomain type = {}) const {
        return {columns_, columns_->insert(position, name.view(), std::move(type))};
    }
    /// Deletes a column with its cells. Throws as ColumnKey::idIn() does.
    void remove(const ColumnKey& column) const { columns_->remove(column.idIn(*columns_)); }
    /// Deletes all columns; the rows stay.
    void clear() const noexcept { columns_->clear(); }

  private:
    InterfacePtr<IValueColumns> columns_;
};

} // namespace core
