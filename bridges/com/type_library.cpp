// SPDX-License-Identifier: Apache-2.0
#include "bridges/com/type_library.h"

#include "bridges/com/errors.h"
#include "bridges/com/our_object.h"
#include "bridges/com/system.h"
#include "bridges/com/type_info.h"
#include "bridges/com/values.h"

#include <core/collections/array.h>
#include <core/collections/pairs.h>
#include <core/context/arguments.h>
#include <core/context/script_object.h>
#include <core/strings/integer_text.h>

namespace core::com {
namespace {

wstring kind_name(TYPEKIND kind) {
    constexpr const wchar* kNames[] = {u"Enumeration", u"Record",  u"Module", u"Interface",
                                       u"Dispatch",    u"CoClass", u"Alias",  u"Union"};
    return kind >= 0 && kind < TKIND_MAX ? kNames[kind] : u"";
}

Value parameter_value(const KnownParam& param) {
    const Structure value;
    value.insert(u"Name", param.name);
    value.insert(u"Type", type_name(param.type));
    value.insert(u"Optional", param.optional);
    value.insert(u"Out", param.out);
    return value;
}

Value member_value(const KnownMember& member) {
    const Structure value;
    value.insert(u"Name", member.name);
    value.insert(u"Kind", member.isProperty() ? u"Property" : u"Method");
    value.insert(u"Id", static_cast<std::int32_t>(member.id));
    value.insert(u"Type", type_name(member.type));
    value.insert(u"Description", member.description);
    const Array params;
    for (const KnownParam& param : member.params)
        params.add(parameter_value(param));
    value.insert(u"Parameters", params);
    return value;
}

/// The constants of an enumeration or a module.
Value constants_value(ITypeInfo& type, UINT count) {
    const Structure constants;
    for (UINT i = 0; i < count; ++i) {
        VARDESC* variable = nullptr;
        check_given(type.GetVarDesc(i, &variable), variable, messages::kTypeLibrary, {});
        const auto release = [&](VARDESC* one) { type.ReleaseVarDesc(one); };
        const std::unique_ptr<VARDESC, decltype(release)> held(variable, release);
        Bstr name;
        if (variable->varkind == VAR_CONST && variable->lpvarValue != nullptr &&
            SUCCEEDED(type.GetDocumentation(variable->memid, name.out(), nullptr, nullptr, nullptr)))
            constants.insert(name.view(), from_variant(*variable->lpvarValue));
    }
    return constants;
}

/// The names of what a class implements, the default one first.
Value interfaces_value(ITypeInfo& type, UINT count) {
    const Array interfaces;
    for (UINT i = 0; i < count; ++i) {
        HREFTYPE reference = 0;
        ComPtr<ITypeInfo> implemented;
        Bstr name;
        INT flags = 0;
        if (FAILED(type.GetRefTypeOfImplType(i, &reference)) ||
            FAILED(type.GetRefTypeInfo(reference, implemented.typed())) || !implemented ||
            FAILED(implemented->GetDocumentation(MEMBERID_NIL, name.out(), nullptr, nullptr, nullptr)))
            continue;
        static_cast<void>(type.GetImplTypeFlags(i, &flags));
        const Structure value;
        value.insert(u"Name", name.view());
        value.insert(u"Default", (flags & IMPLTYPEFLAG_FDEFAULT) != 0);
        value.insert(u"Source", (flags & IMPLTYPEFLAG_FSOURCE) != 0);
        interfaces.add(value);
    }
    return interfaces;
}

Value type_value(ITypeInfo& type) {
    TYPEATTR* attributes = nullptr;
    check_given(type.GetTypeAttr(&attributes), attributes, messages::kTypeLibrary, {});
    const auto release = [&](TYPEATTR* one) { type.ReleaseTypeAttr(one); };
    const std::unique_ptr<TYPEATTR, decltype(release)> held(attributes, release);
    Bstr name;
    Bstr description;
    static_cast<void>(type.GetDocumentation(MEMBERID_NIL, name.out(), description.out(), nullptr, nullptr));
    const Structure value;
    value.insert(u"Name", name.view());
    value.insert(u"Description", description.view());
    value.insert(u"Kind", kind_name(attributes->typekind));
    value.insert(u"Id", to_string(from_com(attributes->guid)));
    const Array members;
    if (attributes->typekind == TKIND_DISPATCH || attributes->typekind == TKIND_INTERFACE) {
        for (const KnownMember& member : read_members(type))
            members.add(member_value(member));
    }
    value.insert(u"Members", members);
    const bool constants = attributes->typekind == TKIND_ENUM || attributes->typekind == TKIND_MODULE;
    value.insert(u"Constants", constants ? constants_value(type, attributes->cVars) : Value(Structure()));
    value.insert(u"Interfaces", attributes->typekind == TKIND_COCLASS
                                    ? interfaces_value(type, attributes->cImplTypes)
                                    : Value(Array()));
    return value;
}

/// A type library; its types are read when somebody asks for them.
class TypeLibrary : public ScriptObject<TypeLibrary> {
  public:
    static constexpr ClassNames names{u"COMTypeLibrary", u"COMБиблиотекаТипов", "COM_LIBRARY"};

