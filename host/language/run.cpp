// SPDX-License-Identifier: Apache-2.0
#include "host/language/run.h"

#include "host/language/failure.h"

#include <core/context/iteration.h>
#include <core/runtime/exception_object.h>
#include <core/script/error_value.h>

namespace core::script {

Run::Run(Interpreter& owner, Module& module, const Show* show)
    : owner_(owner), watch_(owner.watch_), counted_(watch_), module_(&module), cells_(module.cells.data()),
      show_(show) {
    if (watch_.nested())
        watch_.requireStack({});
}

GenericValue Run::topLevel() {
    for (const std::size_t declared : module_->program->declared) {
        if (Slot& variable = slot(declared); !variable)
            variable = GenericValue();
    }
    execute(module_->program->body);
    return std::move(result_);
}

Run::Flow Run::execute(const Block& block) {
    if (block.empty())
        return Flow::next;
    const Watch::Level level(watch_, block.front().span);
    const Statement* current = nullptr;
    try {
        for (const Statement& statement : block) {
            current = &statement;
            watch_.step(statement.span);
            const Flow flow = std::visit([&](const auto& node) { return execute(node); }, statement.node);
            if (flow != Flow::next)
                return flow;
        }
    } catch (const ThreadDeath&) { // of long work in a call, or of the thread
        watch_.step(current->span);
        throw;
    }
    return Flow::next;
}

Run::Flow Run::execute(const Assignment& node) {
    assign(*node.target, evaluate(*node.value));
    return Flow::next;
}

Run::Flow Run::execute(const Evaluation& node) {
    const GenericValue value = evaluate(*node.expression);
    if (show_ != nullptr && (returned_ || !is_call(*node.expression)))
        (*show_)(value);
    return Flow::next;
}

Run::Flow Run::execute(const If& node) {
    for (const Branch& branch : node.branches) {
        if (condition(*branch.condition))
            return execute(branch.body);
    }
    return execute(node.otherwise);
}

Run::Flow Run::execute(const ForEach& node) {
    const GenericValue collection = evaluate(*node.collection);
    const auto walk = at(node.collection->span, [&] {
        const auto walkable = collection.query<IValueCollection>();
        if (!walkable)
            throw_error<ContextException>("IDS_SCRIPT_NOT_A_COLLECTION", {collection.type().presentation()});
        return walkable->enumerate();
    });
    GenericValue element;
    while (at(node.collection->span, [&] { return walk->next(element); })) {
        slot(node.slot) = element;
        if (const Flow flow = execute(node.body); endsLoop(flow))
            return behindLoop(flow);
        watch_.step(node.collection->span);
    }
    return Flow::next;
}

template <class Number>
Run::Flow Run::count(const ForRange& node, Number number, const Number& last) {
    for (; number <= last; number += 1) {
        slot(node.slot) = GenericValue(number);
        if (const Flow flow = execute(node.body); endsLoop(flow))
            return behindLoop(flow);
        watch_.step(node.last->span);
    }
    return Flow::next;
}

/// The counter is an integer where that will do.
Run::Flow Run::execute(const ForRange& node) {
    const Numeric first = numeric(*node.first);
    const Numeric last = numeric(*node.last);
    const auto number = GenericValue(first).asSmallWhole();
    const auto end = GenericValue(last).asSmallWhole();
    return number && end ? count(node, *number, *end) : count(node, first, last);
}

Run::Flow Run::execute(const While& node) {
    while (condition(*node.condition)) {
        if (const Flow flow = execute(node.body); endsLoop(flow))
            return behindLoop(flow);
        watch_.step(node.condition->span);
    }
    return Flow::next;
}

Run::Flow Run::execute(const Return& node) {
    if (node.value)
        result_ = evaluate(*node.value);
    if (show_ != nullptr && node.value)
        (*show_)(result_);
    return Flow::leave;
}

Run::Flow Run::execute(const Try& node) {
    GenericValue caught;
    try {
        return execute(node.body);
    } catch (const ScriptError& failure) {
        if (ends_script(failure))
            throw;
        caught = create_error_value(failure.located(*module_->program->source));
    }
    // Behind the catch, so that failures in failures do not pile up.
    struct Handling {
        Slot& error;
        Slot before; // of a handler around this one, in another run of the script
        ~Handling() { error = std::move(before); }
    } const handling{slot(node.error), std::exchange(slot(node.error), std::move(caught))};
    return execute(node.handler);
}

Run::Flow Run::execute(const Raise& node) {
    const Slot handled = node.handled != kNone ? slot(node.handled) : Slot();
    const GenericValue value = node.value ? evaluate(*node.value) : handled.value_or(GenericValue());
    if (const auto again = value.query<IErrorValue>())
        throw ScriptError(again->error());
    InterfacePtr<IExceptionObject> cause;
    if (const auto error = handled ? handled->query<IErrorValue>() : InterfacePtr<IErrorValue>())
        cause = wrap_exception(error->error());
    const wstring text = value.presentation();
    fail_at(node.span, messages::kScriptRaised, {text}, cause.get());
}

Run::Flow Run::execute(const Handler& node) {
    const GenericValue source = evaluate(*node.source);
    const GenericValue procedure = evaluate(*node.procedure);
    const auto callable = procedure.query<ICallable>();
    if (!callable)
        fail_at(node.procedure->span, "IDS_SCRIPT_NOT_A_PROCEDURE", {procedure.type().presentation()});
    at(node.eventSpan, [&] {
        if (node.add)
            owner_.handlers_.add(watch_, source, node.event, *callable);
        else
            owner_.handlers_.remove(source, node.event, *callable);
    });
    return Flow::next;
}

} // namespace core::script
