// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/expression_parser.h"

#include "core/tables/query/expression_errors.h"
#include "core/tables/query/expression_lexer.h"

#include <core/collections/value_array.h>
#include <core/dates/date.h>
#include <core/strings/compare.h>
#include <core/strings/integer_text.h>
#include <core/strings/names.h>
#include <core/strings/split.h>
#include <core/tables/value_list.h>

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <utility>

namespace core {
namespace {

using Kind = ExpressionKind;
using Token = ExpressionTokenKind;
using Operator = ExpressionOperator;
using Word = ExpressionWord;

/// A parser by recursive descent, one function for each level of operators.
class Parser {
  public:
    Parser(wstring_view text, const ExpressionParameters& parameters)
        : lexer_(text), parameters_(parameters), token_(lexer_.next()) {}

    [[nodiscard]] ExpressionPtr expression() { return chain(Word::opOr, Kind::logicalOr); }
    [[nodiscard]] bool atEnd() const noexcept { return token_.kind == Token::end; }
    bool accept(Word word) {
        if (token_.word != word)
            return false;
        take();
        return true;
    }
    bool accept(wstring_view sign) {
        if (!isSign(sign))
            return false;
        take();
        return true;
    }
    [[nodiscard]] wstring name() {
        if (token_.kind != Token::name || !is_valid_name(token_.text))
            fail_expression(token_.place, messages::kExpressionName, {found()});
        return wstring(take().text);
    }
    void expectEnd() {
        if (!atEnd())
            fail_expression(token_.place, messages::kExpressionExpected,
                            {found(), message_text("IDS_END_OF_TEXT")});
    }

  private:
    /// Counts how deep functions call each other, so that no text overflows the stack.
    class Nested {
      public:
        explicit Nested(Parser& parser) : depth_(parser.depth_) {
            if (++depth_ > kExpressionDepth) {
                --depth_;
                fail_expression(parser.token_.place, messages::kExpressionDepth,
                                {string_intto(kExpressionDepth)});
            }
        }
        Nested(const Nested&) = delete;
        Nested& operator=(const Nested&) = delete;
        ~Nested() { --depth_; }

      private:
        std::size_t& depth_;
    };

    ExpressionToken take() { return std::exchange(token_, lexer_.next()); }
    [[nodiscard]] bool isSign(wstring_view sign) const noexcept {
        return token_.kind == Token::sign && token_.text == sign;
    }
    /// What stands here, for a message.
    [[nodiscard]] wstring found() const {
        if (atEnd())
            return message_text("IDS_END_OF_TEXT");
        constexpr std::size_t kShown = 40;
        return quoted(token_.text.substr(0, kShown));
    }
    [[nodiscard]] static wstring quoted(wstring_view text) {
        return message_text("IDS_QUOTED", {wstring(text)});
    }
    /// Fails because a word is not there, which is named in both languages.
    [[noreturn]] void failWithout(Word word) const {
        const wstring both = wstring(word_text(word)).append(u"/").append(word_text(word, kRussian));
        fail_expression(token_.place, messages::kExpressionExpected, {found(), quoted(both)});
    }
    void expect(wstring_view sign) {
        if (!accept(sign))
            fail_expression(token_.place, messages::kExpressionExpected, {found(), quoted(sign)});
    }
    void expect(Word word) {
        if (!accept(word))
            failWithout(word);
    }

    /// Operands with And or Or between them.
    ExpressionPtr chain(Word word, Kind kind) {
        ExpressionPtr first = word == Word::opOr ? chain(Word::opAnd, Kind::logicalAnd) : negation();
        if (token_.word != word)
            return first;
        ExpressionNode node{.kind = kind, .place = token_.place};
        node.operands.push_back(std::move(first));
        while (accept(word))
            node.operands.push_back(word == Word::opOr ? chain(Word::opAnd, Kind::logicalAnd) : negation());
        return make_expression(std::move(node));
    }
    ExpressionPtr negation() {
        if (token_.word != Word::opNot)
            return comparison();
        const Nested nested(*this);
        ExpressionNode node{.kind = Kind::logicalNot, .place = take().place};
        node.operands.push_back(negation());
        return make_expression(std::move(node));
    }

