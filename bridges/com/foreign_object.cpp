// SPDX-License-Identifier: Apache-2.0
#include "bridges/com/foreign_object.h"

#include "bridges/com/errors.h"
#include "bridges/com/our_object.h"
#include "bridges/com/system.h"
#include "bridges/com/values.h"

#include <core/context/errors.h>
#include <core/strings/integer_text.h>
#include <core/strings/term.h>

namespace core::com {
namespace {

constexpr WORD kRead = DISPATCH_METHOD | DISPATCH_PROPERTYGET; // an index makes a call of a property
const ScriptClassEntry<ForeignObject> kForeignObjectEntry;

/// The one name of what has one, in both languages; null for null.
template <class Named>
const wchar* name_of(const Named* named, int alias) noexcept {
    return named != nullptr && (alias == kEnglish || alias == kRussian) ? named->name.c_str() : nullptr;
}

const KnownParam* param_of(const KnownMember* member, int param) noexcept {
    const bool there =
        member != nullptr && param >= 0 && static_cast<std::size_t>(param) < member->params.size();
    return there ? &member->params[static_cast<std::size_t>(param)] : nullptr;
}

/// The methods by which scripts reach elements, where the object itself has none of that name.
const KnownMember* element_method(const ForeignMembers::Member* member) {
    static const KnownMember get{.name = u"Get", .id = DISPID_VALUE, .params = {{}}};
    static const KnownMember set{.name = u"Set", .id = DISPID_VALUE, .params = {{}, {}}};
    if (member == nullptr || member->id != DISPID_VALUE)
        return nullptr;
    return member->name == u"Get" ? &get : member->name == u"Set" ? &set : nullptr;
}

/// A walk over a collection of others.
class ForeignWalk : public IValueEnum {
  public:
    using Interfaces = InterfaceList<IValueEnum>;

    explicit ForeignWalk(ComPtr<IEnumVARIANT> walk) noexcept : walk_(std::move(walk)) {}
    bool next(GenericValue& out) override {
        Variant element;
        ULONG count = 0;
        const ::HRESULT result = walk_->Next(1, &element, &count);
        if (FAILED(result))
            throw_failed_call(u"_NewEnum", result, nullptr);
        if (count > 1)
            throw_failed_call(u"_NewEnum", E_UNEXPECTED, nullptr);
        if (result != S_OK || count != 1) // some say S_OK at the end
            return false;
        out = from_variant(element);
        return true;
    }

