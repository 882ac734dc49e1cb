// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridges/com/foreign_events.h"
#include "bridges/com/foreign_members.h"

#include <core/context/script_object.h>

/// Objects of others as values of ours.
namespace core::com {

/// The context of a COMObject: members are looked up by the object itself, by name, and by its type library,
/// for those who list them.
class ForeignContext : public ContextDefCore<IContext_> {
  public:
    /// Returns the object itself as its definition.
    InterfacePtr<IContextDef> getIContextDef() override {
        return InterfacePtr<IContextDef>(static_cast<IContextDef*>(this));
    }
    int getNProps() const override;
    const wchar* getPropName(int prop, int alias) const override;
    bool isPropReadable(int prop) const override;
    bool isPropWritable(int prop) const override;
    int findProp(const wchar* name) const override;
    int getNMethods() const override;
    const wchar* getMethodName(int method, int alias) const override;
    int getNParams(int method) const override;
    bool isParamOut(int method, int param) const override;
    bool getParamDefValue(int method, int param, GenericValue* out) const override;
    bool hasRetVal(int method) const override;
    int findMethod(const wchar* name) const override;
    void getPropVal(int prop, GenericValue& out) override;
    void setPropVal(int prop, const GenericValue& value) override;
    void call(int method, GenericValue* result, std::vector<GenericValue>* params) override;

  protected:
    ~ForeignContext() = default;

    mutable ForeignMembers members_{nullptr}; // asking for a name teaches them its number
};

/// An object of others as a value, which scripts know as "COMObject": equal to those of the same object.
class ForeignObject : public ScriptObjectOver<ForeignObject, ForeignContext, IValueCollection> {
  public:
    using Interfaces = ScriptInterfaces<>; // walks and events depend on the object, see queryOther()
    static constexpr ClassNames names{u"COMObject", u"COMОбъект", "COM_OBJECT"};

    /// Takes a reference to an object; null is the one that is nothing.
    explicit ForeignObject(::IUnknown* object) noexcept { members_ = ForeignMembers(object); }
    /// What New does: an object of the class with a name or an id.
    static GenericValue construct(wstring_view nameOrId);

    /// Returns the object, borrowed; null for nothing.
    [[nodiscard]] ::IUnknown* object() const noexcept { return members_.object(); }
    /// Answers for walks, where the object has one, and for events, where it has some.
    HRESULT queryOther(const GUID& iid, void** out) noexcept;

    bool isEqual(const IValue* other) const noexcept override;
    std::int32_t hashCode() const noexcept override;
    bool getString(wstring& out) const override;

    // events
    int getNEvents() const override;
    const wchar* getEventName(int event, int alias) const override;
    int findEvent(const wchar* name) const override;
    int getNEventParams(int event) const override;
    const wchar* getEventParamName(int event, int param, int alias) const override;
    bool getEventParamInfo(int event, int param, ContextValueInfo& info) const override;
    Connection connectSink(int event, IEventSink* sink) override;
    bool disconnectSink(ConnectionNumber connection) noexcept override;
    void raiseEvent(int event, std::span<const GenericValue> arguments) override;

    const wchar* getParamName(int method, int param, int alias) const override;

    InterfacePtr<IValueEnum> enumerate() override;

  private:
    ForeignEvents& foreignEvents() const;
    void requireEvent(int event) const;
    ::HRESULT walk(ComPtr<IEnumVARIANT>& walk, EXCEPINFO* info) const;

    mutable std::unique_ptr<ForeignEvents> events_; // null until somebody asks
};

/// Returns a new object of the class with a name or an id. Throws COMException.
[[nodiscard]] Value create_foreign(wstring_view nameOrId);

} // namespace core::com
