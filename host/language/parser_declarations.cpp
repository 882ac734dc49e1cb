// SPDX-License-Identifier: Apache-2.0
#include "host/language/operators.h"
#include "host/language/parser_impl.h"

#include <core/strings/compare.h>
#include <core/strings/integer_text.h>

#include <algorithm>
#include <utility>

namespace core::script {

void Parser::topLevel() {
    const Nested nested(*this);
    for (;;) {
        while (accept(TokenKind::semicolon)) {
        }
        if (token_.kind == TokenKind::end)
            return;
        if (declaration())
            continue;
        if (endsBlock())
            fail_found("IDS_SCRIPT_EXPECTED_STATEMENT");
        program_.body.push_back(statement());
        endStatement();
    }
}

/// Reads what stands at the top level alone; false where something else begins.
bool Parser::declaration() {
    switch (leadingWord()) {
    case TokenKind::wordProcedure:
    case TokenKind::wordFunction:
        procedure();
        return true;
    case TokenKind::wordImport:
        import();
        endStatement();
        return true;
    case TokenKind::wordVar:
        sharedVariables();
        endStatement();
        return true;
    default:
        return false;
    }
}

void Parser::import() {
    take();
    need();
    if (token_.kind != TokenKind::string)
        fail_found("IDS_SCRIPT_EXPECTED_FILE");
    wstring file = string_value(text(token_));
    const Span span = take().span;
    program_.imports.push_back({span, std::move(file)});
}

void Parser::sharedVariables() {
    do {
        take(); // Var or the comma
        program_.declared.push_back(program_.names.slot(text(expect(TokenKind::name))));
    } while (token_.kind == TokenKind::comma);
}

/// In a procedure Var makes a variable its own and gives it Undefined.
void Parser::localVariables(Block& statements) {
    do {
        take();
        const Token name = expect(TokenKind::name);
        const std::size_t slot = assigned(procedure_->names.slot(text(name)));
        local_.resize(std::max(local_.size(), slot + 1));
        local_[slot] = true;
        statements.push_back({name.span, Assignment{make(name.span, Variable{slot}),
                                                    make(name.span, Literal{GenericValue()})}});
    } while (token_.kind == TokenKind::comma);
}

void Parser::procedure() {
    ++open_;
    const Mode mode = std::exchange(mode_, Mode::file); // in a console, too
    const bool returns = leadingWord() == TokenKind::wordFunction;
    take();
    const Token name = expect(TokenKind::name);
    if (program_.procedureNames.find(text(name)))
        fail_at(name.span, "IDS_SCRIPT_PROCEDURE_TWICE", {wstring(text(name))});
    program_.procedureNames.slot(text(name));
    procedure_ = &program_.procedures.emplace_back();
    procedure_->name = text(name);
    procedure_->returns = returns;
    const std::size_t firstCall = calls_.size();
    parameters();
    if (leadingWord() == TokenKind::wordExport) {
        procedure_->exported = true;
        take();
    }
    procedure_->body = block();
    for (std::size_t i = firstCall; i < calls_.size(); ++i)
        calls_[i]->slot = procedure_->names.find(calls_[i]->name).value_or(kNone);
    locals_.push_back(std::exchange(local_, {}));
    --open_;
    expectSoft(returns ? TokenKind::wordEndFunction : TokenKind::wordEndProcedure);
    procedure_ = nullptr;
    mode_ = mode;
}

void Parser::parameters() {
    expect(TokenKind::open);
    while (!(procedure_->parameters.empty() && token_.kind == TokenKind::close)) {
        procedure_->parameters.push_back(parameter());
        if (!accept(TokenKind::comma))
            break;
    }
    expect(TokenKind::close);
    local_.assign(procedure_->parameters.size(), true);
}

Parameter Parser::parameter() {
    Parameter result;
    if (token_.kind == TokenKind::name && soft_keyword(text(token_)) == TokenKind::wordVal &&
        lexer_.peek().kind == TokenKind::name) {
        result.byValue = true;
        take();
    }
    const Token name = expect(TokenKind::name);
    if (procedure_->names.slot(text(name)) != procedure_->parameters.size())
        fail_at(name.span, "IDS_SCRIPT_PARAMETER_TWICE", {wstring(text(name))});
    if (accept(TokenKind::equal))
        result.byDefault = constant();
    return result;
}

GenericValue Parser::constant() {
    const ExpressionPtr value = operations(Level::sign, nullptr);
    if (const auto* const literal = std::get_if<Literal>(&value->node))
        return literal->value;
    if (const auto* const negation = std::get_if<Negation>(&value->node)) {
        const auto* const literal = std::get_if<Literal>(&negation->operand->node);
        if (literal != nullptr && literal->value.kind() == ValueKind::number)
            return negate(literal->value);
    }
    fail_at(value->span, "IDS_SCRIPT_EXPECTED_CONSTANT");
}

/// What stands behind its use is known now.
void Parser::bindNames() {
    for (Call* const call : calls_) {
        call->procedure = program_.procedureNames.find(call->name).value_or(kNone);
        call->site = program_.calls++;
    }
    for (std::size_t i = 0; i < program_.procedures.size(); ++i) {
        local_ = std::move(locals_[i]);
        bind(program_.procedures[i]);
    }
}

void Parser::bind(Procedure& procedure) {
    procedure.assigned.resize(procedure.names.size());
    local_.resize(procedure.names.size());
    procedure.bindings.resize(procedure.names.size());
    for (std::size_t slot = 0; slot < procedure.names.size(); ++slot) {
        if (local_[slot])
            continue;
        Binding& binding = procedure.bindings[slot];
        const wstring& name = procedure.names.name(slot);
        const auto known = program_.names.find(name);
        if (known && std::ranges::find(program_.declared, *known) != program_.declared.end())
            binding = {Binding::Kind::shared, *known};
        else if (!procedure.assigned[slot])
            binding = {Binding::Kind::read, program_.names.slot(name)};
    }
}

std::size_t Parser::variable(wstring_view name) {
    const bool error =
        handlers_ > 0 && (compare_nocase(name, u"Error") == 0 || compare_nocase(name, u"Ошибка") == 0);
    return error ? handled() : names().slot(name);
}

std::size_t Parser::handled() {
    return names().slot(u"#error" + string_intto(handlers_)); // no script can write such a name
}

std::size_t Parser::assigned(std::size_t slot) {
    if (procedure_ != nullptr) {
        procedure_->assigned.resize(std::max(procedure_->assigned.size(), slot + 1));
        procedure_->assigned[slot] = true;
    }
    return slot;
}

} // namespace core::script
