// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/language/ast.h"
#include "host/language/globals.h"
#include "host/language/variables.h"
#include "host/language/watch.h"

#include <functional>
#include <optional>
#include <vector>

namespace core::script {

/// Runs programs. Objects are reached only through their contexts, by name found and by number called;
/// functions without an object in front, and names that no variable has, are the methods and properties of
/// the globals.
///
/// One interpreter is one engine's state: its variables keep their values from one run to the next. For one
/// thread, which must have a process.
class Interpreter {
  public:
    using Show = std::function<void(const Value&)>;

    /// Runs a program to its end and returns what it returns. Throws ScriptError at the first failure; what
    /// was done before stays done. Hands the value of every statement that is an expression to `show`, where
    /// that is not null.
    GenericValue run(const Program& program, const Show* show = nullptr);

    /// The value of a variable; none while it has none.
    [[nodiscard]] std::optional<GenericValue> value(wstring_view name) const;
    void setValue(wstring_view name, const GenericValue& value);
    void removeValue(wstring_view name);
    /// The names of all variables that are or were there.
    [[nodiscard]] const Variables& variables() const noexcept { return variables_; }

    [[nodiscard]] Globals& globals() noexcept { return globals_; }
    [[nodiscard]] const Globals& globals() const noexcept { return globals_; }
    [[nodiscard]] Watch& watch() noexcept { return watch_; }
    [[nodiscard]] const Watch& watch() const noexcept { return watch_; }

  private:
    class Run;

    Globals globals_;
    Watch watch_;
    Variables variables_;
    std::vector<std::optional<GenericValue>> values_; // by slot
};

} // namespace core::script
