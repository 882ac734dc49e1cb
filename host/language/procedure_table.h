// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/language/module.h"

#include <core/context/callable.h>

#include <span>
#include <unordered_map>

namespace core::script {

/// A procedure, with the script that it is of.
struct ProcedureRef {
    std::shared_ptr<Module> module;
    const Procedure* procedure = nullptr; ///< borrowed from the module
};

/// Procedures by their names.
class ProcedureTable {
  public:
    using Map = std::unordered_map<wstring, ProcedureRef, NocaseHash, NocaseEqual>;

    /// Adds a procedure in place of an earlier one of that name.
    void add(ProcedureRef ref) {
        ++version_;
        const wstring& name = ref.procedure->name;
        procedures_.insert_or_assign(name, std::move(ref));
    }
    /// Returns a procedure, borrowed until the next change; null when none has the name.
    [[nodiscard]] const ProcedureRef* find(wstring_view name) const {
        if (procedures_.empty())
            return nullptr;
        const auto found = procedures_.find(name);
        return found != procedures_.end() ? &found->second : nullptr;
    }
    [[nodiscard]] const Map& all() const noexcept { return procedures_; }
    /// Changes with every change of the table.
    [[nodiscard]] std::uint64_t version() const noexcept { return version_; }

  private:
    std::uint64_t version_ = 1;
    Map procedures_;
};

/// The procedure as a value.
[[nodiscard]] GenericValue procedure_value(Module& module, const Procedure& procedure);

/// The parameters of a procedure as a console shows them.
[[nodiscard]] wstring display_parameters(const Procedure& procedure, int alias);

} // namespace core::script
