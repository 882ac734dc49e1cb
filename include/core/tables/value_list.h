// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/objects/enumeration.h>
#include <core/values/generic_value.h>

#include <cstddef>

/// The value list: values in a row, each with a presentation, a check mark and a picture.
/// Scripts know it as "ValueList".
namespace core {

inline constexpr GUID kValueListClass = "3a349384-5ec8-4b40-9774-2361025cc3d6"_guid;
inline constexpr GUID kValueListType = "d3ee1bc3-3045-4898-b2bb-399ee05c34cc"_guid;
inline constexpr GUID kValueListItemType = "53b7ea29-9c43-43b2-a693-280d860b0b9b"_guid;

/// Items are numbered from 0. ContextException ("IDS_INDEX_OFFBOUND") for one that is not there,
/// "IDS_VL_CYCLING" for a value through which the list would hold itself; a failed call changes nothing.
/// Threads: one at a time.
class IValueList : public IUnknown {
  public:
    static constexpr GUID IID = "fb903dbb-d378-461d-87f4-25a7c8433271"_guid;

    struct Item {
        Value value;
        wstring presentation;
        bool check = false;
        Value picture;
    };

    [[nodiscard]] virtual std::size_t count() const noexcept = 0;
    [[nodiscard]] virtual Item get(std::size_t position) const = 0;
    /// The item as scripts hold it.
    [[nodiscard]] virtual GenericValue item(std::size_t position) const = 0;
    virtual void setCheck(std::size_t position, bool check) = 0;
    /// Adds an item behind the others, its value adjusted to the list's type description.
    virtual void add(const Item& item) = 0;

  protected:
    ~IValueList() = default;
};

[[nodiscard]] CORE_API InterfacePtr<IValueList> create_value_list();

/// "SortDirection": 0 ascending, 1 descending.
[[nodiscard]] CORE_API const Enumeration& sort_types() noexcept;

} // namespace core
