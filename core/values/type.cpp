// SPDX-License-Identifier: Apache-2.0
#include "core/values/primitive_types.h"

#include <core/runtime/errors.h>
#include <core/runtime/threads/thread.h>
#include <core/strings/nearest.h>
#include <core/strings/term.h>
#include <core/values/errors.h>
#include <core/values/generic_value.h>
#include <core/values/type_object.h>
#include <core/values/type_service.h>

namespace core {
namespace {

IType* primitive(Type::Code code) noexcept {
    if (code == Type::type)
        return detail::primitive_type(ValueKind::type);
    return code >= Type::undefined && code <= Type::date
               ? detail::primitive_type(static_cast<ValueKind>(code))
               : nullptr;
}

IType* registered(const GUID& id) {
    IType* const type = require_service<ITypeValueService>().findType(id);
    if (type == nullptr)
        throw_error<TypeException>(messages::kTypeNotDefined, {to_string(id)});
    return type;
}

/// The text of the failure names the nearest type, if one is near.
IType* registered(wstring_view name) {
    ITypeValueService& service = require_service<ITypeValueService>();
    if (IType* const type = service.findType(name))
        return type;
    NearestName nearest(name);
    for (const IType* const type : service.types()) {
        for (const int alias : {kEnglish, kRussian}) {
            if (const wchar* const candidate = type->name(alias))
                nearest.add(candidate);
        }
    }
    wstring text = message_text(messages::kTypeNotDefined, {wstring(name)});
    if (!nearest.best().empty())
        text += u" " + message_text("IDS_DID_YOU_MEAN", {nearest.best()});
    throw_with_message(TypeException(text), messages::kTypeNotDefined, {wstring(name)});
}

IType* primitive(const GUID& id) noexcept {
    for (const Type::Code code :
         {Type::undefined, Type::null, Type::boolean, Type::number, Type::string, Type::date, Type::type}) {
        if (primitive(code)->id() == id)
            return primitive(code);
    }
    return nullptr;
}

} // namespace

Type::Type(Code code) noexcept : type_(primitive(code)) {}

Type::Type(const GUID& id) : type_(primitive(id)) {
    if (type_ == nullptr)
        type_ = registered(id);
}

Type::Type(wstring_view name) : type_(registered(name)) {}

Type::Code Type::code() const noexcept {
    return type_ != nullptr ? static_cast<Code>(type_->code()) : object;
}

HRESULT TypeObject::QueryInterface(const GUID& iid, void** out) noexcept {
    const HRESULT result = IUnknownImpl::QueryInterface(iid, out);
    if (result == kOk)
        AddRef();
    return result;
}

wstring TypeObject::presentation() const {
    if (info_.presentation != nullptr)
        return detail::message_text_of(*info_.module, info_.presentation);
    return term_string(info_.names, Thread::getResourceLocale().isRussian() ? kRussian : kEnglish);
}

GenericValue TypeObject::construct(std::span<GenericValue> arguments) {
    const auto count = static_cast<std::int32_t>(arguments.size());
    const Arguments bounds = info_.arguments;
    if (info_.construct == nullptr)
        throw_error<CtorException>(messages::kNoConstructor, {presentation()});
    if (count < bounds.least || (bounds.most >= 0 && count > bounds.most))
        throw_error<CtorException>(messages::kBadParameterCount, {presentation()});
    return info_.construct(arguments);
}

} // namespace core
