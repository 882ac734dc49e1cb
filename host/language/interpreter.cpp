// SPDX-License-Identifier: Apache-2.0
#include "host/language/interpreter.h"

#include "host/language/operators.h"
#include "host/language/script_error.h"

#include <core/context/errors.h>
#include <core/context/iteration.h>
#include <core/runtime/exception_object.h>
#include <core/strings/integer_text.h>
#include <core/values/errors.h>
#include <core/values/type_object.h>

#include <algorithm>
#include <new>
#include <stdexcept>

namespace host::script {

using namespace core;

namespace {

/// What a statement asks of the loop around it.
enum class Flow { next, breakLoop, continueLoop };

/// Carries out `work`, and gives every failure of the library the place in the script where it happened.
template <class Work>
auto at(Span span, Work work) {
    try {
        return work();
    } catch (const ScriptError&) {
        throw;
    } catch (const Exception& e) {
        throw ScriptError(span, e.description(), wrap_exception(e).get());
    } catch (const std::bad_alloc&) {
        fail_at(span, "IDS_SCRIPT_NO_MEMORY");
    } catch (const std::length_error&) { // longer than memory could ever be
        fail_at(span, "IDS_SCRIPT_NO_MEMORY");
    }
}

GenericValue constant_value(const Constant& constant) {
    switch (constant.kind) {
    case Constant::Kind::undefined:
        return {};
    case Constant::Kind::null:
        return Value::null();
    case Constant::Kind::falseValue:
        return GenericValue(false);
    case Constant::Kind::trueValue:
        return GenericValue(true);
    case Constant::Kind::number:
        return GenericValue(Numeric::fromString(constant.text));
    case Constant::Kind::string:
        return GenericValue(constant.text);
    case Constant::Kind::date: {
        wstring digits = constant.text;
        digits.resize(14, u'0'); // a date alone is midnight
        const wchar* end = nullptr;
        const Date date = Date::fromString(digits, &end);
        if (end != digits.data() + digits.size())
            fail_at(constant.span, "IDS_SCRIPT_BAD_DATE");
        return GenericValue(date);
    }
    }
    return {};
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
    using Show = std::function<void(const GenericValue&)>;

    Run(Interpreter& owner, const Program& program, const Show* show)
        : owner_(owner), values_(owner.values_), globals_(*owner.globals_), program_(program), show_(show) {
        constants_.reserve(program.constants.size());
        for (const Constant& constant : program.constants)
            constants_.push_back(constant_value(constant));
        values_.resize(std::max(values_.size(), owner.variables_.size()));
        owner.interrupted_.store(false, std::memory_order_relaxed); // it was meant for the script before
    }

    void run() { execute(program_.body); }

  private:
    // statements

    Flow execute(const Block& block) {
        for (const Statement& statement : block) {
            checkInterrupt(statement.span);
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
            values_[node.slot] = element;
            if (execute(node.body) == Flow::breakLoop)
                break;
            checkInterrupt(node.collection->span);
        }
        return Flow::next;
    }
    Flow execute(const ForRange& node) {
        Numeric number = numeric(*node.first);
        const Numeric last = numeric(*node.last);
        for (; number.compare(last) <= 0; number += Numeric(1)) {
            values_[node.slot] = GenericValue(number);
            if (execute(node.body) == Flow::breakLoop)
                break;
            checkInterrupt(node.last->span);
        }
        return Flow::next;
    }
    Flow execute(const While& node) {
        while (condition(*node.condition)) {
            if (execute(node.body) == Flow::breakLoop)
                break;
            checkInterrupt(node.condition->span);
        }
        return Flow::next;
    }
    Flow execute(const Break&) { return Flow::breakLoop; }
    Flow execute(const Continue&) { return Flow::continueLoop; }

    /// A loop with an empty body can be interrupted, too.
    void checkInterrupt(Span span) {
        if (owner_.interrupted_.load(std::memory_order_relaxed)) {
            owner_.interrupted_.store(false, std::memory_order_relaxed);
            fail_at(span, "IDS_SCRIPT_INTERRUPTED");
        }
    }

    // expressions

    GenericValue evaluate(const Expression& expression) {
        return std::visit([&](const auto& node) { return evaluate(node, expression.span); }, expression.node);
    }

    GenericValue evaluate(const Literal& node, Span) { return constants_[node.constant]; }

    GenericValue evaluate(const Variable& node, Span span) {
        if (const auto& value = values_[node.slot])
            return *value;
        return at(span, [&] {
            const wstring& name = owner_.variables_.name(node.slot);
            const int prop = globals_.findProp(name.c_str());
            if (prop < 0)
                throw_error<ContextException>("IDS_SCRIPT_UNKNOWN_VARIABLE", {name});
            GenericValue value;
            globals_.getPropVal(prop, value);
            return value;
        });
    }

    GenericValue evaluate(const Call& node, Span span) {
        const int method = globals_.findMethod(node.name.c_str());
        if (method < 0)
            fail_at(span, "IDS_SCRIPT_UNKNOWN_FUNCTION", {node.name});
        return call(globals_, method, node.name, node.arguments, span);
    }

    GenericValue evaluate(const Creation& node, Span span) {
        std::vector<GenericValue> arguments;
        arguments.reserve(node.arguments.size());
        for (const ExpressionPtr& argument : node.arguments)
            arguments.push_back(argument ? evaluate(*argument) : GenericValue());
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
        if (variable != nullptr && !values_[variable->slot] && context.isParamOut(method, param))
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
            values_[variable->slot] = value;
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
    std::vector<std::optional<GenericValue>>& values_;
    IContext_& globals_;
    const Program& program_;
    const Show* show_;
    bool returned_ = false; // what was called last is a function
    std::vector<GenericValue> constants_;
};

Interpreter::Interpreter(InterfacePtr<IContext_> globals, const Variables& variables)
    : globals_(std::move(globals)), variables_(variables) {}

void Interpreter::run(const Program& program) {
    Run(*this, program, nullptr).run();
}

void Interpreter::run(const Program& program, const std::function<void(const GenericValue&)>& show) {
    Run(*this, program, &show).run();
}

std::optional<GenericValue> Interpreter::value(wstring_view name) const {
    const auto slot = variables_.find(name);
    return slot && *slot < values_.size() ? values_[*slot] : std::nullopt;
}

} // namespace host::script