  private:
    ComPtr<IEnumVARIANT> walk_;
};

} // namespace

// members

int ForeignContext::getNProps() const {
    return members_.properties().count();
}
const wchar* ForeignContext::getPropName(int prop, int alias) const {
    return name_of(members_.properties().at(prop), alias);
}
bool ForeignContext::isPropReadable(int prop) const {
    const auto* const member = members_.properties().at(prop);
    const KnownMember* const known = members_.known(member);
    return member != nullptr &&
           (known == nullptr || (known->kinds & (INVOKE_PROPERTYGET | INVOKE_FUNC)) != 0);
}
bool ForeignContext::isPropWritable(int prop) const {
    const auto* const member = members_.properties().at(prop);
    const KnownMember* const known = members_.known(member);
    constexpr int kPuts = INVOKE_PROPERTYPUT | INVOKE_PROPERTYPUTREF;
    return member != nullptr && (known == nullptr || (known->kinds & kPuts) != 0);
}
int ForeignContext::findProp(const wchar* name) const {
    return members_.findProperty(name);
}
int ForeignContext::getNMethods() const {
    return members_.methods().count();
}
const wchar* ForeignContext::getMethodName(int method, int alias) const {
    return name_of(members_.methods().at(method), alias);
}
int ForeignContext::getNParams(int method) const {
    const auto* const member = members_.methods().at(method);
    if (const KnownMember* const element = element_method(member))
        return static_cast<int>(element->params.size());
    const KnownMember* const known = members_.known(member);
    return known != nullptr ? static_cast<int>(known->params.size()) : 0;
}
bool ForeignContext::isParamOut(int method, int param) const {
    const KnownParam* const known = param_of(members_.known(members_.methods().at(method)), param);
    return known != nullptr && known->out;
}
bool ForeignContext::getParamDefValue(int method, int, GenericValue* out) const {
    const bool known = members_.methods().at(method) != nullptr;
    if (known && out != nullptr)
        *out = missing_value(); // the object says whether it may be
    return known;
}
bool ForeignContext::hasRetVal(int method) const {
    const KnownMember* const known = members_.known(members_.methods().at(method));
    return known == nullptr || known->type != VT_VOID;
}
int ForeignContext::findMethod(const wchar* name) const {
    const int own = members_.findMethod(name);
    return own >= 0 || members_.dispatch() == nullptr ? own : members_.findElementMethod(name);
}

void ForeignContext::getPropVal(int prop, GenericValue& out) {
    out = members_.invoke(members_.property(prop), DISPATCH_PROPERTYGET, {});
}
void ForeignContext::setPropVal(int prop, const GenericValue& value) {
    GenericValue copy = value;
    members_.invoke(members_.property(prop), DISPATCH_PROPERTYPUT, {&copy, 1});
}
void ForeignContext::call(int method, GenericValue* result, std::vector<GenericValue>* params) {
    std::vector<GenericValue> none;
    std::vector<GenericValue>& arguments = params != nullptr ? *params : none;
    const ForeignMembers::Member& member = members_.method(method);
    const bool put = element_method(&member) != nullptr && arguments.size() == 2;
    GenericValue returned = members_.invoke(member, put ? WORD{DISPATCH_PROPERTYPUT} : kRead, arguments);
    if (result != nullptr)
        *result = std::move(returned);
}

// the object

GenericValue ForeignObject::construct(wstring_view nameOrId) {
    return create_foreign(nameOrId);
}

bool ForeignObject::isEqual(const IValue* other) const noexcept {
    const ForeignObject* const object = of(other);
    return object != nullptr && members_.object() == object->members_.object();
}

std::int32_t ForeignObject::hashCode() const noexcept {
    return static_cast<std::int32_t>(reinterpret_cast<std::uintptr_t>(members_.object()) >> 4U);
}

HRESULT ForeignObject::queryOther(const GUID& iid, void** out) noexcept {
    // On a thread that it does not belong to, the object is not asked: what is called then says why it cannot
    // be.
    const auto has = [this](auto ask) { return !members_.isHere() || ask(); };
    if (iid == IValueCollection::IID && has([this] {
            ComPtr<IEnumVARIANT> all;
            return walk(all, nullptr) == DISP_E_EXCEPTION || all; // enumerate() tells of a walk that fails
        }))
        *out = static_cast<IValueCollection*>(this);
    else if (iid == IEventSource::IID && has([this] { return ForeignEvents::has(members_.object()); }))
        *out = static_cast<IEventSource*>(this);
    else
        return kNoInterface;
    static_cast<IValue*>(this)->AddRef();
    return kOk;
}

::HRESULT ForeignObject::walk(ComPtr<IEnumVARIANT>& walk, EXCEPINFO* info) const {
    IDispatch* const dispatch = members_.dispatch();
    if (dispatch == nullptr)
        return DISP_E_MEMBERNOTFOUND;
    Variant result;
    DISPPARAMS none{};
    const ::HRESULT answer =
        dispatch->Invoke(DISPID_NEWENUM, IID_NULL, LOCALE_USER_DEFAULT, kRead, &none, &result, info, nullptr);
    if (SUCCEEDED(answer) && (V_VT(&result) == VT_UNKNOWN || V_VT(&result) == VT_DISPATCH))
        walk = ComPtr<IEnumVARIANT>::query(V_UNKNOWN(&result));
    return SUCCEEDED(answer) && !walk ? E_NOINTERFACE : answer;
}

InterfacePtr<IValueEnum> ForeignObject::enumerate() {
    members_.requireHere();
    SetErrorInfo(0, nullptr); // what an earlier call left does not explain this one
    ComPtr<IEnumVARIANT> all;
    EXCEPINFO info{};
    if (const ::HRESULT answer = walk(all, &info); FAILED(answer))
        throw_failed_call(u"_NewEnum", answer, &info);
    return make_object<ForeignWalk>(std::move(all));
}

// events

ForeignEvents& ForeignObject::foreignEvents() const {
    if (!events_) {
        members_.requireHere();
        events_ = ForeignEvents::of(members_.object(), members_.dispatch());
    }
    return *events_;
}
void ForeignObject::requireEvent(int event) const {
    if (foreignEvents().at(event) == nullptr)
        throw_error<ContextException>(core::messages::kUnknownEvent, {string_intto(event)});
}
int ForeignObject::getNEvents() const {
    return foreignEvents().count();
}
const wchar* ForeignObject::getEventName(int event, int alias) const {
    return name_of(foreignEvents().at(event), alias);
}
int ForeignObject::findEvent(const wchar* name) const {
    return foreignEvents().find(name);
}
int ForeignObject::getNEventParams(int event) const {
    const KnownMember* const known = foreignEvents().at(event);
    return known != nullptr ? static_cast<int>(known->params.size()) : 0;
}
const wchar* ForeignObject::getEventParamName(int event, int param, int alias) const {
    return name_of(param_of(foreignEvents().at(event), param), alias);
}
bool ForeignObject::getEventParamInfo(int, int, ContextValueInfo& info) const {
    info = {};
    return false;
}
Connection ForeignObject::connectSink(int event, IEventSink* sink) {
    requireEvent(event);
    return foreignEvents().connect(event, sink);
}
bool ForeignObject::disconnectSink(ConnectionNumber connection) noexcept {
    return events_ && events_->disconnect(connection);
}
void ForeignObject::raiseEvent(int event, std::span<const GenericValue> arguments) {
    requireEvent(event);
    foreignEvents().raise(event, arguments);
}

const wchar* ForeignObject::getParamName(int method, int param, int alias) const {
    return name_of(param_of(members_.known(members_.methods().at(method)), param), alias);
}

bool ForeignObject::getString(wstring& out) const {
    out = type()->presentation();
    return true;
}

// making and finding

Value create_foreign(wstring_view nameOrId) {
    require_system();
    const wstring text(nameOrId);
    GUID id;
    ::GUID clsid{};
    const bool braces = text.size() > 2 && text.front() == u'{' && text.back() == u'}';
    if (from_string(braces ? wstring_view(text).substr(1, text.size() - 2) : wstring_view(text), id))
        clsid = to_com(id);
    else
        check(CLSIDFromProgID(to_com(text.c_str()), &clsid), messages::kNoClass, text);
    ComPtr<::IUnknown> object;
    check(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER, IID_IUnknown,
                           object.out()),
          messages::kNoClass, text);
    return value_of_unknown(object.get());
}

Value value_of_unknown(::IUnknown* unknown) {
    if (unknown != nullptr) {
        ComPtr<IOurObject> ours;
        if (SUCCEEDED(unknown->QueryInterface(kOurObject, ours.out())))
            return ours->ourValue();
    }
    return Value(make_object<ForeignObject>(unknown));
}

ComPtr<::IUnknown> foreign_object(const Value& value, bool& nothing) {
    const ForeignObject* const object = ForeignObject::of(value);
    nothing = object != nullptr && object->object() == nullptr;
    return ComPtr<::IUnknown>(object != nullptr ? object->object() : nullptr);
}

} // namespace core::com
