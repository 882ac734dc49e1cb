// SPDX-License-Identifier: Apache-2.0
#include "bridges/com/errors.h"
#include "bridges/com/names.h"
#include "bridges/com/our_events.h"
#include "bridges/com/type_library.h"

#include <core/context/context_def_ext.h>
#include <core/runtime/name_guid.h>
#include <core/strings/term.h>
#include <core/values/type_service.h>

#include <set>

namespace core::com {
namespace {

constexpr GUID kLibrary = "0b8f6c1d-4e27-4a93-b5d0-7f2e9c6a1834"_guid;

/// Writes a dispatch interface with the live members of an object, all of which are VARIANTs.
class InterfaceWriter {
  public:
    InterfaceWriter(ICreateTypeInfo& type, IContext_& object, wstring_view file)
        : type_(type), object_(object), file_(file), params_(&object) {}

    void write() {
        for (int prop = 0; prop < object_.getNProps(); ++prop) {
            const wchar* const name = object_.getPropName(prop, kEnglish);
            if (object_.isPropReadable(prop))
                add(name, INVOKE_PROPERTYGET, 0, VT_VARIANT, -1);
            if (object_.isPropWritable(prop))
                add(name, INVOKE_PROPERTYPUT, 1, VT_VOID, -1);
        }
        for (int method = 0; method < object_.getNMethods(); ++method) {
            add(object_.getMethodName(method, kEnglish), INVOKE_FUNC, object_.getNParams(method),
                object_.hasRetVal(method) ? VT_VARIANT : VT_VOID, method);
        }
    }

  private:
    void add(const wchar* name, INVOKEKIND kind, int count, VARTYPE returns, int method) {
        if (kind == INVOKE_FUNC && !names_.insert(wstring(name)).second)
            return; // a property has the name, and calls find the method all the same
        names_.insert(wstring(name));
        TYPEDESC variant{};
        variant.vt = VT_VARIANT;
        std::vector<ELEMDESC> params(static_cast<std::size_t>(count));
        SHORT optional = 0;
        for (int i = 0; i < count; ++i) {
            ELEMDESC& param = params[static_cast<std::size_t>(i)];
            const bool out = method >= 0 && object_.isParamOut(method, i);
            const bool may = method >= 0 && object_.getParamDefValue(method, i, nullptr);
            param.tdesc.vt = out ? VARTYPE{VT_PTR} : VARTYPE{VT_VARIANT};
            param.tdesc.lptdesc = out ? &variant : nullptr;
            param.paramdesc.wParamFlags =
                static_cast<USHORT>(PARAMFLAG_FIN | (out ? PARAMFLAG_FOUT : 0) | (may ? PARAMFLAG_FOPT : 0));
            optional = static_cast<SHORT>(may ? optional + 1 : 0);
        }
        FUNCDESC function{};
        function.memid = id_of_name(name);
        function.funckind = FUNC_DISPATCH;
        function.invkind = kind;
        function.callconv = CC_STDCALL;
        function.cParams = static_cast<SHORT>(count);
        function.cParamsOpt = optional;
        function.lprgelemdescParam = params.data();
        function.elemdescFunc.tdesc.vt = returns;
        check(type_.AddFuncDesc(index_, &function), messages::kTypeLibrary, file_);
        addNames(name, kind, count, method);
        ++index_;
    }

    void addNames(const wchar* name, INVOKEKIND kind, int count, int method) {
        std::vector<wstring> names{name};
        for (int i = 0; kind == INVOKE_FUNC && i < count; ++i) {
            const wchar* const param = params_ ? params_->getParamName(method, i, kEnglish) : nullptr;
            names.push_back(param != nullptr ? wstring(param)
                                             : u"P" + wstring(1, static_cast<wchar>(u'1' + i)));
        }
        std::vector<LPOLESTR> units;
        for (wstring& one : names)
            units.push_back(to_com(one.data()));
        // Both halves of a property share its name.
        static_cast<void>(type_.SetFuncAndParamNames(index_, units.data(), static_cast<UINT>(units.size())));
    }

