// SPDX-License-Identifier: Apache-2.0
#include "bridges/com/type_info.h"

#include "bridges/com/errors.h"

#include <algorithm>
#include <map>
#include <mutex>

namespace core::com {
namespace {

VARTYPE type_of(const TYPEDESC& type) noexcept {
    if (type.vt == VT_PTR && type.lptdesc != nullptr)
        return static_cast<VARTYPE>(type.lptdesc->vt == VT_USERDEFINED ? VT_USERDEFINED
                                                                       : type.lptdesc->vt | VT_BYREF);
    if (type.vt == VT_SAFEARRAY && type.lptdesc != nullptr)
        return static_cast<VARTYPE>(type.lptdesc->vt | VT_ARRAY);
    return type.vt;
}

wstring name_of(ITypeInfo& type) {
    Bstr name;
    static_cast<void>(type.GetDocumentation(MEMBERID_NIL, name.out(), nullptr, nullptr, nullptr));
    return wstring(name.view());
}

/// The attributes of a type, which its library lends.
class Attributes {
  public:
    explicit Attributes(ITypeInfo& type) : type_(type) {
        check_given(type.GetTypeAttr(&attributes_), attributes_, messages::kTypeLibrary, name_of(type));
    }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;
    ~Attributes() { type_.ReleaseTypeAttr(attributes_); }
    const TYPEATTR* operator->() const noexcept { return attributes_; }

  private:
    ITypeInfo& type_;
    TYPEATTR* attributes_ = nullptr;
};

void read_texts(ITypeInfo& type, KnownMember& member) {
    Bstr name;
    Bstr description;
    static_cast<void>(type.GetDocumentation(member.id, name.out(), description.out(), nullptr, nullptr));
    member.name = name.view();
    member.description = description.view();
}

void read_params(ITypeInfo& type, const FUNCDESC& function, KnownMember& member) {
    const auto count = static_cast<std::size_t>(std::max<SHORT>(function.cParams, 0));
    if (count > 0)
        check_given(S_OK, function.lprgelemdescParam, messages::kTypeLibrary, name_of(type));
    std::vector<BSTR> names(count + 1, nullptr);
    UINT named = 0;
    static_cast<void>(type.GetNames(function.memid, names.data(), static_cast<UINT>(names.size()), &named));
    const bool put = (function.invkind & (INVOKE_PROPERTYPUT | INVOKE_PROPERTYPUTREF)) != 0;
    for (std::size_t i = 0; i < count; ++i) {
        const ELEMDESC& element = function.lprgelemdescParam[i];
        const USHORT flags = element.paramdesc.wParamFlags;
        if ((flags & PARAMFLAG_FRETVAL) != 0) {
            member.type = static_cast<VARTYPE>(type_of(element.tdesc) & ~VT_BYREF);
        } else if (!put || i + 1 < count) { // the last one of a put is the value
            const bool optional = (flags & (PARAMFLAG_FOPT | PARAMFLAG_FHASDEFAULT)) != 0;
            member.params.push_back({wstring(Bstr::view(names[i + 1])), type_of(element.tdesc), optional,
                                     (flags & PARAMFLAG_FOUT) != 0});
        } else {
            member.type = type_of(element.tdesc);
        }
    }
    for (BSTR name : names)
        SysFreeString(name);
}

void read_function(ITypeInfo& type, const FUNCDESC& function, KnownMembers& members) {
    constexpr WORD kForCompilers = FUNCFLAG_FRESTRICTED;
    if ((function.wFuncFlags & kForCompilers) != 0)
        return;
    auto known = std::ranges::find(members, function.memid, &KnownMember::id);
    const bool isNew = known == members.end();
    KnownMember read;
    read.id = function.memid;
    read.kinds = function.invkind;
    read.type = type_of(function.elemdescFunc.tdesc);
    read_params(type, function, read);
    if (!isNew && function.invkind != INVOKE_PROPERTYGET) { // what is known of reading says more
        known->kinds |= function.invkind;
        return;
    }
    read_texts(type, read);
    if (isNew) {
        members.push_back(std::move(read));
    } else {
        read.kinds |= known->kinds;
        *known = std::move(read);
    }
}

void read_variable(ITypeInfo& type, const VARDESC& variable, KnownMembers& members) {
    KnownMember read;
    read.id = variable.memid;
    read.kinds = INVOKE_PROPERTYGET;
    if ((variable.wVarFlags & VARFLAG_FREADONLY) == 0)
        read.kinds |= INVOKE_PROPERTYPUT;
    read.type = type_of(variable.elemdescVar.tdesc);
    read_texts(type, read);
    members.push_back(std::move(read));
}

} // namespace

KnownMembers read_members(ITypeInfo& type) {
    const Attributes attributes(type);
    KnownMembers members;
    for (UINT i = 0; i < attributes->cFuncs; ++i) {
        FUNCDESC* function = nullptr;
        check_given(type.GetFuncDesc(i, &function), function, messages::kTypeLibrary, name_of(type));
        const auto release = [&](FUNCDESC* one) { type.ReleaseFuncDesc(one); };
        const std::unique_ptr<FUNCDESC, decltype(release)> held(function, release);
        read_function(type, *function, members);
    }
    for (UINT i = 0; i < attributes->cVars; ++i) {
        VARDESC* variable = nullptr;
        check_given(type.GetVarDesc(i, &variable), variable, messages::kTypeLibrary, name_of(type));
        const auto release = [&](VARDESC* one) { type.ReleaseVarDesc(one); };
        const std::unique_ptr<VARDESC, decltype(release)> held(variable, release);
        if (variable->varkind == VAR_DISPATCH || variable->varkind == VAR_PERINSTANCE)
            read_variable(type, *variable, members);
    }
    return members;
}

std::shared_ptr<const KnownMembers> members_of(IDispatch* object) {
    static std::mutex mutex;
    static std::map<GUID, std::shared_ptr<const KnownMembers>> known; // by the id of the interface
    static const auto none = std::make_shared<const KnownMembers>();
    UINT count = 0;
    ComPtr<ITypeInfo> type;
    if (object == nullptr || FAILED(object->GetTypeInfoCount(&count)) || count == 0 ||
        FAILED(object->GetTypeInfo(0, LOCALE_USER_DEFAULT, type.typed())) || !type)
        return none;
    const GUID id = from_com(Attributes(*type.get())->guid);
    if (id != kNullGuid) {
        const std::scoped_lock lock(mutex);
        if (const auto found = known.find(id); found != known.end())
            return found->second;
    }
    auto read = std::make_shared<const KnownMembers>(read_members(*type.get()));
    if (id != kNullGuid) {
        const std::scoped_lock lock(mutex);
        known.emplace(id, read);
    }
    return read;
}

const KnownMember* find_member(const KnownMembers& members, DISPID id) noexcept {
    const auto found = std::ranges::find(members, id, &KnownMember::id);
    return found != members.end() ? &*found : nullptr;
}

} // namespace core::com
