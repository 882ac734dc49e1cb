// SPDX-License-Identifier: Apache-2.0
#include "host/language/interpreter.h"

#include "host/language/operators.h"
#include "host/language/script_error.h"

#include <core/context/errors.h>
#include <core/context/iteration.h>
#include <core/runtime/exception_object.h>
#include <core/runtime/threads/errors.h>
#include <core/runtime/utf8.h>
#include <core/strings/integer_text.h>
#include <core/values/errors.h>
#include <core/values/type_object.h>

#include <cxxabi.h>

#include <algorithm>
#include <new>
#include <stdexcept>

namespace core::script {

namespace {

/// What a statement asks of the loop around it.
enum class Flow { next, breakLoop, continueLoop, leave };

/// Carries out `work`, and gives every failure of the library and of the program the place in the script
/// where it happened.
template <class Work>
auto at(Span span, Work work) {
    try {
        return work();
    } catch (const ScriptError&) {
        throw;
    } catch (const Exception& e) {
        throw ScriptError(span, e);
    } catch (const std::bad_alloc&) {
        fail_at(span, messages::kScriptNoMemory);
    } catch (const std::length_error&) { // longer than memory could ever be
        fail_at(span, messages::kScriptNoMemory);
    } catch (const std::exception& e) {
        const Exception cause(from_utf8(e.what()));
        fail_at(span, messages::kScriptForeignFailure, {cause.description()}, wrap_exception(cause).get());
    } catch (const ThreadDeath&) { // the thread was asked to stop
        throw;
    } catch (const abi::__forced_unwind&) { // it is being cancelled
        throw;
    } catch (...) {
        fail_at(span, messages::kScriptUnknownFailure);
    }
}

InterfacePtr<IContext_> context_of(const GenericValue& object, const wstring& member) {
    auto context = object.query<IContext_>();
    if (!context)
        throw_error<ContextException>("IDS_SCRIPT_NO_MEMBERS", {object.type().presentation(), member});
    return context;
}

/// The first of some methods that the context has, or -1.
int find_first(const IContext_& context, std::initializer_list<const wchar*> names) {
    for (const wchar* name : names) {
        if (const int method = context.findMethod(name); method >= 0)
            return method;
    }
    return -1;
}

} // namespace

/// One run of one program.
class Interpreter::Run {
  public:
    Run(Interpreter& owner, const Program& program, const Show* show)
        : owner_(owner), watch_(owner.watch_), values_(owner.values_), program_(program), show_(show),
          counted_(watch_) {
        slots_.reserve(program.names.size());
        for (std::size_t slot = 0; slot < program.names.size(); ++slot)
            slots_.push_back(owner.variables_.slot(program.names.name(slot)));
        values_.resize(std::max(values_.size(), owner.variables_.size()));
    }

    GenericValue run() {
        if (watch_.nested())
            watch_.requireStack({});
        execute(program_.body);
        return std::move(result_);
    }

  private:
    // statements

    Flow execute(const Block& block) {
        if (block.empty())
            return Flow::next;
        const Watch::Level level(watch_, block.front().span);
        for (const Statement& statement : block) {
            watch_.step(statement.span);
            const Flow flow = std::visit([&](const auto& node) { return execute(node); }, statement.node);
            if (flow != Flow::next)
                return flow;
        }
        return Flow::next;
    }