    ICreateTypeInfo& type_;
    IContext_& object_;
    wstring file_;
    InterfacePtr<IContextDefParams> params_;
    std::set<wstring> names_;
    UINT index_ = 0;
};

ComPtr<ICreateTypeInfo> add_type(ICreateTypeLib2& library, const wstring& name, TYPEKIND kind,
                                 const ::GUID& id, WORD flags, wstring_view file) {
    wstring text = name;
    ComPtr<ICreateTypeInfo> type;
    check(library.CreateTypeInfo(to_com(text.data()), kind, type.typed()), messages::kTypeLibrary, file);
    check(type->SetGuid(id), messages::kTypeLibrary, file);
    check(type->SetTypeFlags(flags), messages::kTypeLibrary, file);
    return type;
}

/// The interface IDispatch, on which every interface of the library stands.
ComPtr<ITypeInfo> dispatch_type(wstring_view file) {
    ComPtr<ITypeLib> system;
    ComPtr<ITypeInfo> dispatch;
    check(LoadTypeLib(to_com(u"stdole2.tlb"), system.typed()), messages::kTypeLibrary, file);
    check(system->GetTypeInfoOfGuid(IID_IDispatch, dispatch.typed()), messages::kTypeLibrary, file);
    return dispatch;
}

/// Writes the interface of a type and its class.
void write_type(ICreateTypeLib2& library, ITypeInfo& dispatch, IType& type, wstring_view file) {
    GenericValue object;
    try {
        object = type.construct({});
    } catch (const Exception&) { // what New refuses cannot be made from outside either
        return;
    }
    const auto context = object.query<IContext_>();
    if (!context)
        return;
    const wstring name = type.name(kEnglish);
    const GUID id = name_guid("3f7a2b90-58d1-4c6e-9a0b-e4d85c17f263"_guid, name);
    const auto own = add_type(library, u"I" + name, TKIND_DISPATCH, to_com(id), TYPEFLAG_FDISPATCHABLE, file);
    HREFTYPE reference = 0;
    check(own->AddRefTypeInfo(&dispatch, &reference), messages::kTypeLibrary, file);
    check(own->AddImplType(0, reference), messages::kTypeLibrary, file);
    InterfaceWriter(*own.get(), *context, file).write();
    check(own->LayOut(), messages::kTypeLibrary, file);
    const auto made = add_type(library, name, TKIND_COCLASS, to_com(type.id()), TYPEFLAG_FCANCREATE, file);
    const auto read = ComPtr<ITypeInfo>::query(own.get());
    check(made->AddRefTypeInfo(read.get(), &reference), messages::kTypeLibrary, file);
    check(made->AddImplType(0, reference), messages::kTypeLibrary, file);
    check(made->SetImplTypeFlags(0, IMPLTYPEFLAG_FDEFAULT), messages::kTypeLibrary, file);
}

} // namespace

void write_type_library(const wstring& file) {
    ComPtr<ICreateTypeLib2> library;
    check(CreateTypeLib2(SYS_WIN64, to_com(file.c_str()), library.typed()), messages::kTypeLibrary, file);
    wstring name = u"Core";
    check(library->SetName(to_com(name.data())), messages::kTypeLibrary, file);
    check(library->SetGuid(to_com(kLibrary)), messages::kTypeLibrary, file);
    check(library->SetVersion(1, 0), messages::kTypeLibrary, file);
    check(library->SetLcid(LOCALE_NEUTRAL), messages::kTypeLibrary, file);
    const auto dispatch = dispatch_type(file);
    for (IType* const type : require_service<ITypeValueService>().types()) {
        if (type->arguments().least == 0 && type->name(kEnglish) != nullptr)
            write_type(*library.get(), *dispatch.get(), *type, file);
    }
    check(library->SaveAllChanges(), messages::kTypeLibrary, file);
}

} // namespace core::com
