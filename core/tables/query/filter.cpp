// SPDX-License-Identifier: Apache-2.0
#include "core/collections/stored_count.h"
#include "core/lists/malformed.h"
#include "core/tables/query/expression_errors.h"
#include "core/tables/query/expression_parser.h"
#include "core/tables/query/expression_text.h"

#include <core/collections/value_array.h>
#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/persistence/persistence.h>
#include <core/runtime/utf8.h>
#include <core/strings/integer_text.h>
#include <core/strings/names.h>
#include <core/strings/trim.h>
#include <core/tables/filter.h>

#include <algorithm>
#include <utility>

namespace core {
namespace {

/// Two conditions in one: a chain of the same kind is made longer, so that nothing grows deep.
ExpressionPtr joined(const ExpressionPtr& a, const ExpressionPtr& b, ExpressionKind kind) {
    ExpressionNode node{.kind = kind};
    for (const ExpressionPtr& part : {a, b}) {
        if (part->kind == kind)
            node.operands.insert(node.operands.end(), part->operands.begin(), part->operands.end());
        else
            node.operands.push_back(part);
    }
    return make_expression(std::move(node));
}

/// Says whether a text is an expression of some kind.
bool parses_as(const wstring& text, const ExpressionParameters& parameters, ExpressionKind kind) {
    try {
        return parse_expression(text, parameters)->kind == kind;
    } catch (const ExpressionException&) {
        return false;
    }
}

/// Says whether two conditions are written the same. Needs no memory.
bool same(const ExpressionNode& a, const ExpressionNode& b) noexcept {
    return a.kind == b.kind && a.negated == b.negated && a.name == b.name && a.value.equals(b.value) &&
           a.operators == b.operators &&
           std::equal(
               a.operands.begin(), a.operands.end(), b.operands.begin(), b.operands.end(),
               [](const ExpressionPtr& one, const ExpressionPtr& other) { return same(*one, *other); });
}

/// The written form of a filter, with the values that the language cannot write.
struct Written {
    explicit Written(const ExpressionNode* condition)
        : text(condition != nullptr ? expression_text(*condition, &values) : wstring()) {}

    std::vector<Value> values;
    wstring text;
};

} // namespace

Filter::Filter(wstring_view text, const ExpressionParameters& parameters)
    : condition_(trim_all(text).empty() ? nullptr : parse_expression(text, parameters)) {}

Filter::Filter(std::string_view text, const ExpressionParameters& parameters)
    : Filter(wstring_view(from_utf8(text)), parameters) {}

Filter Filter::where(wstring_view column, wstring_view comparison, const Value& value) {
    if (!is_valid_name(column))
        fail_expression({}, messages::kExpressionOperand, {message_text("IDS_QUOTED", {wstring(column)})});
    const auto values = value.query<IValueSequence>();
    const bool two = values && values->count() == 2;
    // The two values of Between are not a list to it.
    const ExpressionParameters parameters{
        {u"V", value}, {u"V1", two ? values->get(0) : Value()}, {u"V2", two ? values->get(1) : Value()}};
    wstring text = u"[" + wstring(column) + u"] " + wstring(comparison);
    const bool between = two && parses_as(text + u" &V1 And &V2", parameters, ExpressionKind::between);
    text += between ? u" &V1 And &V2" : u" &V";
    ExpressionPtr condition = parse_expression(text, parameters);
    const bool compares = condition->kind == ExpressionKind::comparison || between ||
                          condition->kind == ExpressionKind::in || condition->kind == ExpressionKind::like;
    if (!compares || condition->operands.front()->kind != ExpressionKind::column)
        fail_expression(
            {}, messages::kExpressionExpected,
            {message_text("IDS_QUOTED", {wstring(comparison)}), message_text("IDS_QUOTED", {u"="})});
    return Filter(std::move(condition));
}

Filter operator&&(const Filter& a, const Filter& b) {
    if (a.isEmpty() || b.isEmpty())
        return a.isEmpty() ? b : a;
    return Filter(joined(a.condition_, b.condition_, ExpressionKind::logicalAnd));
}

Filter operator||(const Filter& a, const Filter& b) {
    if (a.isEmpty() || b.isEmpty())
        return {};
    return Filter(joined(a.condition_, b.condition_, ExpressionKind::logicalOr));
}

Filter operator!(const Filter& filter) {
    ExpressionNode node{.kind = ExpressionKind::logicalNot};
    node.operands.push_back(filter.isEmpty() ? make_expression({.value = Value(true)}) : filter.condition_);
    return Filter(make_expression(std::move(node)));
}

wstring Filter::text() const {
    return condition_ ? expression_text(*condition_) : wstring();
}

bool operator==(const Filter& a, const Filter& b) {
    if (a.condition_ == b.condition_)
        return true;
    return !a.isEmpty() && !b.isEmpty() && same(*a.condition_, *b.condition_);
}

void Filter::serialize(IOutPersistenceStorage* storage) const {
    const Written written(condition());
    ListOutStream& out = storage->listStream();
    out.put(written.text);
    out.put(static_cast<std::int64_t>(written.values.size()));
    for (const Value& value : written.values)
        serialize_value(storage, value);
}

Filter Filter::deserialize(IInPersistenceStorage* storage) {
    ListInStream& in = storage->listStream();
    wstring text;
    in.get(text);
    ExpressionParameters values;
    for (std::int64_t left = get_count(in); left > 0; --left)
        values.push_back({u"V" + string_intto(values.size() + 1), GenericValue::deserialize(storage)});
    try {
        return Filter(wstring_view(text), values);
    } catch (const ExpressionException&) {
        throw_malformed();
    }
}

} // namespace core
