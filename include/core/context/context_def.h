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
    static constexpr GUID IID = "fd7b6cc1-dc8e-11d2-b8d0-008048da0335"_guid; ///< the interface's id

    // properties

    /// Returns how many properties there are.
    [[nodiscard]] virtual int getNProps() const = 0;
    /// Returns the name of a property in the language of `alias`, borrowed.
    [[nodiscard]] virtual const wchar* getPropName(int prop, int alias) const = 0;
    /// Returns whether the property can be read; false for a number out of range, as a rule.
    [[nodiscard]] virtual bool isPropReadable(int prop) const = 0;
    /// Returns whether the property can be written; false for a number out of range, as a rule.
    [[nodiscard]] virtual bool isPropWritable(int prop) const = 0;
    /// Returns the number of the property with that name in either language, in any case, or -1.
    [[nodiscard]] virtual int findProp(const wchar* name) const = 0;

    // methods

    /// Returns how many methods there are.
    [[nodiscard]] virtual int getNMethods() const = 0;
    /// Returns the name of a method in the language of `alias`, borrowed.
    [[nodiscard]] virtual const wchar* getMethodName(int method, int alias) const = 0;
    /// Returns how many parameters the method has; 0 for a number out of range.
    [[nodiscard]] virtual int getNParams(int method) const = 0;
    /// Returns whether the parameter passes a value in; true for a number out of range.
    [[nodiscard]] virtual bool isParamIn(int method, int param) const = 0;
    /// Returns whether the parameter passes a value back; false for a number out of range.
    [[nodiscard]] virtual bool isParamOut(int method, int param) const = 0;
    /// Returns whether the parameter may be left out, and stores its default in `*out` when that is not null.
    virtual bool getParamDefValue(int method, int param, GenericValue* out) const = 0;
    /// Returns whether the method is a function, which returns a value, and no procedure.
    [[nodiscard]] virtual bool hasRetVal(int method) const = 0;
    /// Returns the number of the method with that name in either language, in any case, or -1.
    [[nodiscard]] virtual int findMethod(const wchar* name) const = 0;

  protected:
    ~IContextDef() = default;
};

/// An object that can be worked with by number: its definition, the values of its properties, calls of its
/// methods.
///
/// All operations throw ContextException for a number out of range, for a property that cannot be read or
/// written, for a wrong argument, and for what the method itself refuses. The object is then unchanged.
class IContext_ : public IContextDef {
  public:
    static constexpr GUID IID = "92468e83-cd14-42d9-82c3-715144838ec8"_guid; ///< the interface's id

    /// Returns the object's definition, with a reference; null when it has none.
    [[nodiscard]] virtual InterfacePtr<IContextDef> getIContextDef() = 0;
    /// Stores the value of a property in `out`.
    virtual void getPropVal(int prop, GenericValue& out) = 0;
    /// Gives a property a value.
    virtual void setPropVal(int prop, const GenericValue& value) = 0;
    /// Calls a method with as many arguments as it has parameters; missing ones at the end take their
    /// defaults. Values passed back stand in `params` afterwards. `result`, which may be null, receives what
    /// a function returns and Undefined from a procedure; `params` may be null for none.
    virtual void call(int method, GenericValue* result, std::vector<GenericValue>* params) = 0;

  protected:
    ~IContext_() = default;
};

} // namespace core
