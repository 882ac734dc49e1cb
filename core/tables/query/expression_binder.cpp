// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/expression_binder.h"

#include "core/tables/query/bound_expression.h"
#include "core/tables/query/expression_errors.h"
#include "core/tables/query/expression_steps.h"
#include "core/tables/query/standard_dates.h"

#include <core/strings/integer_text.h>
#include <core/strings/nearest.h>
#include <core/tables/errors.h>

namespace core {
namespace {

using Kind = ExpressionKind;

/// A step and the columns that it depends on.
struct Bound {
    StepPtr step;
    const CellColumn* column = nullptr; ///< the only one
    bool many = false;
};

class Binder {
  public:
    explicit Binder(const TableData& data) noexcept : data_(data) {}

    [[nodiscard]] StepPtr bind(const ExpressionNode& node) { return remembered(bound(node)); }

  private:
    Bound bound(const ExpressionNode& node) {
        switch (node.kind) {
        case Kind::literal:
            return {literal_step(node.value, node.place)};
        case Kind::column:
            return column(node);
        default:
            break;
        }
        Bound result;
        std::vector<Bound> operands;
        operands.reserve(node.operands.size());
        for (const ExpressionPtr& operand : node.operands)
            operands.push_back(bound(*operand));
        for (const Bound& operand : operands) {
            result.many =
                result.many || operand.many ||
                (operand.column != nullptr && result.column != nullptr && operand.column != result.column);
            result.column = result.column != nullptr ? result.column : operand.column;
        }
        Steps steps;
        for (Bound& operand : operands)
            steps.push_back(result.many ? remembered(std::move(operand)) : std::move(operand.step));
        result.step = made(node, std::move(steps));
        if (result.column == nullptr)
            fold(result.step);
        return result;
    }
    Bound column(const ExpressionNode& node) {
        const auto position = data_.findColumn(node.name);
        if (!position)
            unknownColumn(node);
        const TableColumn& column = data_.column(*position);
        return {column_step(column.cells, column_kinds(column), node.place), &column.cells};
    }
    StepPtr made(const ExpressionNode& node, Steps steps) {
        switch (node.kind) {
        case Kind::call:
            return call(node, std::move(steps));
        case Kind::negation:
            return negation_step(std::move(steps[0]), node.place);
        case Kind::arithmetic:
            return arithmetic_step(std::move(steps), node.operators, node.place);
        case Kind::comparison:
            return comparison_step(node.operators[0], std::move(steps[0]), std::move(steps[1]), node.place);
        case Kind::between:
            return between_step(std::move(steps), node.negated, node.place);
        case Kind::in:
            return in_step(std::move(steps), node.negated, node.place);
        case Kind::like:
            return like_step(std::move(steps), node.negated, node.place);
        case Kind::empty:
            return empty_step(std::move(steps[0]), node.negated, node.place);
        case Kind::logicalNot:
            return not_step(std::move(steps[0]), node.place);
        default:
            return chain_step(std::move(steps), node.kind == Kind::logicalOr, node.place);
        }
    }
    static StepPtr call(const ExpressionNode& node, Steps steps) {
        const ExpressionFunction* const function = find_expression_function(node.name);
        if (function == nullptr)
            unknownFunction(node);
        const auto count = static_cast<int>(steps.size());
        if (count < function->least || count > function->most) {
            wstring taken = string_intto(function->least);
            if (function->most != function->least)
                taken +=
                    function->most == ExpressionFunction::kMany ? u"…" : u"–" + string_intto(function->most);
            fail_expression(node.place, messages::kExpressionArgumentCount,
                            {node.name, taken, string_intto(count)});
        }
        return call_step(*function, std::move(steps), node.place);
    }

    /// What depends on one column of codes is computed once for each of its values.
    static StepPtr remembered(Bound bound) {
        const bool coded = !bound.many && bound.column != nullptr &&
                           bound.column->form() == CellColumn::Form::coded && bound.step->cells() == nullptr;
        return coded ? memo_step(std::move(bound.step), *bound.column) : std::move(bound.step);
    }
    /// What depends on no column is computed now. A failure there concerns the rows that come to it, if any.
    static void fold(StepPtr& step) {
        try {
            step = literal_step(step->value(0), step->place());
        } catch (const ExpressionException&) {
        }
    }

    [[noreturn]] void unknownColumn(const ExpressionNode& node) const {
        NearestName nearest(node.name);
        for (std::size_t i = 0; i < data_.columnCount(); ++i)
            nearest.add(data_.column(i).info.name);
        if (nearest.best().empty())
            fail_expression(node.place, messages::kUnknownColumn, {node.name});
        fail_expression(node.place, messages::kExpressionColumnNear, {node.name, nearest.best()});
    }
    [[noreturn]] static void unknownFunction(const ExpressionNode& node) {
        NearestName nearest(node.name);
        for (const ExpressionFunction& function : expression_functions()) {
            nearest.add(wstring_view(function.names[kEnglish]));
            nearest.add(wstring_view(function.names[kRussian]));
        }
        if (nearest.best().empty())
            fail_expression(node.place, messages::kExpressionFunction, {node.name});
        fail_expression(node.place, messages::kExpressionFunctionNear, {node.name, nearest.best()});
    }

    const TableData& data_;
};

} // namespace

StepPtr bind_expression(const TableData& data, const ExpressionNode& expression) {
    const ExpressionPtr dated = with_standard_dates(expression);
    return Binder(data).bind(dated ? *dated : expression);
}

} // namespace core