    ExpressionPtr comparison() {
        ExpressionPtr first = sum();
        ExpressionNode node{.place = token_.place};
        node.operands.push_back(std::move(first));
        if (const auto sign = comparisonSign()) {
            take();
            node.kind = Kind::comparison;
            node.operators.push_back(*sign);
            node.operands.push_back(sum());
        } else if (accept(Word::is)) {
            node.kind = Kind::empty;
            node.negated = accept(Word::opNot);
            if (!accept(Word::undefined) && !accept(Word::null))
                failWithout(Word::undefined);
        } else {
            node.negated = accept(Word::opNot);
            if (!condition(node))
                return node.operands.front();
        }
        return make_expression(std::move(node));
    }
    /// Reads what stands behind an operand: In, Between or Like. Returns false where none of these does.
    bool condition(ExpressionNode& node) {
        if (accept(Word::in)) {
            node.kind = Kind::in;
            if (token_.kind == Token::parameter)
                addElements(node, primary());
            else
                list(node);
        } else if (accept(Word::between)) {
            node.kind = Kind::between;
            node.operands.push_back(sum());
            expect(Word::opAnd);
            node.operands.push_back(sum());
        } else if (accept(Word::like)) {
            node.kind = Kind::like;
            node.operands.push_back(sum());
            if (accept(Word::escape))
                node.operands.push_back(sum());
        } else {
            if (node.negated)
                failWithout(Word::in);
            return false;
        }
        return true;
    }
    void list(ExpressionNode& node) {
        const Nested nested(*this);
        expect(u"(");
        if (accept(u")"))
            return;
        do
            addElements(node, sum());
        while (accept(u","));
        expect(u")");
    }
    /// A collection stands for its elements.
    static void addElements(ExpressionNode& node, ExpressionPtr element) {
        const auto add = [&](const Value& value) {
            node.operands.push_back(make_expression({.place = element->place, .value = value}));
        };
        if (const auto values = element->value.query<IValueSequence>()) {
            for (const Value& value : values->values())
                add(value);
        } else if (const auto items = element->value.query<IValueList>()) {
            for (std::size_t i = 0; i < items->count(); ++i)
                add(items->get(i).value);
        } else {
            node.operands.push_back(std::move(element));
        }
    }

    ExpressionPtr sum() {
        static constexpr std::array<Operator, 2> kSigns{Operator::add, Operator::subtract};
        return arithmetic(kSigns, [this] { return product(); });
    }
    ExpressionPtr product() {
        static constexpr std::array<Operator, 3> kSigns{Operator::multiply, Operator::divide,
                                                        Operator::modulo};
        return arithmetic(kSigns, [this] { return signedOperand(); });
    }
    template <class Next>
    ExpressionPtr arithmetic(std::span<const Operator> signs, Next next) {
        const auto sign = [&]() -> std::optional<Operator> {
            for (const Operator candidate : signs)
                if (isSign(operator_text(candidate)))
                    return candidate;
            return std::nullopt;
        };
        ExpressionPtr first = next();
        if (!sign())
            return first;
        ExpressionNode node{.kind = Kind::arithmetic, .place = token_.place};
        node.operands.push_back(std::move(first));
        while (const auto one = sign()) {
            take();
            node.operators.push_back(*one);
            node.operands.push_back(next());
        }
        return make_expression(std::move(node));
    }
    ExpressionPtr signedOperand() {
        if (accept(u"+"))
            return nestedOperand();
        if (!isSign(u"-"))
            return primary();
        const ExpressionPlace place = take().place;
        ExpressionPtr operand = nestedOperand();
        if (operand->kind == Kind::literal && operand->value.kind() == ValueKind::number)
            return make_expression({.place = place, .value = Value(-*operand->value.asNumeric())});
        ExpressionNode node{.kind = Kind::negation, .place = place};
        node.operands.push_back(std::move(operand));
        return make_expression(std::move(node));
    }
    ExpressionPtr nestedOperand() {
        const Nested nested(*this);
        return signedOperand();
    }

    ExpressionPtr primary() {
        switch (token_.kind) {
        case Token::number:
            return literal([this] { return Value(Numeric::fromString(token_.text)); });
        case Token::text:
            return literal([this] { return Value(unquoted(token_.text)); });
        case Token::date:
            return literal([this] { return Value(date()); });
        case Token::parameter:
            return literal([this] { return parameter(); });
        case Token::name:
            return named();
        default:
            break;
        }
        if (!isSign(u"("))
            fail_expression(token_.place, messages::kExpressionOperand, {found()});
        const Nested nested(*this);
        take();
        ExpressionPtr inner = expression();
        expect(u")");
        return inner;
    }
    template <class Make>
    ExpressionPtr literal(Make make) {
        const ExpressionPlace place = token_.place;
        try {
            ExpressionPtr made = make_expression({.place = place, .value = make()});
            take();
            return made;
        } catch (const ExpressionException&) {
            throw;
        } catch (const Exception& failure) { // a number as long as none may be
            fail_expression(place, failure);
        }
    }
    ExpressionPtr named() {
        switch (token_.word) {
        case Word::isTrue:
            return literal([] { return Value(true); });
        case Word::isFalse:
            return literal([] { return Value(false); });
        case Word::undefined:
            return literal([] { return Value(); });
        case Word::null:
            return literal([] { return Value::null(); });
        case Word::opAnd:
        case Word::opOr:
        case Word::opNot:
            fail_expression(token_.place, messages::kExpressionOperand, {found()});
        default:
            break;
        }
        const ExpressionToken token = take();
        ExpressionNode node{.kind = Kind::column, .place = token.place, .name = wstring(token.text)};
        if (isSign(u"("))
            arguments(node);
        return make_expression(std::move(node));
    }
    void arguments(ExpressionNode& node) {
        const Nested nested(*this);
        node.kind = Kind::call;
        take();
        if (accept(u")"))
            return;
        if (accept(u"*")) { // Count(*)
            expect(u")");
            return;
        }
        do
            node.operands.push_back(expression());
        while (accept(u","));
        expect(u")");
    }

