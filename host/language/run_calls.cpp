// SPDX-License-Identifier: Apache-2.0
#include "host/language/explain.h"
#include "host/language/failure.h"
#include "host/language/run.h"
#include "host/language/suggestions.h"

#include <core/context/errors.h>
#include <core/strings/integer_text.h>

#include <algorithm>
#include <utility>

namespace core::script {

/// The state of the caller, while a procedure runs.
class Run::Entered {
  public:
    Entered(Run& run, Module& module, const Procedure& procedure, Cell* cells) noexcept
        : run_(run), module_(std::exchange(run.module_, &module)),
          procedure_(std::exchange(run.procedure_, &procedure)), cells_(std::exchange(run.cells_, cells)),
          show_(std::exchange(run.show_, nullptr)) {}
    Entered(const Entered&) = delete;
    Entered& operator=(const Entered&) = delete;
    ~Entered() {
        run_.module_ = module_;
        run_.procedure_ = procedure_;
        run_.cells_ = cells_;
        run_.show_ = show_;
    }

  private:
    Run& run_;
    Module* module_;
    const Procedure* procedure_;
    Cell* cells_;
    const Show* show_;
};

GenericValue Run::call(const Procedure& procedure, std::span<GenericValue> arguments) {
    const Frames::Frame frame(owner_.frames_, procedure.names.size());
    for (std::size_t i = 0; i < procedure.parameters.size(); ++i) {
        Cell& cell = frame.cells()[i];
        if (i < arguments.size())
            cell.value = arguments[i];
        else
            passArgument(cell, procedure, i, nullptr, {});
    }
    GenericValue result = enter(*module_, procedure, frame.cells());
    for (std::size_t i = 0; i < std::min(arguments.size(), procedure.parameters.size()); ++i) {
        if (!procedure.parameters[i].byValue && procedure.assigned[i])
            arguments[i] = frame.cells()[i].value.value_or(GenericValue());
    }
    return result;
}

GenericValue Run::evaluate(const Call& node, Span span) {
    if (node.slot != kNone) {
        if (const Slot& variable = slot(node.slot)) {
            if (const auto callable = variable->query<ICallable>())
                return callValue(*callable, node.arguments, span);
        }
    }
    if (node.procedure != kNone)
        return callProcedure(*module_, module_->program->procedures[node.procedure], node.arguments, span);
    const CallSite& site = resolved(node);
    if (site.procedure != nullptr) {
        const ProcedureRef other = *site.procedure; // it may be declared again meanwhile
        return callProcedure(*other.module, *other.procedure, node.arguments, span);
    }
    if (site.method.context != nullptr)
        return callContext(*site.method.context, site.method.number, node.name, node.arguments, span);
    if (const Slot* const variable = scriptVariable(node.name)) {
        if (const auto callable = (*variable)->query<ICallable>())
            return callValue(*callable, node.arguments, span);
    }
    unknownFunction(span, node.name);
}

/// What the name of a call leads to, which is looked for where names have changed since.
const CallSite& Run::resolved(const Call& node) {
    CallSite& site = module_->sites[node.site];
    const std::uint64_t known = module_->known->version();
    const std::uint64_t globals = owner_.globals_.version();
    if (site.known == known && site.globals == globals && globals != 0)
        return site;
    site.procedure = module_->known->find(node.name);
    site.method = site.procedure == nullptr ? owner_.globals_.findMethod(node.name) : Globals::Place{};
    site.known = known;
    site.globals = globals;
    return site;
}

GenericValue Run::callProcedure(Module& module, const Procedure& procedure, const Arguments& expressions,
                                Span span) {
    const std::size_t count = procedure.parameters.size();
    if (expressions.size() > count)
        fail_at(span, messages::kTooManyArguments, {procedure.name, string_intto(count)});
    const Frames::Frame frame(owner_.frames_, procedure.names.size());
    for (std::size_t i = 0; i < count; ++i)
        passArgument(frame.cells()[i], procedure, i, i < expressions.size() ? expressions[i].get() : nullptr,
                     span);
    GenericValue result = enter(module, procedure, frame.cells());
    returned_ = procedure.returns;
    return result;
}

void Run::failMissing(const Procedure& procedure, std::size_t param, Span span) {
    const wstring number = string_intto(param + 1);
    throw_with_message(ScriptError(span, message_text("IDS_SCRIPT_MISSING_ARGUMENT",
                                                      {procedure.name, procedure.names.name(param)})),
                       messages::kMissingArgument, {procedure.name, number});
}

/// A variable is passed by reference, everything else as a value.
void Run::passArgument(Cell& cell, const Procedure& procedure, std::size_t param,
                       const Expression* expression, Span span) {
    const Parameter& parameter = procedure.parameters[param];
    if (expression == nullptr) {
        if (!parameter.byDefault)
            failMissing(procedure, param, span);
        cell.value = *parameter.byDefault;
        return;
    }
    const auto* const variable = std::get_if<Variable>(&expression->node);
    if (variable == nullptr || parameter.byValue) {
        cell.value = evaluate(*expression);
        return;
    }
    Slot& slot = this->slot(variable->slot);
    GenericValue value;
    if (slot || !at(expression->span, [&] { return standsFor(variable->slot, value); }))
        cell.at = &slot;
    else
        cell.value = std::move(value);
}

GenericValue Run::enter(Module& module, const Procedure& procedure, Cell* cells) {
    for (std::size_t i = procedure.parameters.size(); i < procedure.bindings.size(); ++i) {
        const Binding& binding = procedure.bindings[i];
        if (binding.kind == Binding::Kind::shared)
            cells[i].at = module.cells[binding.slot].at;
    }
    const Entered entered(*this, module, procedure, cells);
    try {
        execute(procedure.body);
    } catch (ScriptError& failure) {
        failure.locate(*module.program->source); // the caller may stand in another text
        throw;
    }
    return std::exchange(result_, GenericValue());
}

GenericValue Run::callValue(ICallable& callable, const Arguments& expressions, Span span) {
    std::vector<GenericValue> arguments;
    arguments.reserve(expressions.size());
    for (const ExpressionPtr& expression : expressions)
        arguments.push_back(expression ? evaluate(*expression) : GenericValue());
    GenericValue result = at(span, [&] { return callable.call(arguments); });
    returned_ = callable.returns();
    return result;
}

GenericValue Run::callMethod(const GenericValue& object, const Link& link) {
    InterfacePtr<IContext_> context;
    const int method = at(link.span, [&] {
        context = context_of(object, link.name);
        const int found = context->findMethod(link.name.c_str());
        if (found < 0)
            throw_unknown("IDS_SCRIPT_UNKNOWN_METHOD", {object.type().presentation(), link.name},
                          nearest_method(*context, link.name));
        return found;
    });
    return callContext(*context, method, link.name, link.arguments, link.span);
}

/// Calls a method, with defaults for arguments that are left out, and stores what it passes back.
GenericValue Run::callContext(IContext_& context, int method, const wstring& name,
                              const Arguments& expressions, Span span) {
    std::vector<GenericValue> arguments;
    arguments.reserve(static_cast<std::size_t>(std::max(context.getNParams(method), 0)));
    for (const ExpressionPtr& expression : expressions) {
        const auto param = static_cast<int>(arguments.size());
        if (expression) {
            arguments.push_back(argument(context, method, param, *expression));
        } else {
            GenericValue byDefault;
            if (!context.getParamDefValue(method, param, &byDefault) && param < context.getNParams(method))
                at(span, [&] { missing_argument(context, method, name, param); });
            arguments.push_back(std::move(byDefault));
        }
    }
    GenericValue result;
    watch_.hurry();
    at(span, [&] {
        try {
            context.call(method, &result, &arguments);
        } catch (const ContextException& failure) {
            explain_argument(failure, context, method, name, arguments);
            throw;
        }
    });
    returned_ = context.hasRetVal(method);
    for (std::size_t i = 0; i < expressions.size(); ++i) {
        if (expressions[i] && context.isParamOut(method, static_cast<int>(i)) &&
            is_assignable(*expressions[i]))
            assign(*expressions[i], arguments[i]);
    }
    return result;
}

/// A variable that has no value yet may stand where a method only passes one back.
GenericValue Run::argument(const IContext_& context, int method, int param, const Expression& expression) {
    const auto* const variable = std::get_if<Variable>(&expression.node);
    if (variable != nullptr && !slot(variable->slot) && context.isParamOut(method, param))
        return {};
    return evaluate(expression);
}

} // namespace core::script
