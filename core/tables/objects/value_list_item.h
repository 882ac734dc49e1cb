// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/row_order.h"

#include <core/context/script_object.h>
#include <core/objects/locale_values.h>
#include <core/tables/terms.h>
#include <core/tables/value_list.h>

namespace core {

class ValueList;
class ValueListItem;

/// How the library knows its own items among all values.
class IListItemObject : public IUnknown {
  public:
    static constexpr GUID IID = "1f47d02a-8748-4a8d-980f-df152bb6c3f9"_guid;
    [[nodiscard]] virtual ValueListItem& self() noexcept = 0;

  protected:
    ~IListItemObject() = default;
};

/// An item of a value list. It stays what it is when it is deleted from the list or the list is gone.
class ValueListItem : public ScriptObject<ValueListItem, IListItemObject> {
  public:
    static constexpr ScriptClass script = {
        .names = kValueListItemTerm,
        .type = kValueListItemType,
        .object = "24b2a36c-c706-4387-8c29-9271884ce228"_guid,
        .presentation = "IDS_TYPE_PRESENTATION_VALUELISTITEM",
    };

    explicit ValueListItem(IValueList::Item content) : content_(std::move(content)) {}

    static std::span<const Property<ValueListItem>> properties() noexcept;
    ValueListItem& self() noexcept override { return *this; }

    [[nodiscard]] const IValueList::Item& content() const noexcept { return content_; }
    /// For the list, which has checked the value.
    void exchangeValue(Value& value) noexcept { swap(content_.value, value); }
    void exchangeContent(IValueList::Item& content) noexcept { std::swap(content_, content); }
    void setCheck(bool check) noexcept { content_.check = check; }

    /// The list that the item is in, or null, and its id there.
    [[nodiscard]] ValueList* list() const noexcept { return list_; }
    [[nodiscard]] RowId id() const noexcept { return id_; }
    void enter(ValueList* list, RowId id) noexcept {
        list_ = list;
        id_ = id;
    }

  private:
    GenericValue getValue() const { return content_.value; }
    void setValue(const GenericValue& value);
    GenericValue getPresentation() const { return to_value(content_.presentation); }
    void setPresentation(const GenericValue& value);
    GenericValue getCheck() const { return content_.check; }
    void setCheckValue(const GenericValue& value);
    GenericValue getPicture() const { return content_.picture; }
    void setPicture(const GenericValue& value);
    void tellList();

    IValueList::Item content_;
    ValueList* list_ = nullptr;
    RowId id_ = kNoRow;
};

using ValueListItemPtr = InterfacePtr<SCOM_InternalClass<ValueListItem>>;

} // namespace core
