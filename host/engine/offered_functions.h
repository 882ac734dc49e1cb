// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def_ext.h>
#include <core/context/name_cache.h>
#include <core/context/native_function.h>
#include <core/runtime/internal_class.h>

#include <memory>
#include <vector>

namespace core::script {

/// The functions that a program offers to the scripts of one engine, as a context. Functions keep their
/// numbers; one that replaces another has its number.
class OfferedFunctions : public ContextDefCore<IContext_>, public ContextDefExtImpl<OfferedFunctions> {
  public:
    using Interfaces = InterfaceList<IContext_, IContextDef, IContextDefExt, IContextDefParams>;

    /// A failure changes nothing.
    void add(wstring_view english, wstring_view russian, NativeFunction function);

    int getNMethods() const override { return static_cast<int>(entries_.size()); }
    const wchar* getMethodName(int method, int alias) const override;
    int getNParams(int method) const override;
    bool isParamIn(int method, int param) const override;
    bool isParamOut(int method, int param) const override;
    bool getParamDefValue(int method, int param, GenericValue* out) const override;
    bool hasRetVal(int method) const override;
    int findMethod(const wchar* name) const override { return names_.find(name); }
    const wchar* getParamName(int method, int param, int alias) const override;

    InterfacePtr<IContextDef> getIContextDef() override;
    [[noreturn]] void getPropVal(int prop, GenericValue& out) override;
    [[noreturn]] void setPropVal(int prop, const GenericValue& value) override;
    void call(int method, GenericValue* result, std::vector<GenericValue>* params) override;

  private:
    struct Entry {
        wstring names[2];
        std::shared_ptr<const NativeFunction> function; // shared with the calls that are on their way
    };

    [[nodiscard]] const Entry* at(int method) const noexcept;
    [[nodiscard]] const Param* parameterAt(int method, int param) const noexcept;

    std::vector<Entry> entries_;
    NameTable names_;
};

} // namespace core::script
