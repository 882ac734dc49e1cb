// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/function_names.h"

#include "core/tables/query/expression_parser.h"
#include "core/tables/query/expression_text.h"

#include <core/strings/compare.h>
#include <core/strings/integer_text.h>
#include <core/tables/errors.h>
#include <core/values/errors.h>

namespace core {
namespace {

template <class Kind>
struct FunctionName {
    Kind kind;
    wstring_view english;
    wstring_view russian;
    std::size_t least; ///< how many arguments it takes
    std::size_t most;
};

constexpr FunctionName<AggregateKind> kAggregates[] = {
    {AggregateKind::count, u"Count", u"Количество", 0, 1},
    {AggregateKind::countDistinct, u"CountDistinct", u"КоличествоРазличных", 1, 1},
    {AggregateKind::sum, u"Sum", u"Сумма", 1, 1},
    {AggregateKind::min, u"Min", u"Мин", 1, 1},
    {AggregateKind::max, u"Max", u"Макс", 1, 1},
    {AggregateKind::average, u"Average", u"Среднее", 1, 1},
    {AggregateKind::first, u"First", u"Первое", 1, 1},
    {AggregateKind::last, u"Last", u"Последнее", 1, 1},
    {AggregateKind::list, u"List", u"Список", 1, 1},
};

constexpr FunctionName<WindowKind> kWindows[] = {
    {WindowKind::runningTotal, u"RunningTotal", u"НарастающийИтог", 1, 1},
    {WindowKind::rowNumber, u"RowNumber", u"НомерСтроки", 0, 0},
    {WindowKind::rank, u"Rank", u"Ранг", 0, 0},
    {WindowKind::denseRank, u"DenseRank", u"ПлотныйРанг", 0, 0},
    {WindowKind::difference, u"Difference", u"Разность", 1, 1},
    {WindowKind::lag, u"Lag", u"Предыдущее", 1, 2},
    {WindowKind::lead, u"Lead", u"Следующее", 1, 2},
    {WindowKind::share, u"Share", u"Доля", 1, 1},
};

/// A function as a list names it.
struct NamedCall {
    wstring text;                   ///< all of it, without the name
    wstring function;               ///< empty for a column alone
    std::vector<wstring> arguments; ///< as they are written; for a column alone its name
    wstring name;                   ///< of the result; empty where none is given
};

/// The messages about a call that is not an aggregate, or not a window function.
struct Refusals {
    const char* unknown;
    const char* malformed;
};
constexpr Refusals kNoAggregate = {messages::kAggregateUnknown, messages::kCallMalformed};
constexpr Refusals kNoWindow = {messages::kWindowUnknown, "IDS_VT_WINDOW_MALFORMED"};

/// The name of a column, or the text of an expression.
wstring argument_text(const ExpressionNode& argument) {
    return argument.kind == ExpressionKind::column ? argument.name : expression_text(argument);
}

std::vector<NamedCall> read_calls(wstring_view list, const Refusals& refusals) {
    std::vector<NamedCall> calls;
    for (NamedExpression& item : parse_named_list(list)) {
        const ExpressionNode& node = *item.expression;
        NamedCall call{expression_text(node), {}, {}, std::move(item.name)};
        if (node.kind == ExpressionKind::call) {
            call.function = node.name;
            for (const ExpressionPtr& operand : node.operands)
                call.arguments.push_back(argument_text(*operand));
        } else if (node.kind == ExpressionKind::column) {
            call.arguments = {node.name};
        } else {
            throw_error<ContextException>(refusals.malformed, {call.text});
        }
        calls.push_back(std::move(call));
    }
    return calls;
}

template <class Kind, std::size_t count>
const FunctionName<Kind>& function_of(const NamedCall& call, const FunctionName<Kind> (&names)[count],
                                      const Refusals& refusals) {
    for (const FunctionName<Kind>& name : names) {
        if (compare_nocase(call.function, name.english) != 0 &&
            compare_nocase(call.function, name.russian) != 0)
            continue;
        if (call.arguments.size() < name.least || call.arguments.size() > name.most)
            throw_error<ContextException>(refusals.malformed, {call.text});
        return name;
    }
    throw_error<ContextException>(refusals.unknown, {call.function});
}

wstring first_argument(const NamedCall& call) {
    return call.arguments.empty() ? wstring() : call.arguments.front();
}

} // namespace

std::vector<Aggregate> read_aggregates(wstring_view list) {
    std::vector<Aggregate> aggregates;
    for (const NamedCall& call : read_calls(list, kNoAggregate)) {
        const AggregateKind kind =
            call.function.empty() ? AggregateKind::sum : function_of(call, kAggregates, kNoAggregate).kind;
        const bool named = !call.name.empty() || !call.arguments.empty();
        aggregates.push_back({kind, first_argument(call), named ? call.name : call.function});
    }
    return aggregates;
}

std::vector<WindowFunction> read_windows(wstring_view list) {
    std::vector<WindowFunction> functions;
    for (const NamedCall& call : read_calls(list, kNoWindow)) {
        const WindowKind kind = function_of(call, kWindows, kNoWindow).kind;
        functions.push_back({kind, first_argument(call), call.name.empty() ? call.function : call.name});
        if (call.arguments.size() < 2)
            continue;
        const auto distance = string_toint<std::uint32_t>(call.arguments[1]);
        if (!distance)
            throw_error<ContextException>(kNoWindow.malformed, {call.text});
        functions.back().distance = *distance;
    }
    return functions;
}

} // namespace core
