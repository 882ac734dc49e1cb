// SPDX-License-Identifier: Apache-2.0
#include "host/language/parser_impl.h"

#include <utility>

namespace core::script {

Parser::Parser(std::shared_ptr<const Source> source, Mode mode, Lexer::More more)
    : lexer_(source->text(), std::move(more)), mode_(mode) {
    program_.source = std::move(source);
    token_ = lexer_.next();
}

Program Parser::program() {
    topLevel();
    bindNames();
    return std::move(program_);
}

Token Parser::take() {
    last_ = token_.span;
    const Token taken = std::exchange(token_, lexer_.next());
    if (open_ > 0)
        need();
    return taken;
}

void Parser::need() {
    while (token_.kind == TokenKind::end && lexer_.extend())
        token_ = lexer_.next();
}

bool Parser::accept(TokenKind kind) {
    const bool found = token_.kind == kind;
    if (found)
        take();
    return found;
}

/// "{0}" of the message is what was found, "{1}" what was expected.
void Parser::fail_found(const char* id, wstring expected) {
    constexpr std::size_t kMaxShown = 40;
    wstring found;
    if (token_.kind == TokenKind::end)
        found = message_text("IDS_END_OF_TEXT");
    else if (token_.span.length > kMaxShown)
        found = message_text("IDS_QUOTED", {wstring(text(token_).substr(0, kMaxShown)) + u"…"});
    else
        found = message_text("IDS_QUOTED", {wstring(text(token_))});
    fail_at(token_.span, id, {found, std::move(expected)});
}

Token Parser::expect(TokenKind kind) {
    need();
    if (token_.kind == kind)
        return take();
    if (kind == TokenKind::name)
        fail_found("IDS_SCRIPT_EXPECTED_NAME");
    fail_found("IDS_SCRIPT_EXPECTED", spelling(kind));
}

Token Parser::expect_word() {
    need();
    return is_keyword(token_.kind) ? take() : expect(TokenKind::name);
}

Token Parser::expectSoft(TokenKind kind) {
    need();
    if (leadingWord() == kind)
        return take();
    fail_found("IDS_SCRIPT_EXPECTED", spelling(kind));
}

TokenKind Parser::leadingWord() {
    const TokenKind word = token_.kind == TokenKind::name ? soft_keyword(text(token_)) : TokenKind::name;
    if (word == TokenKind::name)
        return word;
    switch (lexer_.peek().kind) {
    case TokenKind::equal:
    case TokenKind::dot:
    case TokenKind::openBracket:
        return TokenKind::name;
    case TokenKind::open: // a call, unless a parenthesis may follow the word itself
        return word == TokenKind::wordRaise || word == TokenKind::wordExcept ||
                       word == TokenKind::wordEndTry || word == TokenKind::wordEndProcedure ||
                       word == TokenKind::wordEndFunction
                   ? word
                   : TokenKind::name;
    default:
        return word;
    }
}

bool Parser::endsBlock() {
    switch (token_.kind) {
    case TokenKind::end:
    case TokenKind::keyEndIf:
    case TokenKind::keyEndDo:
    case TokenKind::keyElse:
    case TokenKind::keyElsIf:
        return true;
    case TokenKind::name:
        break;
    default:
        return false;
    }
    switch (leadingWord()) {
    case TokenKind::wordExcept:
    case TokenKind::wordEndTry:
        return tries_ > 0;
    case TokenKind::wordEndProcedure:
    case TokenKind::wordEndFunction:
        return procedure_ != nullptr;
    default:
        return false;
    }
}

bool Parser::endsStatement() {
    return token_.kind == TokenKind::semicolon || endsBlock();
}

Program parse(std::shared_ptr<const Source> source, Mode mode) {
    return Parser(std::move(source), mode).program();
}

Program parse_entry(const std::shared_ptr<Source>& source, const GrowSource& more) {
    const auto grow = [&source = *source, &more] {
        more(source);
        return source.text();
    };
    return Parser(source, Mode::console, grow).program();
}

} // namespace core::script
