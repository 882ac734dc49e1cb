// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/interface_ptr.h>
#include <core/values/generic_value.h>

#include <vector>

namespace core {

/// The properties and methods of an object, numbered from 0, each with an English and a Russian name. A
/// script finds a number by either name, in any case, once, and works by number afterwards.
///
/// Names are borrowed: valid until the definition's set of names changes. Alias 0 is English, 1 is Russian
/// (English where the Russian is missing); any other alias gives null. For a number out of range some
/// definitions answer null, others the empty string. Threads: as the object.
class IContextDef : public IUnknown {
  public:
    static constexpr GUID IID = "fd7b6cc1-dc8e-11d2-b8d0-008048da0335"_guid;

    // properties
    [[nodiscard]] virtual int getNProps() const = 0;
    [[nodiscard]] virtual const wchar* getPropName(int prop, int alias) const = 0;
    [[nodiscard]] virtual bool isPropReadable(int prop) const = 0;
    [[nodiscard]] virtual bool isPropWritable(int prop) const = 0;
    /// The number of the property with that name in either language, or -1.
    [[nodiscard]] virtual int findProp(const wchar* name) const = 0;

    // methods
    [[nodiscard]] virtual int getNMethods() const = 0;
    [[nodiscard]] virtual const wchar* getMethodName(int method, int alias) const = 0;
    [[nodiscard]] virtual int getNParams(int method) const = 0;
    /// The parameter passes a value in.
    [[nodiscard]] virtual bool isParamIn(int method, int param) const = 0;
    /// The parameter passes a value back.
    [[nodiscard]] virtual bool isParamOut(int method, int param) const = 0;
    /// Whether the parameter may be left out; its default is stored in `*out` when that is not null.
    virtual bool getParamDefValue(int method, int param, GenericValue* out) const = 0;
    /// A function returns a value; a procedure does not.
    [[nodiscard]] virtual bool hasRetVal(int method) const = 0;
    /// The number of the method with that name in either language, or -1.
    [[nodiscard]] virtual int findMethod(const wchar* name) const = 0;

  protected:
    ~IContextDef() = default;
};

/// An object that can be worked with by number: its definition, the values of its
/// properties, calls of its methods.
///
/// ContextException for a number out of range, a property that cannot be read or written, a wrong argument,
/// and for what the method itself refuses; the object is then unchanged.
class IContext_ : public IContextDef {
  public:
    static constexpr GUID IID = "92468e83-cd14-42d9-82c3-715144838ec8"_guid;

    /// The object's definition; null when it has none.
    [[nodiscard]] virtual InterfacePtr<IContextDef> getIContextDef() = 0;
    virtual void getPropVal(int prop, GenericValue& out) = 0;
    virtual void setPropVal(int prop, const GenericValue& value) = 0;
    /// Calls a method with as many arguments as it has parameters; missing ones at the end take their
    /// defaults. Values passed back stand in `params` afterwards. `result`, which may be null, receives what
    /// a function returns and Undefined from a procedure; `params` may be null for none.
    virtual void call(int method, GenericValue* result, std::vector<GenericValue>* params) = 0;

  protected:
    ~IContext_() = default;
};

} // namespace core
