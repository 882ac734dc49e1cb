// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/language/globals.h"
#include "host/language/handlers.h"
#include "host/language/imports.h"
#include "host/language/procedure_table.h"
#include "host/language/variables.h"
#include "host/language/watch.h"

#include <deque>
#include <functional>
#include <optional>
#include <unordered_set>

namespace core::script {

/// Runs programs. Objects are reached only through their contexts, by name found and by number called;
/// functions without an object in front, and names that no variable has, are procedures, or the methods and
/// properties of the globals.
///
/// One interpreter is one engine's state: its variables and procedures stay from one run to the next. For one
/// thread, which must have a process.
class Interpreter {
  public:
    using Show = std::function<void(const Value&)>;

    Interpreter() = default;
    Interpreter(const Interpreter&) = delete;
    Interpreter& operator=(const Interpreter&) = delete;
    /// Ends the connections of handlers and lets go of what the files that were imported hold.
    ~Interpreter();

    /// Runs a program to its end and returns what it returns; the exit code where it asked to exit. Throws
    /// ScriptError at the first failure; what was done before stays done. Hands the value of every statement
    /// that is an expression to `show`, where that is not null.
    GenericValue run(const std::shared_ptr<const Program>& program, const Show* show = nullptr);
    /// Calls a procedure, in a run or outside of all, with as many arguments as it takes, and stores in them
    /// what parameters by reference pass back. Throws ScriptError inside a run, otherwise Error.
    GenericValue call(const std::shared_ptr<Module>& module, const Procedure& procedure,
                      std::span<GenericValue> arguments);
    /// Does the same with a procedure of that name that a script has declared or imported; parameters behind
    /// the arguments take their defaults. One that asks to exit ends and returns the code. Throws Error,
    /// without a place for an unknown name and for a wrong count of arguments.
    GenericValue call(wstring_view name, std::span<GenericValue> arguments);
    /// What the last run asked to exit with; none where it did not.
    [[nodiscard]] std::optional<int> exitCode() const noexcept { return exitCode_; }

    /// The value of a variable; none while it has none.
    [[nodiscard]] Slot value(wstring_view name) const;
    void setValue(wstring_view name, const GenericValue& value);
    void removeValue(wstring_view name);
    /// The names of all variables that are or were there.
    [[nodiscard]] const Variables& variables() const noexcept { return variables_; }
    /// The procedures that scripts have declared and imported.
    [[nodiscard]] const ProcedureTable& procedures() const noexcept { return procedures_; }

    [[nodiscard]] Globals& globals() noexcept { return globals_; }
    [[nodiscard]] const Globals& globals() const noexcept { return globals_; }
    [[nodiscard]] Watch& watch() noexcept { return watch_; }
    [[nodiscard]] const Watch& watch() const noexcept { return watch_; }
    [[nodiscard]] Imports& imports() noexcept { return imports_; }

    /// A file as a module with variables of its own, which has not run yet.
    [[nodiscard]] std::shared_ptr<Module> makeModule(std::shared_ptr<const Program> program);
    /// Imports what a module names, declares its procedures and runs it.
    GenericValue runModule(const std::shared_ptr<Module>& module, const Show* show);

  private:
    friend class Run;

    std::shared_ptr<Module> moduleOf(const std::shared_ptr<const Program>& program);
    std::shared_ptr<Module> track(std::unique_ptr<Module> module);

    Globals globals_;
    Watch watch_;
    Variables variables_;
    std::deque<Slot> values_; // by slot; they do not move, because modules refer to them
    Frames frames_;
    ProcedureTable procedures_;
    std::shared_ptr<Module> last_;        // the script that ran last, as a rule the next one
    std::unordered_set<Module*> modules_; // all that live
    Imports imports_;
    Handlers handlers_;
    std::optional<int> exitCode_;
};

} // namespace core::script
