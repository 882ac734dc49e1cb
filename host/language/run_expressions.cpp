// SPDX-License-Identifier: Apache-2.0
#include "host/language/explain.h"
#include "host/language/failure.h"
#include "host/language/operators.h"
#include "host/language/run.h"
#include "host/language/suggestions.h"

#include <core/objects/enumeration.h>
#include <core/runtime/threads/thread.h>
#include <core/values/type_object.h>

#include <string_view>
#include <utility>

namespace core::script {
namespace {

/// The first of some methods that the context has, or -1.
int find_first(const IContext_& context, std::initializer_list<const wchar*> names) {
    for (const wchar* name : names) {
        if (const int method = context.findMethod(name); method >= 0)
            return method;
    }
    return -1;
}

[[noreturn]] void throw_unknown_property(const IContext_& context, const GenericValue& object,
                                         const wstring& name) {
    const NearestName near = nearest_property(context, name);
    // All enumerations are of one type, which says nothing of what was meant.
    if (const auto enumeration = object.query<IEnumeration>()) {
        const int language = Thread::getResourceLocale().isRussian() ? kRussian : kEnglish;
        throw_unknown("IDS_SCRIPT_UNKNOWN_ENUMERATION_VALUE",
                      {enumeration->valueType()->name(language), name}, near);
    }
    throw_unknown("IDS_SCRIPT_UNKNOWN_PROPERTY", {object.type().presentation(), name}, near);
}

int property_of(const IContext_& context, const GenericValue& object, const wstring& name) {
    const int prop = context.findProp(name.c_str());
    if (prop < 0)
        throw_unknown_property(context, object, name);
    return prop;
}

/// The property that an element's key names, or -1.
int named_property(const IContext_& context, const GenericValue& key) {
    const wstring_view* const name = key.asString();
    const bool isName = name != nullptr && name->find(u'\0') == wstring_view::npos;
    return isName ? context.findProp(name->data()) : -1;
}

/// Calls the method that reads or writes an element.
void call_for_element(const GenericValue& object, IContext_& context, int method, GenericValue* result,
                      std::vector<GenericValue> arguments) {
    if (method < 0 || static_cast<std::size_t>(context.getNParams(method)) != arguments.size())
        throw_error<ContextException>("IDS_SCRIPT_NO_ELEMENTS", {object.type().presentation()});
    try {
        context.call(method, result, &arguments);
    } catch (const ContextException& failure) {
        explain_index(failure);
        throw;
    }
}

void assign_element(const GenericValue& object, const GenericValue& key, const GenericValue& value) {
    const auto context = context_of(object, key.presentation());
    if (const int prop = named_property(*context, key); prop >= 0) {
        context->setPropVal(prop, value);
        return;
    }
    call_for_element(object, *context, find_first(*context, {u"Set", u"Insert"}), nullptr, {key, value});
}

} // namespace

InterfacePtr<IContext_> context_of(const GenericValue& object, const wstring& member) {
    auto context = object.query<IContext_>();
    if (!context)
        throw_error<ContextException>("IDS_SCRIPT_NO_MEMBERS", {object.type().presentation(), member});
    return context;
}

GenericValue Run::evaluate(const Expression& expression) {
    if (const auto* const literal = std::get_if<Literal>(&expression.node))
        return literal->value;
    if (const auto* const name = std::get_if<Variable>(&expression.node))
        return evaluate(*name, expression.span);
    const Watch::Level level(watch_, expression.span);
    return std::visit([&](const auto& node) { return evaluate(node, expression.span); }, expression.node);
}

GenericValue Run::evaluate(const Variable& node, Span span) {
    if (const Slot& variable = slot(node.slot))
        return *variable;
    return at(span, [&] {
        GenericValue value;
        if (!standsFor(node.slot, value))
            unknownVariable(names().name(node.slot));
        return value;
    });
}

GenericValue Run::evaluate(const Creation& node, Span span) {
    std::vector<GenericValue> arguments;
    arguments.reserve(node.arguments.size());
    for (const ExpressionPtr& argument : node.arguments)
        arguments.push_back(argument ? evaluate(*argument) : GenericValue());
    watch_.hurry();
    return at(span, [&] {
        try {
            return Type(wstring_view(node.type)).get()->construct(arguments);
        } catch (const TypeException& failure) { // of this type, or of one that an argument names
            if (std::string_view(failure.messageId()) != messages::kTypeNotDefined ||
                failure.parameters()[0] != node.type)
                throw;
            throw_unknown<TypeException>(messages::kTypeNotDefined, {node.type}, nearest_type(node.type));
        } catch (const ContextException& failure) {
            explain_construction(failure, node.type, arguments);
            throw;
        }
    });
}

GenericValue Run::evaluate(const Negation& node, Span) {
    if (node.logical)
        return GenericValue(!condition(*node.operand));
    const GenericValue value = evaluate(*node.operand);
    return at(node.operand->span, [&] { return negate(value); });
}

GenericValue Run::evaluate(const Operations& node, Span) {
    GenericValue result = evaluate(*node.first);
    for (const Operation& operation : node.rest) {
        if (operation.sign == Operator::logicalAnd || operation.sign == Operator::logicalOr) {
            const bool decided = operation.sign == Operator::logicalOr;
            const bool left = at(node.first->span, [&] { return truth(result); });
            result = GenericValue(left == decided ? decided : condition(*operation.operand));
        } else {
            const GenericValue right = evaluate(*operation.operand);
            const auto whole = result.asSmallWhole();
            const auto other = right.asSmallWhole();
            if (whole && other && apply_whole(operation.sign, *whole, *other, result))
                continue;
            if (const wstring_view* const text = result.asString())
                requireRoom(operation.span, *text, right);
            result = at(operation.span, [&] { return apply(operation.sign, result, right); });
        }
    }
    return result;
}

GenericValue Run::evaluate(const Access& node, Span) {
    GenericValue object = evaluate(*node.object);
    for (const Link& link : node.links)
        object = follow(object, link);
    return object;
}

/// Two texts can double in each step; no look at the memory afterwards would be in time.
void Run::requireRoom(Span span, wstring_view left, const GenericValue& right) {
    constexpr std::size_t kLong = 1U << 15U; // units
    const wstring_view* const other = right.asString();
    const std::size_t units = left.size() + (other != nullptr ? other->size() : 0);
    if (units < kLong)
        return;
    watch_.requireRoom(span, units);
    watch_.hurry();
}

bool Run::condition(const Expression& expression) {
    const GenericValue value = evaluate(expression);
    return at(expression.span, [&] { return truth(value); });
}

Numeric Run::numeric(const Expression& expression) {
    const GenericValue value = evaluate(expression);
    Numeric number;
    if (!value.getNumeric(number))
        fail_at(expression.span, "IDS_SCRIPT_NOT_A_NUMBER", {value.type().presentation()});
    return number;
}

GenericValue Run::follow(const GenericValue& object, const Link& link) {
    switch (link.kind) {
    case Link::Kind::property:
        return at(link.span, [&] {
            const auto context = context_of(object, link.name);
            GenericValue value;
            context->getPropVal(property_of(*context, object, link.name), value);
            return value;
        });
    case Link::Kind::method:
        return callMethod(object, link);
    case Link::Kind::element:
        break;
    }
    const GenericValue key = evaluate(*link.arguments.front());
    return at(link.span, [&] {
        const auto context = context_of(object, key.presentation());
        GenericValue value;
        if (const int prop = named_property(*context, key); prop >= 0) {
            context->getPropVal(prop, value);
            return value;
        }
        call_for_element(object, *context, find_first(*context, {u"Get"}), &value, {key});
        return value;
    });
}

void Run::assign(const Expression& target, GenericValue value) {
    if (const auto* const variable = std::get_if<Variable>(&target.node)) {
        slot(variable->slot) = std::move(value);
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
            context->setPropVal(property_of(*context, object, last.name), value);
        } else {
            assign_element(object, key, value);
        }
    });
}

} // namespace core::script
