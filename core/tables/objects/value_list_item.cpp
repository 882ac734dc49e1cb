// SPDX-License-Identifier: Apache-2.0
#include "core/tables/objects/table_arguments.h"
#include "core/tables/objects/value_list_impl.h"

#include <core/context/arguments.h>
#include <core/tables/terms.h>

namespace core {

void ValueListItem::setValue(const GenericValue& value) {
    Value adjusted = list_ != nullptr ? list_->adjusted(value) : Value(value);
    exchangeValue(adjusted);
    tellList();
}

void ValueListItem::setPresentation(const GenericValue& value) {
    content_.presentation = from_value<LocalWString>(value);
    tellList();
}

void ValueListItem::setCheckValue(const GenericValue& value) {
    setCheck(flag_argument(value, 0));
    tellList();
}

void ValueListItem::setPicture(const GenericValue& value) {
    Value picture = list_ != nullptr ? list_->notHolding(value) : Value(value);
    swap(content_.picture, picture);
    tellList();
}

void ValueListItem::tellList() {
    if (list_ != nullptr)
        list_->itemChanged(id_);
}

namespace {

const ScriptTypeEntry<ValueListItem> kValueListItemEntry;

} // namespace

std::span<const Property<ValueListItem>> ValueListItem::properties() noexcept {
    using Self = ValueListItem;
    static constexpr Property<Self> kProperties[] = {
        {kVLColumnTermValue, &Self::getValue, &Self::setValue},
        {kVLColumnTermPresent, &Self::getPresentation, &Self::setPresentation},
        {kVLColumnTermCheck, &Self::getCheck, &Self::setCheckValue, &kBooleanType},
        {kVLColumnTermPicture, &Self::getPicture, &Self::setPicture},
    };
    return kProperties;
}

} // namespace core
