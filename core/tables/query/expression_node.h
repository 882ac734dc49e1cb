// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/value.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace core {

/// What a part of an expression does with its operands.
enum class ExpressionKind : std::uint8_t {
    literal,    // `value`
    column,     // `name`
    call,       // the function `name`
    negation,   // of a number
    arithmetic, // operands with `operators` between them, of one level
    comparison, // two operands with one operator
    between,    // the first lies from the second to the third
    in,         // the first equals one of the others
    like,       // the first matches the second; the third, if there is one, is the escape
    empty,      // Is Undefined, Is Null: the two are one
    logicalNot, //
    logicalAnd, // of two operands or more
    logicalOr,  //
};

enum class ExpressionOperator : std::uint8_t {
    add,
    subtract,
    multiply,
    divide,
    modulo,
    equal,
    notEqual,
    less,
    lessEqual,
    greater,
    greaterEqual,
};

/// Where something stands in the text of an expression; both count from 1.
struct ExpressionPlace {
    std::uint32_t line = 1;
    std::uint32_t column = 1;
};

struct ExpressionNode;
/// Expressions never change, so they share their parts.
using ExpressionPtr = std::shared_ptr<const ExpressionNode>;

/// An expression over the rows of a table, as it is written: names are not looked up yet. Its parameters are
/// literals already.
struct ExpressionNode {
    ExpressionKind kind = ExpressionKind::literal;
    bool negated = false;       ///< of in, like, between and empty: what "Not" stands before
    std::uint16_t depth = 1;    ///< how many parts stand inside each other, this one counted
    ExpressionPlace place = {}; ///< of the sign or the word that says what it does
    wstring name = {};
    Value value = {};
    std::vector<ExpressionOperator> operators = {};
    std::vector<ExpressionPtr> operands = {};
};

/// How deep the parts of an expression may stand inside each other.
inline constexpr std::size_t kExpressionDepth = 200;
/// How many units the text of an expression may have.
inline constexpr std::size_t kExpressionLength = std::size_t{1} << 20;

/// Returns an expression with the depth that its operands give it. Throws ExpressionException for one that is
/// too deep.
[[nodiscard]] ExpressionPtr make_expression(ExpressionNode node);

} // namespace core
