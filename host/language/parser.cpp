// SPDX-License-Identifier: Apache-2.0
#include "host/language/parser.h"

#include "host/language/lexer.h"

#include <core/numbers/errors.h>
#include <core/runtime/utf8.h>

#include <array>
#include <optional>
#include <utility>

namespace core::script {
namespace {

enum class Level : std::uint8_t { logicalOr, logicalAnd, logicalNot, comparison, sum, product, sign };

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

constexpr bool ends_block(TokenKind kind) {
    return kind == TokenKind::end || kind == TokenKind::keyEndIf || kind == TokenKind::keyEndDo ||
           kind == TokenKind::keyElse || kind == TokenKind::keyElsIf;
}

constexpr bool ends_statement(TokenKind kind) {
    return kind == TokenKind::semicolon || ends_block(kind);
}

Span from_to(Span first, Span last) {
    return {first.offset, last.end() - first.offset};
}

using StatementNode = decltype(Statement::node);

class Parser {
  public:
    Parser(std::shared_ptr<const Source> source, Mode mode, Lexer::More more = {})
        : lexer_(source->text(), std::move(more)), mode_(mode) {
        program_.source = std::move(source);
        token_ = lexer_.next();
    }

    Program program() {
        program_.body = block();
        if (token_.kind != TokenKind::end)
            fail_found("IDS_SCRIPT_EXPECTED_STATEMENT");
        return std::move(program_);
    }

  private:
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

    // statements
    Block block();
    Statement statement();
    If if_statement();
    StatementNode for_statement();
    While while_statement();
    StatementNode simple_statement();
    Block loop_body();

    // expressions
    ExpressionPtr expression() { return operations(Level::logicalOr, nullptr); }
    ExpressionPtr operations(Level level, ExpressionPtr left);
    ExpressionPtr negation(bool logical);
    ExpressionPtr chain();
    ExpressionPtr primary();
    ExpressionPtr literal(GenericValue value);
    [[nodiscard]] GenericValue number_value() const;
    [[nodiscard]] GenericValue date_value() const;
    Arguments arguments();
    Link link();

    // tokens
    Token take() {
        last_ = token_.span;
        const Token taken = std::exchange(token_, lexer_.next());
        if (open_ > 0)
            need();
        return taken;
    }
    /// Something must follow: where the text ends, it goes on in another line.
    void need() {
        while (token_.kind == TokenKind::end && lexer_.extend())
            token_ = lexer_.next();
    }
    bool accept(TokenKind kind) {
        const bool found = token_.kind == kind;
        if (found)
            take();
        return found;
    }
    Token expect(TokenKind kind);
    /// After "." and New keywords lose their meaning.
    Token expect_word();
    [[nodiscard]] wstring_view text(const Token& token) const { return program_.source->text(token.span); }
    [[nodiscard]] ExpressionPtr make(Span first, decltype(Expression::node) node) const {
        return std::make_unique<Expression>(Expression{from_to(first, last_), std::move(node)});
    }
    [[noreturn]] void fail_found(const char* id, wstring expected = {});

    Lexer lexer_;
    Mode mode_;
    Program program_;
    Token token_; // the next one
    Span last_;   // of the one before
    int depth_ = 0;
    int open_ = 0; // statements and brackets that wait for their end
    int loops_ = 0;
};

/// "{0}" of the message is what was found, "{1}" what was expected.
void Parser::fail_found(const char* id, wstring expected) {
    constexpr std::size_t kMaxShown = 40;
    wstring found;
    if (token_.kind == TokenKind::end)
        found = message_text("IDS_SCRIPT_END_OF_TEXT");
    else if (token_.span.length > kMaxShown)
        found = u"“" + wstring(text(token_).substr(0, kMaxShown)) + u"…”";
    else
        found = u"“" + wstring(text(token_)) + u"”";
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

Block Parser::block() {
    const Nested nested(*this);
    Block statements;
    for (;;) {
        while (accept(TokenKind::semicolon)) {
        }
        if (ends_block(token_.kind))
            return statements;
        statements.push_back(statement());
        if (!ends_statement(token_.kind))
            fail_at({last_.end(), 1}, "IDS_SCRIPT_EXPECTED_SEMICOLON"); // there, not at what follows
    }
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
        take();
        result.node = Return{ends_statement(token_.kind) ? nullptr : expression()};
        break;
    default:
        result.node = simple_statement();
    }
    result.span = from_to(first, last_);
    return result;
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

StatementNode Parser::for_statement() {
    ++open_;
    take();
    if (accept(TokenKind::keyEach)) {
        const std::size_t slot = program_.names.slot(text(expect(TokenKind::name)));
        expect(TokenKind::keyIn);
        ExpressionPtr collection = expression();
        return ForEach{slot, std::move(collection), loop_body()};
    }
    const std::size_t slot = program_.names.slot(text(expect(TokenKind::name)));
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

StatementNode Parser::simple_statement() {
    const bool negated =
        token_.kind == TokenKind::keyNot || token_.kind == TokenKind::minus || token_.kind == TokenKind::plus;
    ExpressionPtr left = negated ? expression() : chain();
    const bool compared = mode_ == Mode::console && !negated && !is_assignable(*left);
    if (!negated && !compared && token_.kind == TokenKind::equal) {
        if (!is_assignable(*left))
            fail_at(left->span, "IDS_SCRIPT_NOT_ASSIGNABLE");
        take();
        return Assignment{std::move(left), expression()};
    }
    ExpressionPtr whole = operations(Level::logicalOr, std::move(left));
    if (mode_ == Mode::file && !is_call(*whole))
        fail_at(whole->span, "IDS_SCRIPT_NO_EFFECT");
    return Evaluation{std::move(whole)};
}

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
    case TokenKind::name: {
        const Token name = take();
        if (token_.kind == TokenKind::open)
            return make(name.span, Call{wstring(text(name)), arguments()});
        return make(name.span, Variable{program_.names.slot(text(name))});
    }
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

} // namespace

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
