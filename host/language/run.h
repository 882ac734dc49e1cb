// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/language/interpreter.h"

#include <core/context/context_def.h>

namespace core::script {

/// The properties and methods of an object. Throws ContextException for a value that has none; `member` is
/// what was wanted of it.
[[nodiscard]] InterfacePtr<IContext_> context_of(const GenericValue& object, const wstring& member);

/// One run: of a script from its top, or of a procedure that something else than a script calls. What stands
/// inside that, other procedures included, it walks itself.
class Run {
  public:
    using Show = Interpreter::Show;

    /// `module` must outlive the run. Throws ScriptError where the stack does not suffice.
    Run(Interpreter& owner, Module& module, const Show* show);

    /// Runs the statements at the top level and returns what they return.
    GenericValue topLevel();
    /// Calls a procedure of the module with values, and stores in them what it passes back.
    GenericValue call(const Procedure& procedure, std::span<GenericValue> arguments);

  private:
    /// What a statement asks of what is around it.
    enum class Flow : std::uint8_t { next, breakLoop, continueLoop, leave };
    /// Puts the state of the caller back.
    class Entered;

    // statements: run.cpp
    Flow execute(const Block& block);
    Flow execute(const Assignment& node);
    Flow execute(const Evaluation& node);
    Flow execute(const If& node);
    Flow execute(const ForEach& node);
    Flow execute(const ForRange& node);
    template <class Number>
    Flow count(const ForRange& node, Number number, const Number& last);
    Flow execute(const While& node);
    Flow execute(const Break&) { return Flow::breakLoop; }
    Flow execute(const Continue&) { return Flow::continueLoop; }
    Flow execute(const Return& node);
    Flow execute(const Try& node);
    [[noreturn]] Flow execute(const Raise& node);
    Flow execute(const Handler& node);
    static bool endsLoop(Flow flow) noexcept { return flow == Flow::breakLoop || flow == Flow::leave; }
    static Flow behindLoop(Flow flow) noexcept { return flow == Flow::leave ? flow : Flow::next; }

    // expressions: run_expressions.cpp
    GenericValue evaluate(const Expression& expression);
    GenericValue evaluate(const Literal& node, Span) { return node.value; }
    GenericValue evaluate(const Variable& node, Span span);
    GenericValue evaluate(const Call& node, Span span);
    GenericValue evaluate(const Creation& node, Span span);
    GenericValue evaluate(const Negation& node, Span);
    GenericValue evaluate(const Operations& node, Span);
    GenericValue evaluate(const Access& node, Span);
    void requireRoom(Span span, wstring_view left, const GenericValue& right);
    bool condition(const Expression& expression);
    Numeric numeric(const Expression& expression);
    GenericValue follow(const GenericValue& object, const Link& link);
    void assign(const Expression& target, GenericValue value);

    // names: run_names.cpp
    Slot& slot(std::size_t number) { return *cells_[number].at; }
    [[nodiscard]] const Variables& names() const {
        return procedure_ != nullptr ? procedure_->names : module_->program->names;
    }
    /// What a name stands for that has no value as a variable; false where it stands for nothing.
    bool standsFor(std::size_t number, GenericValue& value);
    /// The variable of the script with that name, where it has a value.
    Slot* scriptVariable(wstring_view name);
    [[noreturn]] void unknownVariable(const wstring& name);
    [[nodiscard]] bool isMain() const noexcept { return module_->known == &owner_.procedures_; }
    [[noreturn]] void unknownFunction(Span span, const wstring& name);

    // calls: run_calls.cpp
    const CallSite& resolved(const Call& node);
    GenericValue callProcedure(Module& module, const Procedure& procedure, const Arguments& expressions,
                               Span span);
    void passArgument(Cell& cell, const Procedure& procedure, std::size_t param, const Expression* expression,
                      Span span);
    [[noreturn]] static void failMissing(const Procedure& procedure, std::size_t param, Span span);
    GenericValue enter(Module& module, const Procedure& procedure, Cell* cells);
    GenericValue callValue(ICallable& callable, const Arguments& expressions, Span span);
    GenericValue callMethod(const GenericValue& object, const Link& link);
    GenericValue callContext(IContext_& context, int method, const wstring& name,
                             const Arguments& expressions, Span span);
    GenericValue argument(const IContext_& context, int method, int param, const Expression& expression);

    Interpreter& owner_;
    Watch& watch_;
    Watch::Run counted_;
    Module* module_;
    const Procedure* procedure_ = nullptr; // null at the top level
    Cell* cells_;                          // of the variables, by slot
    const Show* show_;
    bool returned_ = false; // what was called last is a function
    GenericValue result_;
};

} // namespace core::script
