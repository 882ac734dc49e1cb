// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/locales/local_wstring.h>
#include <core/objects/enumeration.h>
#include <core/types/type_domain.h>
#include <core/values/generic_value.h>

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

/// The value list: an ordered list of values, each with a presentation, a check mark and a picture. Scripts
/// know it as "ValueList".
namespace core {

/// The class id of value lists, by which a stored list is made again.
inline constexpr GUID kValueListClass = "3a349384-5ec8-4b40-9774-2361025cc3d6"_guid;
/// The type id of value lists.
inline constexpr GUID kValueListType = "d3ee1bc3-3045-4898-b2bb-399ee05c34cc"_guid;
/// The type id of their items.
inline constexpr GUID kValueListItemType = "53b7ea29-9c43-43b2-a693-280d860b0b9b"_guid;

/// The direction of a sort.
enum class SortDirection : unsigned char {
    ascending, ///< smallest values first
    descending ///< largest values first
};

/// A value list to C++ code; <core/tables/list.h> is the shortest way to it in a program.
///
/// Items have positions from 0. A failed call changes nothing. Every function that takes a position throws
/// ContextException ("IDS_INDEX_OFFBOUND") for one without an item. Every function that puts in a value or a
/// picture throws ContextException ("IDS_VL_CYCLING") for one through which the list would hold itself.
/// Threads: one at a time.
class IValueList : public IUnknown {
  public:
    /// The id of the interface.
    static constexpr GUID IID = "fb903dbb-d378-461d-87f4-25a7c8433271"_guid;

    /// What an item holds.
    struct Item {
        Value value{};               ///< the value, of the list's type description
        LocalWString presentation{}; ///< the text that a user reads; empty for the value's own
        bool check = false;          ///< the check mark
        Value picture{};             ///< a picture, or Undefined
    };

    // inspect
    /// Returns how many items there are.
    [[nodiscard]] virtual std::size_t count() const noexcept = 0;
    /// Returns a copy of what an item holds. Throws as said above.
    [[nodiscard]] virtual Item get(std::size_t position) const = 0;
    /// Returns the item as scripts hold it: it stays this item when the list is sorted, and keeps its content
    /// when it is deleted. Throws as said above.
    [[nodiscard]] virtual GenericValue item(std::size_t position) const = 0;
    /// Returns the position of an item that item() returned. Throws ContextException:
    /// "IDS_PARAMETER_N_VALUE_MISMATCH" for one that was deleted or is another list's,
    /// "IDS_PARAMETER_N_TYPE_MISMATCH" for any other value.
    [[nodiscard]] virtual std::size_t indexOf(const Value& item) const = 0;
    /// Returns the position of the first item with a value; nothing where none has it.
    [[nodiscard]] virtual std::optional<std::size_t> find(const Value& value) const noexcept = 0;
    /// Returns the values of all items, in their order.
    [[nodiscard]] virtual std::vector<Value> values() const = 0;
    /// Returns what the values are adjusted to.
    [[nodiscard]] virtual TypeDomain valueType() const = 0;
    /// Returns a new list with the same type description and copies of the items.
    [[nodiscard]] virtual InterfacePtr<IValueList> copy() const = 0;

    // modify
    /// Adds an item behind the others, its value adjusted to the list's type description. Throws as said
    /// above.
    virtual void add(const Item& item) = 0;
    /// Inserts such an item before the one at a position, or at the end where the position is the count.
    /// Throws as said above.
    virtual void insert(std::size_t position, const Item& item) = 0;
    /// Replaces what an item holds; its value is adjusted. Throws as said above.
    virtual void set(std::size_t position, const Item& item) = 0;
    /// Sets or clears the check mark of an item. Throws as said above.
    virtual void setCheck(std::size_t position, bool check) = 0;
    /// Sets or clears all check marks.
    virtual void fillChecks(bool check) = 0;
    /// Moves an item to where it will have the position `to`. Throws as said above.
    virtual void move(std::size_t from, std::size_t to) = 0;
    /// Deletes an item; those behind it move up. Throws as said above.
    virtual void remove(std::size_t position) = 0;
    /// Deletes all items.
    virtual void clear() = 0;
    /// Replaces all items by such as have these values alone, converted. Throws as said above, and
    /// ConversionException where a value would not be kept whole.
    virtual void load(std::span<const Value> values) = 0;
    /// Gives the list another type description and converts the values to it. Throws ConversionException
    /// where one would not be kept whole.
    virtual void setValueType(TypeDomain domain) = 0;
    /// Sorts the items by their values; those with equal ones keep their order.
    virtual void sortByValue(SortDirection direction = SortDirection::ascending) = 0;
    /// Sorts the items by their presentations; those with equal ones keep their order.
    virtual void sortByPresentation(SortDirection direction = SortDirection::ascending) = 0;

    // ask the user, through the service IChooser
    /// Lets the user choose an item and returns its position; nothing where he cancels or no service is
    /// there. Throws as said above.
    [[nodiscard]] virtual std::optional<std::size_t> choose(const wstring& title,
                                                            std::optional<std::size_t> initial = {}) = 0;
    /// Lets the user set the check marks. Returns false, with the marks as they were, where he cancels or no
    /// service is there.
    virtual bool chooseChecks(const wstring& title) = 0;

  protected:
    ~IValueList() = default;
};

/// Returns a new, empty list that admits every value.
[[nodiscard]] CORE_API InterfacePtr<IValueList> create_value_list();

/// Returns the enumeration "SortDirection", which lives as long as the library: 0 is ascending, 1 descending.
[[nodiscard]] CORE_API const Enumeration& sort_types() noexcept;

} // namespace core