    Flow execute(const Assignment& node) {
        assign(*node.target, evaluate(*node.value));
        return Flow::next;
    }
    Flow execute(const Evaluation& node) {
        const GenericValue value = evaluate(*node.expression);
        if (show_ != nullptr && (returned_ || !is_call(*node.expression)))
            (*show_)(value);
        return Flow::next;
    }
    Flow execute(const If& node) {
        for (const Branch& branch : node.branches) {
            if (condition(*branch.condition))
                return execute(branch.body);
        }
        return execute(node.otherwise);
    }
    Flow execute(const ForEach& node) {
        const GenericValue collection = evaluate(*node.collection);
        const auto walk = at(node.collection->span, [&] {
            const auto walkable = collection.query<IValueCollection>();
            if (!walkable)
                throw_error<ContextException>("IDS_SCRIPT_NOT_A_COLLECTION",
                                              {collection.type().presentation()});
            return walkable->enumerate();
        });
        GenericValue element;
        while (at(node.collection->span, [&] { return walk->next(element); })) {
            variable(node.slot) = element;
            if (const Flow flow = execute(node.body); ends_loop(flow))
                return behind_loop(flow);
            watch_.step(node.collection->span);
        }
        return Flow::next;
    }
    Flow execute(const ForRange& node) {
        Numeric number = numeric(*node.first);
        const Numeric last = numeric(*node.last);
        for (; number.compare(last) <= 0; number += Numeric(1)) {
            variable(node.slot) = GenericValue(number);
            if (const Flow flow = execute(node.body); ends_loop(flow))
                return behind_loop(flow);
            watch_.step(node.last->span);
        }
        return Flow::next;
    }
    Flow execute(const While& node) {
        while (condition(*node.condition)) {
            if (const Flow flow = execute(node.body); ends_loop(flow))
                return behind_loop(flow);
            watch_.step(node.condition->span);
        }
        return Flow::next;
    }
    Flow execute(const Break&) { return Flow::breakLoop; }
    Flow execute(const Continue&) { return Flow::continueLoop; }

    Flow execute(const Return& node) {
        if (node.value)
            result_ = evaluate(*node.value);
        if (show_ != nullptr && node.value)
            (*show_)(result_);
        return Flow::leave;
    }

    static bool ends_loop(Flow flow) noexcept { return flow == Flow::breakLoop || flow == Flow::leave; }
    static Flow behind_loop(Flow flow) noexcept { return flow == Flow::leave ? flow : Flow::next; }

    // expressions

    std::optional<GenericValue>& variable(std::size_t slot) { return values_[slots_[slot]]; }

    GenericValue evaluate(const Expression& expression) {
        if (const auto* const literal = std::get_if<Literal>(&expression.node))
            return literal->value;
        if (const auto* const name = std::get_if<Variable>(&expression.node))
            return evaluate(*name, expression.span);
        const Watch::Level level(watch_, expression.span);
        return std::visit([&](const auto& node) { return evaluate(node, expression.span); }, expression.node);
    }

    GenericValue evaluate(const Literal& node, Span) { return node.value; }

    GenericValue evaluate(const Variable& node, Span span) {
        if (const auto& value = variable(node.slot))
            return *value;
        return at(span, [&] {
            const wstring& name = program_.names.name(node.slot);
            const Globals::Place prop = owner_.globals_.findProp(name);
            if (prop.context == nullptr)
                throw_error<ContextException>("IDS_SCRIPT_UNKNOWN_VARIABLE", {name});
            GenericValue value;
            prop.context->getPropVal(prop.number, value);
            return value;
        });
    }

    GenericValue evaluate(const Call& node, Span span) {
        const Globals::Place method = owner_.globals_.findMethod(node.name);
        if (method.context == nullptr)
            fail_at(span, "IDS_SCRIPT_UNKNOWN_FUNCTION", {node.name});
        return call(*method.context, method.number, node.name, node.arguments, span);
    }

    GenericValue evaluate(const Creation& node, Span span) {
        std::vector<GenericValue> arguments;
        arguments.reserve(node.arguments.size());
        for (const ExpressionPtr& argument : node.arguments)
            arguments.push_back(argument ? evaluate(*argument) : GenericValue());
        watch_.hurry();
        return at(span, [&] { return Type(wstring_view(node.type)).get()->construct(arguments); });
    }

    GenericValue evaluate(const Negation& node, Span) {
        if (node.logical)
            return GenericValue(!condition(*node.operand));
        const GenericValue value = evaluate(*node.operand);
        return at(node.operand->span, [&] { return negate(value); });
    }

