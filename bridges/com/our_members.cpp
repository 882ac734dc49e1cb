// SPDX-License-Identifier: Apache-2.0
#include "bridges/com/our_members.h"

#include "bridges/com/names.h"

#include <core/context/context_def_ext.h>
#include <core/strings/compare.h>
#include <core/strings/term.h>

#include <initializer_list>

namespace core::com {
namespace {

constexpr WORD kPut = DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF;

int find_parameter(IContext_& context, int method, wstring_view name) {
    const InterfacePtr<IContextDefParams> names(static_cast<IContextDef*>(&context));
    for (int param = 0; names && param < context.getNParams(method); ++param) {
        for (const int alias : {kEnglish, kRussian}) {
            const wchar* const known = names->getParamName(method, param, alias);
            if (known != nullptr && compare_nocase(wstring_view(known), name) == 0)
                return param;
        }
    }
    return -1;
}

/// The first of some methods that a context has with so many parameters.
int find_first(const IContext_& context, std::initializer_list<const wchar*> names, int params) {
    for (const wchar* const name : names) {
        if (const int method = context.findMethod(name); method >= 0)
            return context.getNParams(method) == params ? method : -1;
    }
    return -1;
}

/// The property that a key names, or -1: elements are found as in scripts.
int named_property(const IContext_& context, const Value& key) {
    const wstring_view* const name = key.asString();
    const bool isName = name != nullptr && name->find(u'\0') == wstring_view::npos;
    return isName ? context.findProp(name->data()) : -1;
}

void call_element(IContext_* context, std::initializer_list<const wchar*> names, GenericValue* returned,
                  std::vector<GenericValue> arguments) {
    const int method =
        context != nullptr ? find_first(*context, names, static_cast<int>(arguments.size())) : -1;
    if (method < 0)
        throw BadCall{DISP_E_MEMBERNOTFOUND};
    context->call(method, returned, &arguments);
}

GenericValue element(IContext_* context, const GenericValue& key) {
    GenericValue returned;
    if (const int prop = context != nullptr ? named_property(*context, key) : -1; prop >= 0)
        context->getPropVal(prop, returned);
    else
        call_element(context, {u"Get"}, &returned, {key});
    return returned;
}

void set_element(IContext_* context, const GenericValue& key, const GenericValue& value) {
    if (const int prop = context != nullptr ? named_property(*context, key) : -1; prop >= 0)
        context->setPropVal(prop, value);
    else
        call_element(context, {u"Set", u"Insert"}, nullptr, {key, value});
}

bool invoke_value(const OurMembers& object, WORD flags, const CallArguments& arguments,
                  GenericValue& returned) {
    if (arguments.count() > 1)
        throw BadCall{DISP_E_BADPARAMCOUNT};
    if ((flags & kPut) != 0) {
        if (arguments.count() == 0 || !arguments.hasNewValue())
            throw BadCall{DISP_E_BADPARAMCOUNT};
        set_element(object.context, arguments.at(0), arguments.newValue());
        return false;
    }
    returned = arguments.count() == 0 ? GenericValue(object.value.presentation())
                                      : element(object.context, arguments.at(0));
    return true;
}

bool put_property(IContext_& context, int prop, const CallArguments& arguments) {
    if (!arguments.hasNewValue() || arguments.count() > 1)
        throw BadCall{DISP_E_BADPARAMCOUNT};
    if (arguments.count() == 0) {
        context.setPropVal(prop, arguments.newValue());
        return false;
    }
    GenericValue held; // an element of what the property holds
    context.getPropVal(prop, held);
    set_element(held.query<IContext_>().get(), arguments.at(0), arguments.newValue());
    return false;
}

bool call_method(IContext_& context, int method, const CallArguments& arguments, GenericValue& returned) {
    std::vector<GenericValue> values = arguments.forMethod(context, method);
    context.call(method, &returned, &values);
    arguments.passBack(context, method, values);
    return context.hasRetVal(method);
}

} // namespace

::HRESULT find_members(IContext_* context, std::span<LPOLESTR> names, DISPID* ids) {
    const wchar* const name = from_com(names.front());
    if (context == nullptr || name == nullptr)
        return DISP_E_UNKNOWNNAME;
    const int method = context->findMethod(name);
    if (method < 0 && context->findProp(name) < 0)
        return DISP_E_UNKNOWNNAME;
    ids[0] = id_of_name(name);
    ::HRESULT result = S_OK;
    for (std::size_t i = 1; i < names.size(); ++i) {
        const int param =
            method >= 0 && names[i] != nullptr ? find_parameter(*context, method, from_com(names[i])) : -1;
        ids[i] = param >= 0 ? param : DISPID_UNKNOWN;
        if (param < 0)
            result = DISP_E_UNKNOWNNAME;
    }
    return result;
}

bool invoke_member(const OurMembers& object, DISPID member, WORD flags, const CallArguments& arguments,
                   GenericValue& returned) {
    if (member == DISPID_VALUE)
        return invoke_value(object, flags, arguments, returned);
    const wstring* const name = name_of_id(member);
    if (name == nullptr || object.context == nullptr)
        throw BadCall{DISP_E_MEMBERNOTFOUND};
    IContext_& context = *object.context;
    if ((flags & kPut) != 0) {
        const int prop = context.findProp(name->c_str());
        if (prop < 0)
            throw BadCall{DISP_E_MEMBERNOTFOUND};
        return put_property(context, prop, arguments);
    }
    if ((flags & DISPATCH_METHOD) != 0) {
        if (const int method = context.findMethod(name->c_str()); method >= 0)
            return call_method(context, method, arguments, returned);
    }
    if (const int prop = context.findProp(name->c_str()); prop >= 0) {
        context.getPropVal(prop, returned);
        if (arguments.count() == 1)
            returned = element(returned.query<IContext_>().get(), arguments.at(0));
        else if (arguments.count() > 1)
            throw BadCall{DISP_E_BADPARAMCOUNT};
        return true;
    }
    const int method = context.findMethod(name->c_str()); // languages without parentheses read what they call
    if (method < 0)
        throw BadCall{DISP_E_MEMBERNOTFOUND};
    return call_method(context, method, arguments, returned);
}

} // namespace core::com
