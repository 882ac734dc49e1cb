// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def.h>

namespace core {

/// A definition borrowed from another class by class id: an object of that class is made in the current
/// process, and everything is forwarded to its definition. Without one (the null id, an unknown class) there
/// are no properties and no methods.
class CORE_API ContextDefExternBase : public IContextDef {
  public:
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

    /// The definition that is borrowed, or null.
    [[nodiscard]] IContextDef* borrowed() const noexcept { return def_.get(); }

  protected:
    ~ContextDefExternBase() = default;

  private:
    InterfacePtr<IContextDef> def_;
};

template <const GUID* clsid>
class ContextDefExtern : public ContextDefExternBase {
  public:
    ContextDefExtern() : ContextDefExternBase(clsid) {}

  protected:
    ~ContextDefExtern() = default;
};

} // namespace core
