// SPDX-License-Identifier: Apache-2.0
#include "core/lists/malformed.h"

#include <core/context/arguments.h>
#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/objects/enumeration.h>
#include <core/runtime/exception.h>

namespace core {
namespace {

constexpr TypeInfo kTypeInfo = {.id = "9ccfe410-65b9-471b-8424-d9c5d724c6d2"_guid,
                                .names = {u"Enumeration", u"Перечисление"},
                                .presentation = "IDS_TYPE_PRESENTATION_ENUMERATION"};
const TypeEntry<kTypeInfo> kType("Enumeration_Type");

} // namespace

// Values

HRESULT EnumerationValue::QueryInterface(const GUID& iid, void** out) noexcept {
    return query_interface_map(this, detail::interface_map<EnumerationValue>(Interfaces{}), iid, out);
}

IType* EnumerationValue::getType() const noexcept {
    return enumeration_.valueType();
}

bool EnumerationValue::getString(wstring& out) const {
    out = detail::message_text_of(*enumeration_.info().type.module, item_.presentation);
    return true;
}

std::int32_t EnumerationValue::hashCode() const noexcept {
    // The same in every run, unlike an address.
    return static_cast<std::int32_t>(enumeration_.info().type.id.data1 +
                                     static_cast<std::uint32_t>(item_.number));
}

const GUID& EnumerationValue::getCLSID() const noexcept {
    return enumeration_.info().type.valueClass;
}

void EnumerationValue::serialize(IOutPersistenceStorage* storage) const {
    storage->listStream().put(item_.number);
}

void EnumerationValue::deserialize(IInPersistenceStorage* storage) {
    std::int32_t number = 0;
    storage->listStream().get(number);
    if (number != item_.number)
        throw_malformed();
}

// The enumeration

GenericValue Enumeration::value(std::int32_t number) const {
    for (std::size_t i = 0; i < info_.items.size(); ++i) {
        if (info_.items[i].number == number)
            return GenericValue(static_cast<IValue*>(&values_[i]));
    }
    return {};
}

std::optional<std::int32_t> Enumeration::number(const Value& value) const noexcept {
    if (!value.isObject() || value.object()->getType() != valueType())
        return std::nullopt;
    return static_cast<EnumerationValue*>(value.object())->item().number; // no other class has the type
}

HRESULT Enumeration::QueryInterface(const GUID& iid, void** out) noexcept {
    return query_interface_map(this, detail::interface_map<Enumeration>(Interfaces{}), iid, out);
}

IType* Enumeration::getType() const noexcept {
    return kType.instance();
}

bool Enumeration::getString(wstring& out) const {
    out = type_.presentation();
    return true;
}

const wchar* Enumeration::getPropName(int prop, int alias) const {
    return detail::name_at(info_.items, prop, alias);
}

InterfacePtr<IContextDef> Enumeration::getIContextDef() {
    return InterfacePtr<IContextDef>(static_cast<IContextDef*>(this));
}

void Enumeration::getPropVal(int prop, GenericValue& out) {
    const EnumerationItem* const item = detail::entry_at(info_.items, prop);
    if (item == nullptr)
        detail::bad_property(prop);
    out = value(item->number);
}

void Enumeration::setPropVal(int prop, const GenericValue&) {
    const wchar* const name = getPropName(prop, kEnglish);
    if (name == nullptr)
        detail::bad_property(prop);
    detail::unwritable_property(name);
}

void Enumeration::call(int method, GenericValue*, std::vector<GenericValue>*) {
    detail::bad_method(method);
}

bool Enumeration::getPropInfo(int prop, ContextValueInfo& info) const {
    return detail::entry_at(info_.items, prop) != nullptr && detail::describe_type(&info_.type.id, info);
}

std::int32_t choice_argument(const Value& argument, int param, const Enumeration& enumeration,
                             std::int32_t byDefault) {
    if (argument.isUndefined())
        return byDefault;
    const auto number = enumeration.number(argument);
    if (!number)
        parameter_type_mismatch(param);
    return *number;
}

GenericValue Enumeration::Loader::load(IInPersistenceStorage* storage) {
    std::int32_t number = 0;
    storage->listStream().get(number);
    GenericValue value = enumeration_.value(number);
    if (value.isUndefined())
        throw_malformed();
    return value;
}

} // namespace core
