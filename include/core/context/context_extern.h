// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def.h>

namespace core {

/// A definition borrowed from another class by class id: an object of that class is made in the current
/// process, and every operation is forwarded to its definition. For the null id and an unknown class there
/// are no properties and no methods, as in ContextDefCore.
class CORE_API ContextDefExternBase : public IContextDef {
  public:
    /// Makes an object of the class `*clsid`; `clsid` must not be null.
    explicit ContextDefExternBase(const GUID* clsid);

    int getNProps() const override;
    const wchar* getPropName(int prop, int alias) const override;
    bool isPropReadable(int prop) const override;
    bool isPropWritable(int prop) const override;
    int findProp(const wchar* name) const override;
    int getNMethods() const override;
    const wchar* getMethodName(int method, int alias) const override;
    int getNParams(int method) const override;
    bool isParamIn(int method, int param) const override;
    bool isParamOut(int method, int param) const override;
    bool getParamDefValue(int method, int param, GenericValue* out) const override;
    bool hasRetVal(int method) const override;
    int findMethod(const wchar* name) const override;

  protected:
    ~ContextDefExternBase() = default;

  private:
    InterfacePtr<IContextDef> def_;
};

/// ContextDefExternBase with a class id that is known when the program is built.
template <const GUID* clsid>
class ContextDefExtern : public ContextDefExternBase {
  public:
    /// Makes an object of the class `*clsid`.
    ContextDefExtern() : ContextDefExternBase(clsid) {}

  protected:
    ~ContextDefExtern() = default;
};

} // namespace core
