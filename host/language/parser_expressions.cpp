// SPDX-License-Identifier: Apache-2.0
#include "host/language/parser_impl.h"

#include <core/numbers/errors.h>

#include <array>
#include <optional>
#include <utility>

namespace core::script {
namespace {

struct OperatorSign {
    TokenKind token;
    Level level;
    Operator sign;
};

constexpr std::array kOperators{
    OperatorSign{TokenKind::keyOr, Level::logicalOr, Operator::logicalOr},
    OperatorSign{TokenKind::keyAnd, Level::logicalAnd, Operator::logicalAnd},
    OperatorSign{TokenKind::equal, Level::comparison, Operator::equal},
    OperatorSign{TokenKind::notEqual, Level::comparison, Operator::notEqual},
    OperatorSign{TokenKind::less, Level::comparison, Operator::less},
    OperatorSign{TokenKind::lessEqual, Level::comparison, Operator::lessEqual},
    OperatorSign{TokenKind::greater, Level::comparison, Operator::greater},
    OperatorSign{TokenKind::greaterEqual, Level::comparison, Operator::greaterEqual},
    OperatorSign{TokenKind::plus, Level::sum, Operator::add},
    OperatorSign{TokenKind::minus, Level::sum, Operator::subtract},
    OperatorSign{TokenKind::times, Level::product, Operator::multiply},
    OperatorSign{TokenKind::divide, Level::product, Operator::divide},
    OperatorSign{TokenKind::modulo, Level::product, Operator::modulo},
};

std::optional<Operator> operator_at(Level level, TokenKind token) {
    for (const OperatorSign& candidate : kOperators)
        if (candidate.token == token && candidate.level == level)
            return candidate.sign;
    return std::nullopt;
}

} // namespace

/// `left`, if not null, is the chain that the expression begins with, read already.
ExpressionPtr Parser::operations(Level level, ExpressionPtr left) {
    if (left == nullptr)
        need();
    if (level == Level::logicalNot && left == nullptr && token_.kind == TokenKind::keyNot)
        return negation(true);
    if (level == Level::sign) {
        if (left != nullptr)
            return left;
        if (token_.kind == TokenKind::minus || token_.kind == TokenKind::plus)
            return negation(false);
        return chain();
    }
    const Level next{static_cast<std::uint8_t>(static_cast<std::uint8_t>(level) + 1)};
    const Span begin = left != nullptr ? left->span : token_.span;
    ExpressionPtr first = operations(next, std::move(left));
    std::vector<Operation> rest;
    while (const std::optional<Operator> sign = operator_at(level, token_.kind)) {
        const Span place = take().span;
        rest.push_back({*sign, place, operations(next, nullptr)});
    }
    return rest.empty() ? std::move(first) : make(begin, Operations{std::move(first), std::move(rest)});
}

ExpressionPtr Parser::negation(bool logical) {
    const Nested nested(*this);
    const Token sign = take();
    ExpressionPtr operand = operations(logical ? Level::logicalNot : Level::sign, nullptr);
    if (sign.kind == TokenKind::plus)
        return operand;
    return make(sign.span, Negation{logical, std::move(operand)});
}

ExpressionPtr Parser::chain() {
    const Span begin = token_.span;
    ExpressionPtr object = primary();
    std::vector<Link> links;
    while (token_.kind == TokenKind::dot || token_.kind == TokenKind::openBracket)
        links.push_back(link());
    return links.empty() ? std::move(object) : make(begin, Access{std::move(object), std::move(links)});
}

Link Parser::link() {
    Link result;
    if (take().kind == TokenKind::openBracket) {
        const Nested nested(*this);
        result.kind = Link::Kind::element;
        result.span = last_;
        ++open_;
        result.arguments.push_back(expression());
        --open_;
        expect(TokenKind::closeBracket);
        return result;
    }
    const Token name = expect_word();
    result.span = name.span;
    result.name = text(name);
    if (token_.kind == TokenKind::open) {
        result.kind = Link::Kind::method;
        result.arguments = arguments();
    }
    return result;
}

ExpressionPtr Parser::primary() {
    switch (token_.kind) {
    case TokenKind::name:
        return named();
    case TokenKind::keyNew: {
        const Span begin = take().span;
        wstring type(text(expect_word()));
        return make(begin,
                    Creation{std::move(type), token_.kind == TokenKind::open ? arguments() : Arguments()});
    }
    case TokenKind::open: {
        const Nested nested(*this);
        take();
        ++open_;
        ExpressionPtr inner = expression();
        --open_;
        expect(TokenKind::close);
        return inner;
    }
    case TokenKind::number:
        return literal(number_value());
    case TokenKind::string:
        return literal(string_value(text(token_)));
    case TokenKind::date:
        return literal(date_value());
    case TokenKind::keyTrue:
        return literal(true);
    case TokenKind::keyFalse:
        return literal(false);
    case TokenKind::keyUndefined:
        return literal({});
    case TokenKind::keyNull:
        return literal(Value::null());
    default:
        fail_found("IDS_SCRIPT_EXPECTED_VALUE");
    }
}

/// A variable, or the call of a function.
ExpressionPtr Parser::named() {
    const Token name = take();
    if (token_.kind != TokenKind::open)
        return make(name.span, Variable{variable(text(name))});
    wstring function(text(name));
    ExpressionPtr call = make(name.span, Call{std::move(function), arguments()});
    calls_.push_back(&std::get<Call>(call->node));
    return call;
}

ExpressionPtr Parser::literal(GenericValue value) {
    return make(take().span, Literal{std::move(value)});
}

GenericValue Parser::number_value() const {
    try {
        return GenericValue(Numeric::fromString(text(token_)));
    } catch (const NumericException& e) { // a text as long as no number may be
        throw ScriptError(token_.span, e);
    }
}

GenericValue Parser::date_value() const {
    wstring digits(text(token_).substr(1, token_.span.length - 2));
    digits.resize(14, u'0'); // a date alone is midnight
    const wchar* end = nullptr;
    const Date date = Date::fromString(digits, &end);
    if (end != digits.data() + digits.size())
        fail_at(token_.span, "IDS_SCRIPT_BAD_DATE");
    return GenericValue(date);
}

Arguments Parser::arguments() {
    const Nested nested(*this);
    expect(TokenKind::open);
    ++open_;
    need();
    Arguments result;
    while (!(result.empty() && token_.kind == TokenKind::close)) {
        const bool omitted = token_.kind == TokenKind::comma || token_.kind == TokenKind::close;
        result.push_back(omitted ? nullptr : expression());
        if (!accept(TokenKind::comma))
            break;
    }
    --open_;
    expect(TokenKind::close);
    return result;
}

} // namespace core::script
