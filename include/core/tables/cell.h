// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/collections/native_values.h>
#include <core/context/any_value.h>
#include <core/tables/value_table.h>
#include <core/tables/value_tree.h>
#include <core/values/shown_value.h>

#include <compare>
#include <concepts>
#include <ostream>
#include <string>
#include <utility>

namespace core {

namespace detail {

/// Where a cell of a table is: by the position of its row.
struct TablePlace {
    IValueTable* table;
    std::size_t row;
    std::int32_t column;

    [[nodiscard]] Value get() const { return table->get(row, column); }
    void set(const Value& value) const { table->set(row, column, value); }
};

/// Where a cell of a tree is.
struct TreePlace {
    IValueTreeRow* row;
    std::int32_t column;

    [[nodiscard]] Value get() const { return row->get(column); }
    void set(const Value& value) const { row->set(column, value); }
};

} // namespace detail

/// A cell of a row, as `row["Price"]` gives it: it reads and writes the cell where it stands and holds no
/// value of its own. It is borrowed from the row, for use at once. Every function throws ContextException
/// when the row or the column is not there any more. Threads: as the table.
template <class Place>
class BasicCell {
  public:
    /// Makes the cell of a place.
    explicit BasicCell(Place place) noexcept : place_(place) {}
    BasicCell(const BasicCell&) = default;

    /// Returns the value. Throws as said above.
    [[nodiscard]] Value value() const { return place_.get(); }
    /// Returns the value. Throws as said above.
    operator Value() const { return value(); }
    /// Returns the value as a `T`, which must not borrow from it: a wstring or an std::string, never a view.
    /// Throws as said above, and ContextException ("IDS_PARAMETER_N_TYPE_MISMATCH") for a value that is not
    /// one.
    template <detail::KeptValue T>
    [[nodiscard]] T as() const {
        return from_value<T>(value());
    }

    /// Puts a value, adjusted to the description of the column, into the cell. Throws as said above.
    const BasicCell& operator=(const AnyValue& value) const {
        place_.set(value);
        return *this;
    }
    /// Puts the value of another cell into this one. Throws as said above.
    BasicCell& operator=(const BasicCell& other) {
        place_.set(other.value());
        return *this;
    }

    friend bool operator==(const BasicCell& a, const BasicCell& b) { return a.value() == b.value(); }
    template <std::convertible_to<AnyValue> T>
    friend bool operator==(const BasicCell& a, const T& b) {
        return a.value() == AnyValue(b).value();
    }
    friend std::weak_ordering operator<=>(const BasicCell& a, const BasicCell& b) {
        return a.value() <=> b.value();
    }
    template <std::convertible_to<AnyValue> T>
    friend std::weak_ordering operator<=>(const BasicCell& a, const T& b) {
        return a.value() <=> AnyValue(b).value();
    }

  private:
    Place place_;
};

/// A cell of a table.
using Cell = BasicCell<detail::TablePlace>;
/// A cell of a tree.
using TreeCell = BasicCell<detail::TreePlace>;

/// Returns the presentation of the cell's value. Throws as the cell does.
template <class Place>
[[nodiscard]] std::string to_utf8(const BasicCell<Place>& cell) {
    return to_utf8(cell.value());
}
/// Cells are written to streams as their values are.
template <class Place>
inline constexpr bool kShown<BasicCell<Place>> = true;

} // namespace core
