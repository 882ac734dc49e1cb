// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/locales/local_wstring.h>
#include <core/objects/enumeration.h>
#include <core/values/generic_value.h>

#include <cstddef>

/// The value list: an ordered list of values, each with a presentation, a check mark and a picture. Scripts
/// know it as "ValueList".
namespace core {

/// The class id of value lists, by which a stored list is made again.
inline constexpr GUID kValueListClass = "3a349384-5ec8-4b40-9774-2361025cc3d6"_guid;
/// The type id of value lists.
inline constexpr GUID kValueListType = "d3ee1bc3-3045-4898-b2bb-399ee05c34cc"_guid;
/// The type id of their items.
inline constexpr GUID kValueListItemType = "53b7ea29-9c43-43b2-a693-280d860b0b9b"_guid;

/// A value list to C++ code. Items have positions from 0. A failed call changes nothing. Threads: one at a
/// time.
class IValueList : public IUnknown {
  public:
    /// The id of the interface.
    static constexpr GUID IID = "fb903dbb-d378-461d-87f4-25a7c8433271"_guid;

    /// What an item holds.
    struct Item {
        Value value;               ///< the value, of the list's type description
        LocalWString presentation; ///< the text that a user reads; empty for the value's own
        bool check = false;        ///< the check mark
        Value picture;             ///< a picture, or Undefined
    };

    /// Returns how many items there are.
    [[nodiscard]] virtual std::size_t count() const noexcept = 0;
    /// Returns a copy of what an item holds. Throws ContextException ("IDS_INDEX_OFFBOUND") for a position
    /// without an item.
    [[nodiscard]] virtual Item get(std::size_t position) const = 0;
    /// Returns the item as scripts hold it: it stays this item when the list is sorted, and keeps its content
    /// when it is deleted. Throws as get() does.
    [[nodiscard]] virtual GenericValue item(std::size_t position) const = 0;
    /// Sets or clears the check mark of an item. Throws as get() does.
    virtual void setCheck(std::size_t position, bool check) = 0;
    /// Adds an item behind the others, its value adjusted to the list's type description. Throws
    /// ContextException ("IDS_VL_CYCLING") for a value through which the list would hold itself.
    virtual void add(const Item& item) = 0;

  protected:
    ~IValueList() = default;
};

/// Returns a new, empty list that admits every value.
[[nodiscard]] CORE_API InterfacePtr<IValueList> create_value_list();

/// Returns the enumeration "SortDirection", which lives as long as the library: 0 is ascending, 1 descending.
[[nodiscard]] CORE_API const Enumeration& sort_types() noexcept;

} // namespace core
