// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/expression_text.h"

#include "core/tables/query/expression_words.h"

#include <core/strings/integer_text.h>
#include <core/strings/names.h>

namespace core {
namespace {

using Kind = ExpressionKind;
using Word = ExpressionWord;

/// The levels of the grammar: an operand of a lower level than its place needs parentheses.
enum class Level : std::uint8_t { any, logicalAnd, logicalNot, comparison, sum, product, sign, primary };

constexpr Level above(Level level) noexcept {
    return static_cast<Level>(static_cast<std::uint8_t>(level) + 1);
}

Level level_of(const ExpressionNode& node) noexcept {
    switch (node.kind) {
    case Kind::logicalOr:
        return Level::any;
    case Kind::logicalAnd:
        return Level::logicalAnd;
    case Kind::logicalNot:
        return Level::logicalNot;
    case Kind::comparison:
    case Kind::between:
    case Kind::in:
    case Kind::like:
    case Kind::empty:
        return Level::comparison;
    case Kind::arithmetic:
        return node.operators.front() <= ExpressionOperator::subtract ? Level::sum : Level::product;
    case Kind::negation:
        return Level::sign;
    case Kind::literal: {
        const NumericRef number = node.value.asNumeric();
        return number && number->sign() < 0 ? Level::sign : Level::primary;
    }
    default:
        return Level::primary;
    }
}

class Printer {
  public:
    explicit Printer(std::vector<Value>* values) noexcept : values_(values) {}

    void print(const ExpressionNode& node, Level place) {
        const Level level = level_of(node);
        if (level < place)
            text_ += u'(';
        printBare(node, level);
        if (level < place)
            text_ += u')';
    }
    [[nodiscard]] wstring take() noexcept { return std::move(text_); }

  private:
    void printBare(const ExpressionNode& node, Level level) {
        switch (node.kind) {
        case Kind::literal:
            literal(node.value);
            return;
        case Kind::column:
            name(node.name);
            return;
        case Kind::call:
            text_ += node.name;
            list(node, 0);
            return;
        case Kind::negation:
            text_ += u'-';
            print(*node.operands[0], Level::sign);
            return;
        case Kind::logicalNot:
            word(Word::opNot);
            text_ += u' ';
            print(*node.operands[0], Level::logicalNot);
            return;
        case Kind::arithmetic:
        case Kind::comparison:
        case Kind::logicalAnd:
        case Kind::logicalOr:
            chain(node, level);
            return;
        default:
            condition(node);
        }
    }
    void chain(const ExpressionNode& node, Level level) {
        for (std::size_t i = 0; i < node.operands.size(); ++i) {
            if (i != 0) {
                text_ += u' ';
                if (node.operators.empty())
                    word(node.kind == Kind::logicalAnd ? Word::opAnd : Word::opOr);
                else
                    text_ += operator_text(node.operators[i - 1]);
                text_ += u' ';
            }
            print(*node.operands[i], above(level));
        }
    }
    void condition(const ExpressionNode& node) {
        print(*node.operands[0], Level::sum);
        text_ += u' ';
        if (node.kind == Kind::empty) {
            text_ += node.negated ? u"Is Not Undefined" : u"Is Undefined";
            return;
        }
        if (node.negated)
            text_ += u"Not ";
        if (node.kind == Kind::in) {
            text_ += u"In ";
            list(node, 1);
            return;
        }
        text_ += node.kind == Kind::between ? u"Between " : u"Like ";
        print(*node.operands[1], Level::sum);
        if (node.operands.size() > 2) {
            text_ += node.kind == Kind::between ? u" And " : u" Escape ";
            print(*node.operands[2], Level::sum);
        }
    }
    void list(const ExpressionNode& node, std::size_t first) {
        text_ += u'(';
        for (std::size_t i = first; i < node.operands.size(); ++i) {
            text_ += i != first ? u", " : u"";
            print(*node.operands[i], node.kind == Kind::in ? Level::sum : Level::any);
        }
        text_ += u')';
    }
    void word(Word word) { text_ += word_text(word); }
    void name(const wstring& name) {
        const bool bare = is_valid_name(name) && expression_word(name) == Word::none;
        text_ += bare ? name : u"[" + name + u"]";
    }
    void literal(const Value& value) {
        switch (value.kind()) {
        case ValueKind::undefined:
            return word(Word::undefined);
        case ValueKind::null:
            return word(Word::null);
        case ValueKind::boolean:
            return word(value.isTrue() ? Word::isTrue : Word::isFalse);
        case ValueKind::number:
            text_ += value.asNumeric()->toString();
            return;
        case ValueKind::string:
            text_ += u'"';
            for (const wchar unit : *value.asString())
                text_.append(unit == u'"' ? 2 : 1, unit);
            text_ += u'"';
            return;
        case ValueKind::date:
            if (const Date date = *value.asDate(); date.isInRange() && date.ticks() % kTicksPerSecond == 0) {
                wchar digits[14];
                date.toString(digits);
                text_ += u'\'';
                text_.append(digits, date.ticks() % kTicksPerDay == 0 ? 8 : 14);
                text_ += u'\'';
                return;
            }
            break;
        default:
            break;
        }
        if (values_ == nullptr) {
            text_ += value.presentation();
            return;
        }
        values_->push_back(value);
        text_ += u"&V" + string_intto(values_->size());
    }

    std::vector<Value>* values_;
    wstring text_;
};

} // namespace

wstring expression_text(const ExpressionNode& expression, std::vector<Value>* values) {
    Printer printer(values);
    printer.print(expression, Level::any);
    return printer.take();
}

} // namespace core
