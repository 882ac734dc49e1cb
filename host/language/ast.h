// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/language/source.h"
#include "host/language/variables.h"

#include <core/values/generic_value.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

/// A script as a tree. Its depth is bounded by the parser, and what a script can make long without
/// nesting (a sum of many terms, a chain of calls, many ElsIf) is a list in one node, so walking
/// the tree by recursion is safe.
namespace core::script {

struct Expression;
using ExpressionPtr = std::unique_ptr<Expression>;
/// An argument that was left out is null.
using Arguments = std::vector<ExpressionPtr>;

enum class Operator : std::uint8_t {
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
    logicalAnd,
    logicalOr,
};

/// Its value is made once, when the script is read.
struct Literal {
    GenericValue value;
};
struct Variable {
    std::size_t slot; ///< among the names of the procedure, at the top level among those of the program
};
/// No slot of a variable, or no procedure.
inline constexpr std::size_t kNone = static_cast<std::size_t>(-1);
/// A procedure or a function without an object in front: Print(x)
struct Call {
    wstring name;
    Arguments arguments;
    std::size_t procedure = kNone; ///< index in Program::procedures, where the script declares it
    std::size_t slot = kNone;      ///< of a variable of the procedure around it that has this name
    std::size_t site = 0;          ///< its index among such calls of the program
};
/// New Name(x)
struct Creation {
    wstring type;
    Arguments arguments;
};
struct Negation {
    bool logical = false; ///< Not x, otherwise -x
    ExpressionPtr operand;
};
/// Operations of one precedence, carried out from left to right.
struct Operation {
    Operator sign;
    Span span; ///< of the sign
    ExpressionPtr operand;
};
struct Operations {
    ExpressionPtr first;
    std::vector<Operation> rest;
};
/// What follows an object: .Name, .Name(x), [x]
struct Link {
    enum class Kind : std::uint8_t { property, method, element };
    Kind kind = Kind::property;
    Span span; ///< of the name, or of the bracket
    wstring name;
    Arguments arguments; ///< of a method; the index of an element
};
struct Access {
    ExpressionPtr object;
    std::vector<Link> links;
};

struct Expression {
    Span span;
    std::variant<Literal, Variable, Call, Creation, Negation, Operations, Access> node;
};

/// The expression ends in a call, so that it may stand alone.
[[nodiscard]] inline bool is_call(const Expression& expression) {
    if (const auto* const access = std::get_if<Access>(&expression.node))
        return access->links.back().kind == Link::Kind::method;
    return std::holds_alternative<Call>(expression.node);
}

/// The expression is a variable, a property or an element.
[[nodiscard]] inline bool is_assignable(const Expression& expression) {
    if (const auto* const access = std::get_if<Access>(&expression.node))
        return access->links.back().kind != Link::Kind::method;
    return std::holds_alternative<Variable>(expression.node);
}

struct Statement;
using Block = std::vector<Statement>;

struct Assignment {
    ExpressionPtr target; ///< a Variable, or an Access that ends in a property or an element
    ExpressionPtr value;
};
/// A call; in a console any expression, whose value is shown.
struct Evaluation {
    ExpressionPtr expression;
};
struct Branch {
    ExpressionPtr condition;
    Block body;
};
struct If {
    std::vector<Branch> branches;
    Block otherwise;
};
struct ForEach {
    std::size_t slot;
    ExpressionPtr collection;
    Block body;
};
struct ForRange {
    std::size_t slot;
    ExpressionPtr first;
    ExpressionPtr last; ///< still included
    Block body;
};
struct While {
    ExpressionPtr condition;
    Block body;
};
struct Break {};
struct Continue {};
struct Return {
    ExpressionPtr value; ///< null when nothing is returned
};
struct Try {
    Block body;
    Block handler;
    std::size_t error; ///< slot of the failure while it is handled
};
struct Raise {
    Span span;
    ExpressionPtr value;         ///< null for the failure that is being handled
    std::size_t handled = kNone; ///< slot of that failure; kNone outside of handlers
};
/// AddHandler Source.Event, Procedure
struct Handler {
    bool add;
    ExpressionPtr source;
    wstring event;
    Span eventSpan;
    ExpressionPtr procedure;
};

struct Statement {
    Span span;
    std::variant<Assignment, Evaluation, If, ForEach, ForRange, While, Break, Continue, Return, Try, Raise,
                 Handler>
        node;
};

struct Parameter {
    bool byValue = false;
    std::optional<GenericValue> byDefault;
};

/// Where a procedure finds what a name of it stands for.
struct Binding {
    enum class Kind : std::uint8_t {
        own,   ///< a variable of the call alone
        read,  ///< the procedure does not assign to it: the variable of the script is read
        shared ///< the variable of the script, which `Var` at the top level declares
    };
    Kind kind = Kind::own;
    std::size_t slot = kNone; ///< of the script's variable
};

struct Procedure {
    wstring name;
    bool returns = false; ///< a Function
    bool exported = false;
    std::vector<Parameter> parameters; ///< their slots are the first ones
    Variables names;
    std::vector<Binding> bindings; ///< by slot
    std::vector<bool> assigned;    ///< by slot: whether a statement gives the variable a value
    Block body;

    /// How many arguments a call cannot do without.
    [[nodiscard]] std::size_t needed() const noexcept {
        std::size_t count = parameters.size();
        while (count > 0 && parameters[count - 1].byDefault)
            --count;
        return count;
    }
};

/// Import "file"
struct Import {
    Span span; ///< of the file's name
    wstring file;
};

/// What compiling makes. It never changes, so that many threads can run it.
struct Program {
    std::shared_ptr<const Source> source;
    std::vector<Import> imports;
    std::vector<Procedure> procedures;
    Variables procedureNames;          ///< the slot is the index in `procedures`
    Variables names;                   ///< of the variables at the top level, each with its slot
    std::vector<std::size_t> declared; ///< slots of the variables that `Var` declares
    std::size_t calls = 0;             ///< how many calls by name there are
    Block body;
};

} // namespace core::script
