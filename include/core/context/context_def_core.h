// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def.h>

namespace core {

/// The base of definitions: no properties, no methods, no names; what a property or parameter usually is. `I`
/// is IContextDef or an interface derived from it.
template <class I = IContextDef>
class ContextDefCore : public I {
  public:
    int getNProps() const override { return 0; }
    const wchar* getPropName(int, int) const override { return nullptr; }
    bool isPropReadable(int) const override { return true; }
    bool isPropWritable(int) const override { return false; }
    int findProp(const wchar*) const override { return -1; }
    int getNMethods() const override { return 0; }
    const wchar* getMethodName(int, int) const override { return nullptr; }
    int getNParams(int) const override { return 0; }
    bool isParamIn(int, int) const override { return true; }
    bool isParamOut(int, int) const override { return false; }
    bool getParamDefValue(int, int, GenericValue*) const override { return false; }
    bool hasRetVal(int) const override { return false; }
    int findMethod(const wchar*) const override { return -1; }

  protected:
    ~ContextDefCore() = default;
};

} // namespace core