    [[nodiscard]] std::optional<Operator> comparisonSign() const noexcept {
        if (token_.kind != Token::sign)
            return std::nullopt;
        for (auto sign = Operator::equal; sign <= Operator::greaterEqual;
             sign = static_cast<Operator>(static_cast<std::uint8_t>(sign) + 1))
            if (token_.text == operator_text(sign))
                return sign;
        return std::nullopt;
    }
    [[nodiscard]] static wstring unquoted(wstring_view text) {
        wstring value;
        value.reserve(text.size());
        for (std::size_t i = 0; i < text.size(); ++i) {
            value += text[i];
            i += text[i] == u'"' ? 1U : 0U;
        }
        return value;
    }
    [[nodiscard]] Date date() const {
        wstring digits(token_.text);
        const bool whole = digits.size() == 8 || digits.size() == 14;
        digits.resize(14, u'0'); // a day alone is midnight
        const wchar* end = nullptr;
        const Date date = Date::fromString(digits, &end);
        if (!whole || end != digits.data() + digits.size())
            fail_expression(token_.place, messages::kExpressionDate);
        return date;
    }
    [[nodiscard]] Value parameter() const {
        const auto found = std::find_if(parameters_.begin(), parameters_.end(), [this](const auto& one) {
            return compare_nocase(one.name, token_.text) == 0;
        });
        if (found == parameters_.end())
            fail_expression(token_.place, messages::kExpressionParameter, {wstring(token_.text)});
        return found->value;
    }

    ExpressionLexer lexer_;
    const ExpressionParameters& parameters_;
    ExpressionToken token_;
    std::size_t depth_ = 0;
};

} // namespace

ExpressionPtr make_expression(ExpressionNode node) {
    std::size_t below = 0;
    for (const ExpressionPtr& operand : node.operands)
        below = std::max<std::size_t>(below, operand->depth);
    if (below >= kExpressionDepth)
        fail_expression(node.place, messages::kExpressionDepth, {string_intto(kExpressionDepth)});
    node.depth = static_cast<std::uint16_t>(below + 1);
    return std::make_shared<const ExpressionNode>(std::move(node));
}

ExpressionPtr parse_expression(wstring_view text, const ExpressionParameters& parameters) {
    Parser parser(text, parameters);
    ExpressionPtr expression = parser.expression();
    parser.expectEnd();
    return expression;
}

bool has_expression(wstring_view list) {
    if (list.find_first_of(u"()+-*/%=<>\"'[]") != wstring_view::npos)
        return true;
    const auto words = string_tokenize(list, u" \t\r\n,");
    return std::any_of(words.begin(), words.end(),
                       [](wstring_view word) { return expression_word(word) == ExpressionWord::as; });
}

std::vector<NamedExpression> parse_named_list(wstring_view text, const ExpressionParameters& parameters) {
    Parser parser(text, parameters);
    std::vector<NamedExpression> list;
    if (parser.atEnd())
        return list;
    do {
        list.push_back({parser.expression(), {}});
        if (parser.accept(ExpressionWord::as))
            list.back().name = parser.name();
    } while (parser.accept(u","));
    parser.expectEnd();
    return list;
}

std::vector<SortExpression> parse_sort_list(wstring_view text, const ExpressionParameters& parameters) {
    Parser parser(text, parameters);
    std::vector<SortExpression> list;
    do {
        list.push_back({parser.expression()});
        list.back().descending = parser.accept(ExpressionWord::descending);
        if (!list.back().descending)
            parser.accept(ExpressionWord::ascending);
    } while (parser.accept(u","));
    parser.expectEnd();
    return list;
}

} // namespace core
