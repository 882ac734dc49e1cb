// SPDX-License-Identifier: Apache-2.0
#include "host/language/parser_impl.h"

#include <core/strings/nearest.h>
#include <core/strings/term.h>

#include <utility>

namespace core::script {

Block Parser::block() {
    const Nested nested(*this);
    Block statements;
    for (;;) {
        while (accept(TokenKind::semicolon)) {
        }
        if (endsBlock())
            return statements;
        if (procedure_ != nullptr && leadingWord() == TokenKind::wordVar)
            localVariables(statements);
        else
            statements.push_back(statement());
        endStatement();
    }
}

void Parser::endStatement() {
    if (!endsStatement())
        fail_at({last_.end(), 1}, "IDS_SCRIPT_EXPECTED_SEMICOLON"); // there, not at what follows
}

Statement Parser::statement() {
    const Span first = token_.span;
    Statement result{first, Break{}};
    switch (token_.kind) {
    case TokenKind::keyIf:
        result.node = if_statement();
        break;
    case TokenKind::keyFor:
        result.node = for_statement();
        break;
    case TokenKind::keyWhile:
        result.node = while_statement();
        break;
    case TokenKind::keyBreak:
    case TokenKind::keyContinue:
        if (loops_ == 0)
            fail_found("IDS_SCRIPT_OUTSIDE_LOOP");
        if (take().kind == TokenKind::keyContinue)
            result.node = Continue{};
        break;
    case TokenKind::keyReturn:
        result.node = returnStatement();
        break;
    default:
        result.node = wordStatement();
    }
    result.span = from_to(first, last_);
    return result;
}

/// A statement that begins with a name, or with a word that can be a name.
Parser::StatementNode Parser::wordStatement() {
    switch (leadingWord()) {
    case TokenKind::wordTry:
        return tryStatement();
    case TokenKind::wordRaise:
        return raiseStatement();
    case TokenKind::wordAddHandler:
    case TokenKind::wordRemoveHandler:
        return handlerStatement();
    case TokenKind::wordProcedure:
    case TokenKind::wordFunction:
    case TokenKind::wordImport:
    case TokenKind::wordVar:
        fail_found("IDS_SCRIPT_TOP_LEVEL");
    case TokenKind::wordExcept:
    case TokenKind::wordEndTry:
    case TokenKind::wordEndProcedure:
    case TokenKind::wordEndFunction:
        fail_found("IDS_SCRIPT_EXPECTED_STATEMENT");
    default:
        return simple_statement();
    }
}

If Parser::if_statement() {
    If result;
    ++open_;
    do {
        take(); // If or ElsIf
        ExpressionPtr condition = expression();
        expect(TokenKind::keyThen);
        result.branches.push_back({std::move(condition), block()});
    } while (token_.kind == TokenKind::keyElsIf);
    if (accept(TokenKind::keyElse))
        result.otherwise = block();
    --open_;
    expect(TokenKind::keyEndIf);
    return result;
}

Parser::StatementNode Parser::for_statement() {
    ++open_;
    take();
    if (accept(TokenKind::keyEach)) {
        const std::size_t slot = assigned(variable(text(expect(TokenKind::name))));
        expect(TokenKind::keyIn);
        ExpressionPtr collection = expression();
        return ForEach{slot, std::move(collection), loop_body()};
    }
    const std::size_t slot = assigned(variable(text(expect(TokenKind::name))));
    expect(TokenKind::equal);
    ExpressionPtr first = expression();
    expect(TokenKind::keyTo);
    ExpressionPtr last = expression();
    return ForRange{slot, std::move(first), std::move(last), loop_body()};
}

While Parser::while_statement() {
    ++open_;
    take();
    ExpressionPtr condition = expression();
    return {std::move(condition), loop_body()};
}

/// The rest of a loop, which its keyword has opened.
Block Parser::loop_body() {
    expect(TokenKind::keyDo);
    ++loops_;
    Block body = block();
    --loops_;
    --open_;
    expect(TokenKind::keyEndDo);
    return body;
}

Try Parser::tryStatement() {
    ++open_;
    ++tries_;
    take();
    Try result{block(), {}, kNone};
    expectSoft(TokenKind::wordExcept);
    ++handlers_;
    result.error = assigned(handled());
    result.handler = block();
    --handlers_;
    --tries_;
    --open_;
    expectSoft(TokenKind::wordEndTry);
    return result;
}

Raise Parser::raiseStatement() {
    const Token word = take();
    Raise result{word.span, nullptr, handlers_ > 0 ? handled() : kNone};
    if (!endsStatement())
        result.value = expression();
    else if (handlers_ == 0)
        fail_at(word.span, "IDS_SCRIPT_NOTHING_TO_RAISE");
    return result;
}

Handler Parser::handlerStatement() {
    const bool add = leadingWord() == TokenKind::wordAddHandler;
    ++open_;
    take();
    ExpressionPtr event = chain();
    auto* const access = std::get_if<Access>(&event->node);
    if (access == nullptr || access->links.back().kind != Link::Kind::property)
        fail_at(event->span, "IDS_SCRIPT_EXPECTED_EVENT");
    Handler result{add, nullptr, access->links.back().name, access->links.back().span, nullptr};
    access->links.pop_back();
    result.source = access->links.empty() ? std::move(access->object) : std::move(event);
    expect(TokenKind::comma);
    --open_;
    result.procedure = expression();
    return result;
}

Return Parser::returnStatement() {
    take();
    if (endsStatement())
        return {};
    Return result{expression()};
    if (procedure_ != nullptr && !procedure_->returns)
        fail_at(result.value->span, "IDS_SCRIPT_PROCEDURE_RETURNS");
    return result;
}

/// A name that an operand follows was meant to be a keyword, if it is near one.
void Parser::refuse_misspelt(const Expression& first) {
    const bool operand = token_.kind == TokenKind::name || token_.kind == TokenKind::number ||
                         token_.kind == TokenKind::string;
    if (!operand || !std::holds_alternative<Variable>(first.node))
        return;
    const wstring name(program_.source->text(first.span));
    NearestName near(name);
    for (auto kind = TokenKind::keyIf; kind <= TokenKind::wordRemoveHandler;
         kind = static_cast<TokenKind>(static_cast<int>(kind) + 1)) {
        near.add(keyword_name(kind, kEnglish));
        near.add(keyword_name(kind, kRussian));
    }
    if (!near.best().empty())
        fail_at(first.span, "IDS_SCRIPT_UNKNOWN_STATEMENT", {name, near.best()});
}

Parser::StatementNode Parser::simple_statement() {
    const bool negated =
        token_.kind == TokenKind::keyNot || token_.kind == TokenKind::minus || token_.kind == TokenKind::plus;
    ExpressionPtr left = negated ? expression() : chain();
    if (!negated)
        refuse_misspelt(*left);
    const bool compared = mode_ == Mode::console && !negated && !is_assignable(*left);
    if (!negated && !compared && token_.kind == TokenKind::equal) {
        if (!is_assignable(*left))
            fail_at(left->span, "IDS_SCRIPT_NOT_ASSIGNABLE");
        if (const auto* const target = std::get_if<Variable>(&left->node))
            assigned(target->slot);
        take();
        return Assignment{std::move(left), expression()};
    }
    ExpressionPtr whole = operations(Level::logicalOr, std::move(left));
    if (mode_ == Mode::file && !is_call(*whole))
        fail_at(whole->span, "IDS_SCRIPT_NO_EFFECT");
    return Evaluation{std::move(whole)};
}

} // namespace core::script
