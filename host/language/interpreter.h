// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/language/ast.h"
#include "host/language/variables.h"

#include <core/context/context_def.h>

#include <atomic>
#include <functional>
#include <optional>
#include <vector>

namespace host::script {

/// Runs scripts. Objects are reached only through their contexts, by name found and by number
/// called; functions without an object in front, and names that no variable has, are the methods
/// and properties of `globals`.
///
/// One interpreter is one script's state: its variables keep their values from one run to the
/// next. For one thread, which must have a process; interrupt() alone may be called from any
/// thread and from a signal handler.
class Interpreter {
  public:
    /// `globals` is counted. `variables` is the one that the scripts were parsed with, kept by reference.
    Interpreter(core::InterfacePtr<core::IContext_> globals, const Variables& variables);

    /// Runs a script to its end. Throws ScriptError at the first failure; what was done before stays done.
    void run(const Program& program);
    /// The same, and hands the value of every statement that is an expression to `show`,
    /// nothing for a procedure's.
    void run(const Program& program, const std::function<void(const core::GenericValue&)>& show);

    /// Makes a running script fail at its next statement.
    void interrupt() noexcept { interrupted_.store(true, std::memory_order_relaxed); }

    /// The value of a variable; none while it has none.
    [[nodiscard]] std::optional<core::GenericValue> value(core::wstring_view name) const;
    [[nodiscard]] core::IContext_& globals() const noexcept { return *globals_; }

  private:
    class Run;

    core::InterfacePtr<core::IContext_> globals_;
    const Variables& variables_;
    std::vector<std::optional<core::GenericValue>> values_; // by slot
    std::atomic<bool> interrupted_{false};
};

} // namespace host::script