    GenericValue evaluate(const Operations& node, Span) {
        GenericValue result = evaluate(*node.first);
        for (const Operation& operation : node.rest) {
            if (operation.sign == Operator::logicalAnd || operation.sign == Operator::logicalOr) {
                const bool decided = operation.sign == Operator::logicalOr;
                const bool left = at(node.first->span, [&] { return truth(result); });
                result = GenericValue(left == decided ? decided : condition(*operation.operand));
            } else {
                const GenericValue right = evaluate(*operation.operand);
                if (const wstring_view* const text = result.asString())
                    requireRoom(operation.span, *text, right);
                result = at(operation.span, [&] { return apply(operation.sign, result, right); });
            }
        }
        return result;
    }

    GenericValue evaluate(const Access& node, Span) {
        GenericValue object = evaluate(*node.object);
        for (const Link& link : node.links)
            object = follow(object, link);
        return object;
    }

    /// Two texts can double in each step; no look at the memory afterwards would be in time.
    void requireRoom(Span span, wstring_view left, const GenericValue& right) {
        constexpr std::size_t kLong = 1U << 15U; // units
        const wstring_view* const other = right.asString();
        const std::size_t units = left.size() + (other != nullptr ? other->size() : 0);
        if (units < kLong)
            return;
        watch_.requireRoom(span, units);
        watch_.hurry();
    }

    bool condition(const Expression& expression) {
        const GenericValue value = evaluate(expression);
        return at(expression.span, [&] { return truth(value); });
    }

    Numeric numeric(const Expression& expression) {
        const GenericValue value = evaluate(expression);
        Numeric number;
        if (!value.getNumeric(number))
            fail_at(expression.span, "IDS_SCRIPT_NOT_A_NUMBER", {value.type().presentation()});
        return number;
    }

    // objects

    GenericValue follow(const GenericValue& object, const Link& link) {
        switch (link.kind) {
        case Link::Kind::property:
            return at(link.span, [&] {
                const auto context = context_of(object, link.name);
                GenericValue value;
                context->getPropVal(propertyOf(*context, object, link.name), value);
                return value;
            });
        case Link::Kind::method:
            return invoke(object, link);
        case Link::Kind::element:
            break;
        }
        const GenericValue key = evaluate(*link.arguments.front());
        return at(link.span, [&] {
            const auto context = context_of(object, key.presentation());
            GenericValue value;
            if (const int prop = namedProperty(*context, key); prop >= 0) {
                context->getPropVal(prop, value);
                return value;
            }
            const int method = find_first(*context, {u"Get"});
            if (method < 0 || context->getNParams(method) != 1)
                throw_error<ContextException>("IDS_SCRIPT_NO_ELEMENTS", {object.type().presentation()});
            std::vector<GenericValue> arguments{key};
            context->call(method, &value, &arguments);
            return value;
        });
    }

    GenericValue invoke(const GenericValue& object, const Link& link) {
        InterfacePtr<IContext_> context;
        const int method = at(link.span, [&] {
            context = context_of(object, link.name);
            const int found = context->findMethod(link.name.c_str());
            if (found < 0)
                throw_error<ContextException>("IDS_SCRIPT_UNKNOWN_METHOD",
                                              {object.type().presentation(), link.name});
            return found;
        });
        return call(*context, method, link.name, link.arguments, link.span);
    }

    /// Calls a method, with defaults for arguments that are left out, and stores what it passes back.
    GenericValue call(IContext_& context, int method, const wstring& name, const Arguments& expressions,
                      Span span) {
        std::vector<GenericValue> arguments;
        arguments.reserve(static_cast<std::size_t>(std::max(context.getNParams(method), 0)));
        for (const ExpressionPtr& expression : expressions) {
            if (expression) {
                arguments.push_back(
                    argument(context, method, static_cast<int>(arguments.size()), *expression));
            } else {
                GenericValue byDefault;
                const auto param = static_cast<int>(arguments.size());
                if (!context.getParamDefValue(method, param, &byDefault) &&
                    param < context.getNParams(method))
                    fail_at(span, messages::kMissingArgument, {name, string_intto(param + 1)});
                arguments.push_back(std::move(byDefault));
            }
        }
        GenericValue result;
        watch_.hurry();
        at(span, [&] { context.call(method, &result, &arguments); });
        returned_ = context.hasRetVal(method);
        for (std::size_t i = 0; i < expressions.size(); ++i) {
            if (expressions[i] && context.isParamOut(method, static_cast<int>(i)) &&
                is_assignable(*expressions[i]))
                assign(*expressions[i], arguments[i]);
        }
        return result;
    }

