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

const wchar* name_of(const ForeignMembers::Member* member, int alias) noexcept {
    return member != nullptr && (alias == kEnglish || alias == kRussian) ? member->name.c_str() : nullptr;
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
    const KnownMember* const known = members_.known(members_.methods().at(method));
    return known != nullptr && param >= 0 && static_cast<std::size_t>(param) < known->params.size() &&
           known->params[static_cast<std::size_t>(param)].out;
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
    if (object == nullptr)
        return false;
    return ComPtr<::IUnknown>::query(members_.object()).get() ==
           ComPtr<::IUnknown>::query(object->members_.object()).get();
}

std::int32_t ForeignObject::hashCode() const noexcept {
    const auto identity =
        reinterpret_cast<std::uintptr_t>(ComPtr<::IUnknown>::query(members_.object()).get());
    return static_cast<std::int32_t>(identity >> 4U);
}

HRESULT ForeignObject::queryOther(const GUID& iid, void** out) noexcept {
    try {
        if (iid == IValueCollection::IID && walk())
            *out = static_cast<IValueCollection*>(this);
        else if (iid == IEventSource::IID && foreignEvents() != nullptr)
            *out = static_cast<IEventSource*>(this);
        else
            return kNoInterface;
    } catch (...) { // an object that cannot say what it has
        return kNoInterface;
    }
    static_cast<IValue*>(this)->AddRef();
    return kOk;
}

ComPtr<IEnumVARIANT> ForeignObject::walk() const {
    IDispatch* const dispatch = members_.dispatch();
    Variant result;
    DISPPARAMS none{};
    if (dispatch == nullptr ||
        FAILED(dispatch->Invoke(DISPID_NEWENUM, IID_NULL, LOCALE_USER_DEFAULT, kRead, &none, &result, nullptr,
                                nullptr)) ||
        (V_VT(&result) != VT_UNKNOWN && V_VT(&result) != VT_DISPATCH))
        return {};
    return ComPtr<IEnumVARIANT>::query(V_UNKNOWN(&result));
}

InterfacePtr<IValueEnum> ForeignObject::enumerate() {
    auto walk = this->walk();
    if (!walk)
        throw_error<COMException>(messages::kNoMember, {u"_NewEnum"});
    return make_object<ForeignWalk>(std::move(walk));
}

// events

ForeignEvents* ForeignObject::foreignEvents() const {
    if (!eventsKnown_) {
        events_ = ForeignEvents::of(members_.object(), members_.dispatch());
        eventsKnown_ = true;
    }
    return events_.get();
}
int ForeignObject::getNEvents() const {
    const ForeignEvents* const all = foreignEvents();
    return all != nullptr ? all->count() : 0;
}
const wchar* ForeignObject::getEventName(int event, int alias) const {
    const KnownMember* const known = foreignEvents() != nullptr ? foreignEvents()->at(event) : nullptr;
    return known != nullptr && (alias == kEnglish || alias == kRussian) ? known->name.c_str() : nullptr;
}
int ForeignObject::findEvent(const wchar* name) const {
    return foreignEvents() != nullptr ? foreignEvents()->find(name) : -1;
}
int ForeignObject::getNEventParams(int event) const {
    const KnownMember* const known = foreignEvents() != nullptr ? foreignEvents()->at(event) : nullptr;
    return known != nullptr ? static_cast<int>(known->params.size()) : 0;
}
const wchar* ForeignObject::getEventParamName(int event, int param, int alias) const {
    const KnownMember* const known = foreignEvents() != nullptr ? foreignEvents()->at(event) : nullptr;
    const bool there =
        known != nullptr && param >= 0 && static_cast<std::size_t>(param) < known->params.size();
    return there && (alias == kEnglish || alias == kRussian)
               ? known->params[static_cast<std::size_t>(param)].name.c_str()
               : nullptr;
}
bool ForeignObject::getEventParamInfo(int, int, ContextValueInfo& info) const {
    info = {};
    return false;
}
Connection ForeignObject::connectSink(int event, IEventSink* sink) {
    if (foreignEvents() == nullptr || foreignEvents()->at(event) == nullptr)
        throw_error<ContextException>(core::messages::kUnknownEvent, {string_intto(event)});
    return foreignEvents()->connect(event, sink);
}
bool ForeignObject::disconnectSink(ConnectionNumber connection) noexcept {
    return events_ && events_->disconnect(connection);
}
void ForeignObject::raiseEvent(int event, std::span<const GenericValue> arguments) {
    if (foreignEvents() == nullptr || foreignEvents()->at(event) == nullptr)
        throw_error<ContextException>(core::messages::kUnknownEvent, {string_intto(event)});
    foreignEvents()->raise(event, arguments);
}

const wchar* ForeignObject::getParamName(int method, int param, int alias) const {
    const KnownMember* const known = members_.known(members_.methods().at(method));
    const bool there =
        known != nullptr && param >= 0 && static_cast<std::size_t>(param) < known->params.size();
    return there && (alias == kEnglish || alias == kRussian)
               ? known->params[static_cast<std::size_t>(param)].name.c_str()
               : nullptr;
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
        check(CLSIDFromProgID(text.c_str(), &clsid), messages::kNoClass, text);
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
