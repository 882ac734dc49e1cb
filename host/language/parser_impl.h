// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/language/lexer.h"
#include "host/language/parser.h"

#include <core/runtime/utf8.h>

#include <string>
#include <utility>

namespace core::script {

/// From what binds least to what binds most.
enum class Level : std::uint8_t { logicalOr, logicalAnd, logicalNot, comparison, sum, product, sign };

[[nodiscard]] inline Span from_to(Span first, Span last) {
    return {first.offset, last.end() - first.offset};
}

/// Reads a text once, from left to right, by one function for each form of the grammar.
class Parser {
  public:
    Parser(std::shared_ptr<const Source> source, Mode mode, Lexer::More more = {});

    Program program();

  private:
    using StatementNode = decltype(Statement::node);

    /// Counts one level of nesting while it lives.
    class Nested {
      public:
        explicit Nested(Parser& parser) : depth_(parser.depth_) {
            if (depth_ == kMaxNesting)
                fail_at(parser.token_.span, "IDS_SCRIPT_TOO_DEEP", {from_utf8(std::to_string(kMaxNesting))});
            ++depth_;
        }
        Nested(const Nested&) = delete;
        Nested& operator=(const Nested&) = delete;
        ~Nested() { --depth_; }

      private:
        int& depth_;
    };

    // declarations: parser_declarations.cpp
    void topLevel();
    bool declaration();
    void import();
    void sharedVariables();
    void localVariables(Block& statements);
    void procedure();
    void parameters();
    Parameter parameter();
    GenericValue constant();
    void bindNames();
    void bind(Procedure& procedure);

    // statements: parser_statements.cpp
    Block block();
    void endStatement();
    Statement statement();
    StatementNode wordStatement();
    If if_statement();
    StatementNode for_statement();
    While while_statement();
    Try tryStatement();
    Raise raiseStatement();
    Handler handlerStatement();
    Return returnStatement();
    StatementNode simple_statement();
    Block loop_body();

    // expressions: parser_expressions.cpp
    ExpressionPtr expression() { return operations(Level::logicalOr, nullptr); }
    ExpressionPtr operations(Level level, ExpressionPtr left);
    ExpressionPtr negation(bool logical);
    ExpressionPtr chain();
    ExpressionPtr primary();
    ExpressionPtr named();
    ExpressionPtr literal(GenericValue value);
    [[nodiscard]] GenericValue number_value() const;
    [[nodiscard]] GenericValue date_value() const;
    Arguments arguments();
    Link link();

    // names
    [[nodiscard]] Variables& names() { return procedure_ != nullptr ? procedure_->names : program_.names; }
    std::size_t variable(wstring_view name);
    /// The slot of the failure that the innermost handler handles.
    std::size_t handled();
    /// A statement gives the variable a value.
    std::size_t assigned(std::size_t slot);

    // tokens: parser.cpp
    Token take();
    /// Something must follow: where the text ends, it goes on in another line.
    void need();
    bool accept(TokenKind kind);
    Token expect(TokenKind kind);
    Token expectSoft(TokenKind kind);
    /// After "." and New keywords lose their meaning.
    Token expect_word();
    /// The word of the language that the next token is where a statement could begin; `name` where what
    /// follows makes it a name, and for every other token.
    TokenKind leadingWord();
    bool endsBlock();
    bool endsStatement();
    [[nodiscard]] wstring_view text(const Token& token) const { return program_.source->text(token.span); }
    void refuse_misspelt(const Expression& first);
    [[nodiscard]] ExpressionPtr make(Span first, decltype(Expression::node) node) const {
        return std::make_unique<Expression>(Expression{from_to(first, last_), std::move(node)});
    }
    [[noreturn]] void fail_found(const char* id, wstring expected = {});

    Lexer lexer_;
    Mode mode_;
    Program program_;
    Procedure* procedure_ = nullptr; // whose body is read
    std::vector<bool> local_;        // by slot of that procedure: a parameter, or declared by Var in it
    std::vector<std::vector<bool>> locals_; // the same of the procedures that have been read
    std::vector<Call*> calls_;              // of all procedures so far, to be bound at the end
    Token token_;                           // the next one
    Span last_;                             // of the one before
    int depth_ = 0;
    int open_ = 0; // statements and brackets that wait for their end
    int loops_ = 0;
    int tries_ = 0;
    int handlers_ = 0;
};

} // namespace core::script