    /// A variable that has no value yet may stand where a method only passes one back.
    GenericValue argument(const IContext_& context, int method, int param, const Expression& expression) {
        const auto* const variable = std::get_if<Variable>(&expression.node);
        if (variable != nullptr && !this->variable(variable->slot) && context.isParamOut(method, param))
            return {};
        return evaluate(expression);
    }

    static int propertyOf(const IContext_& context, const GenericValue& object, const wstring& name) {
        const int prop = context.findProp(name.c_str());
        if (prop < 0)
            throw_error<ContextException>("IDS_SCRIPT_UNKNOWN_PROPERTY",
                                          {object.type().presentation(), name});
        return prop;
    }

    /// The property that an element's key names, or -1.
    static int namedProperty(const IContext_& context, const GenericValue& key) {
        const wstring_view* const name = key.asString();
        const bool isName = name != nullptr && name->find(u'\0') == wstring_view::npos;
        return isName ? context.findProp(name->data()) : -1;
    }

    // assignment

    void assign(const Expression& target, const GenericValue& value) {
        if (const auto* const variable = std::get_if<Variable>(&target.node)) {
            this->variable(variable->slot) = value;
            return;
        }
        const auto& access = std::get<Access>(target.node);
        GenericValue object = evaluate(*access.object);
        for (std::size_t i = 0; i + 1 < access.links.size(); ++i)
            object = follow(object, access.links[i]);
        const Link& last = access.links.back();
        const GenericValue key =
            last.kind == Link::Kind::element ? evaluate(*last.arguments.front()) : GenericValue();
        at(last.span, [&] {
            if (last.kind == Link::Kind::property) {
                const auto context = context_of(object, last.name);
                context->setPropVal(propertyOf(*context, object, last.name), value);
            } else {
                assignElement(object, key, value);
            }
        });
    }

    static void assignElement(const GenericValue& object, const GenericValue& key,
                              const GenericValue& value) {
        const auto context = context_of(object, key.presentation());
        if (const int prop = namedProperty(*context, key); prop >= 0) {
            context->setPropVal(prop, value);
            return;
        }
        const int method = find_first(*context, {u"Set", u"Insert"});
        if (method < 0 || context->getNParams(method) != 2)
            throw_error<ContextException>("IDS_SCRIPT_NO_ELEMENTS", {object.type().presentation()});
        std::vector<GenericValue> arguments{key, value};
        context->call(method, nullptr, &arguments);
    }

    Interpreter& owner_;
    Watch& watch_;
    std::vector<std::optional<GenericValue>>& values_;
    const Program& program_;
    const Show* show_;
    Watch::Run counted_;
    std::vector<std::size_t> slots_; // of the interpreter's variables, by those of the program
    bool returned_ = false;          // what was called last is a function
    GenericValue result_;
};

GenericValue Interpreter::run(const Program& program, const Show* show) {
    return Run(*this, program, show).run();
}

std::optional<GenericValue> Interpreter::value(wstring_view name) const {
    const auto slot = variables_.find(name);
    return slot && *slot < values_.size() ? values_[*slot] : std::nullopt;
}

void Interpreter::setValue(wstring_view name, const GenericValue& value) {
    const std::size_t slot = variables_.slot(name);
    if (slot >= values_.size())
        values_.resize(slot + 1);
    values_[slot] = value;
}

void Interpreter::removeValue(wstring_view name) {
    const auto slot = variables_.find(name);
    if (slot && *slot < values_.size())
        values_[*slot].reset();
}

} // namespace core::script