    explicit TypeLibrary(ComPtr<ITypeLib> library) : library_(std::move(library)) {
        Bstr name;
        Bstr description;
        static_cast<void>(library_->GetDocumentation(-1, name.out(), description.out(), nullptr, nullptr));
        name_ = name.view();
        description_ = description.view();
        TLIBATTR* attributes = nullptr;
        check_given(library_->GetLibAttr(&attributes), attributes, messages::kTypeLibrary, name_);
        id_ = to_string(from_com(attributes->guid));
        version_ = string_intto(static_cast<int>(attributes->wMajorVerNum)) + u"." +
                   string_intto(static_cast<int>(attributes->wMinorVerNum));
        library_->ReleaseTLibAttr(attributes);
    }
    static GenericValue construct(const Value& fileOrObject) { return type_library_value(fileOrObject); }

    const wstring& name() const noexcept { return name_; }
    const wstring& description() const noexcept { return description_; }
    const wstring& version() const noexcept { return version_; }
    const wstring& id() const noexcept { return id_; }
    Array typesIn() const {
        Array all;
        for (UINT i = 0; i < library_->GetTypeInfoCount(); ++i) {
            ComPtr<ITypeInfo> one;
            check_given(library_->GetTypeInfo(i, one.typed()), one, messages::kTypeLibrary, name_);
            all.add(type_value(*one.get()));
        }
        return all;
    }

    static auto members() {
        return core::members(property(u"Name", u"Имя", &TypeLibrary::name),
                             property(u"Description", u"Описание", &TypeLibrary::description),
                             property(u"Version", u"Версия", &TypeLibrary::version),
                             property(u"Id", u"Идентификатор", &TypeLibrary::id),
                             property(u"Types", u"Типы", &TypeLibrary::typesIn));
    }

  private:
    ComPtr<ITypeLib> library_;
    wstring name_;
    wstring description_;
    wstring version_;
    wstring id_;
};

const ScriptClassEntry<TypeLibrary> kTypeLibraryEntry;

} // namespace

Value type_library_value(const Value& fileOrObject) {
    require_system();
    ComPtr<ITypeLib> library;
    if (const wstring_view* const file = fileOrObject.asString()) {
        const wstring name(*file);
        check_given(LoadTypeLibEx(to_com(name.c_str()), REGKIND_NONE, library.typed()), library,
                    messages::kTypeLibrary, name);
    } else {
        bool nothing = false;
        const auto object = ComPtr<IDispatch>::query(foreign_object(fileOrObject, nothing).get());
        ComPtr<ITypeInfo> type;
        UINT index = 0;
        if (!object)
            parameter_type_mismatch(0);
        const wstring what = fileOrObject.presentation();
        check_given(object->GetTypeInfo(0, LOCALE_USER_DEFAULT, type.typed()), type, messages::kTypeLibrary,
                    what);
        check_given(type->GetContainingTypeLib(library.typed(), &index), library, messages::kTypeLibrary,
                    what);
    }
    return Value(make_object<TypeLibrary>(std::move(library)));
}

} // namespace core::com
