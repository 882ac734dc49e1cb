// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/library/surroundings.h"

#include <core/context/context_def_ext.h>
#include <core/context/context_impl.h>
#include <core/runtime/internal_class.h>

#include <span>

namespace core::script {

/// What a script knows of the program around it: its arguments, and the end.
class ProgramFunctions : public IContextImpl<IContextDefImpl<ProgramFunctions>>,
                         public ContextDefExtImpl<ProgramFunctions> {
  public:
    using Interfaces = InterfaceList<IContext_, IContextDef, IContextDefExt, IContextDefParams>;

    ProgramFunctions() { setArguments({}); }

    static std::span<const Property<ProgramFunctions>> properties() noexcept;
    static std::span<const Method<ProgramFunctions>> methods() noexcept;

    void setArguments(std::span<const wstring> arguments);

  private:
    [[nodiscard]] GenericValue arguments() const { return arguments_; }
    GenericValue exit(std::span<GenericValue> arguments);

    GenericValue arguments_; // a FixedArray of Strings
};

/// The text of a script file, in UTF-8. Throws what opening and reading throw.
[[nodiscard]] wstring read_script(const Surroundings& surroundings, const wstring& file);

} // namespace core::script
