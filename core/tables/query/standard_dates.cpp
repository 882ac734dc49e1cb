// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/standard_dates.h"

#include "core/tables/query/expression_errors.h"

#include <core/objects/standard_periods.h>
#include <core/runtime/exception.h>

#include <algorithm>
#include <optional>
#include <span>
#include <utility>

namespace core {
namespace {

using Kind = ExpressionKind;

bool is_period(const ExpressionPtr& operand) noexcept {
    return operand->kind == Kind::literal && as_standard_period(operand->value) != nullptr;
}

ExpressionPtr literal(Date date, ExpressionPlace place) {
    return make_expression({.place = place, .value = Value(date)});
}

class Dating {
  public:
    /// Returns null where nothing changes.
    ExpressionPtr changed(const ExpressionNode& node) {
        if (node.kind == Kind::literal)
            return changedLiteral(node);
        std::vector<ExpressionPtr> operands;
        for (std::size_t i = 0; i < node.operands.size(); ++i) {
            if (ExpressionPtr operand = changed(*node.operands[i])) {
                if (operands.empty())
                    operands = node.operands;
                operands[i] = std::move(operand);
            }
        }
        const bool same = operands.empty();
        const auto& used = same ? node.operands : operands;
        if (node.kind == Kind::in && std::any_of(used.begin() + 1, used.end(), is_period))
            return inPeriods(node, used);
        if (same)
            return nullptr;
        ExpressionNode copy = node;
        copy.operands = std::move(operands);
        return make_expression(std::move(copy));
    }

  private:
    ExpressionPtr changedLiteral(const ExpressionNode& node) {
        const StandardBeginningDate* const beginning = as_standard_beginning_date(node.value);
        return beginning != nullptr ? literal(beginning->date(today(node.place)), node.place) : nullptr;
    }

    /// One of several periods and values is: between the ends of a period, or another, or one of the values.
    ExpressionPtr inPeriods(const ExpressionNode& node, std::span<const ExpressionPtr> operands) {
        if (operands.size() == 2)
            return between(operands[0], *operands[1], node.negated);
        ExpressionNode any{.kind = Kind::logicalOr, .place = node.place};
        ExpressionNode values{.kind = Kind::in, .place = node.place};
        values.operands.push_back(operands[0]);
        for (const ExpressionPtr& operand : operands.subspan(1)) {
            if (is_period(operand))
                any.operands.push_back(between(operands[0], *operand, false));
            else
                values.operands.push_back(operand);
        }
        if (values.operands.size() > 1)
            any.operands.push_back(make_expression(std::move(values)));
        ExpressionPtr all = make_expression(std::move(any));
        if (!node.negated)
            return all;
        ExpressionNode opposite{.kind = Kind::logicalNot, .place = node.place};
        opposite.operands.push_back(std::move(all));
        return make_expression(std::move(opposite));
    }

    ExpressionPtr between(const ExpressionPtr& value, const ExpressionNode& period, bool negated) {
        const DatePeriod dates = as_standard_period(period.value)->dates(today(period.place));
        ExpressionNode node{.kind = Kind::between, .negated = negated, .place = period.place};
        node.operands = {value, literal(dates.begin, period.place), literal(dates.lastTick(), period.place)};
        return make_expression(std::move(node));
    }

    Date today(ExpressionPlace place) {
        try {
            if (!today_)
                today_ = Date::getCurrentDate();
        } catch (const Exception& failure) { // the time zone
            fail_expression(place, failure);
        }
        return *today_;
    }

    std::optional<Date> today_;
};

} // namespace

ExpressionPtr with_standard_dates(const ExpressionNode& expression) {
    return Dating().changed(expression);
}

} // namespace core
