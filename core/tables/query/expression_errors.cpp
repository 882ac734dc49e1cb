// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/expression_errors.h"

#include <core/strings/integer_text.h>

#include <vector>

namespace core {
namespace {

[[noreturn]] void fail(ExpressionPlace place, const wstring& reason, const char* id,
                       std::span<const wstring> params) {
    ExpressionException failure(
        message_text(messages::kExpressionAt, {string_intto(place.line), string_intto(place.column), reason}),
        reason, place.line, place.column);
    failure.setMessage(id, params);
    throw failure;
}

} // namespace

void fail_expression(ExpressionPlace place, const char* id, std::initializer_list<wstring> params) {
    fail(place, message_text(id, params), id, params);
}

void fail_expression(ExpressionPlace place, const Exception& failure) {
    fail(place, failure.description(), failure.messageId(), failure.parameters());
}

void fail_in_row(const ExpressionException& failure, std::size_t row) {
    const auto line = static_cast<std::uint32_t>(failure.line());
    const auto column = static_cast<std::uint32_t>(failure.column());
    ExpressionException located(
        message_text(messages::kExpressionAtRow,
                     {string_intto(line), string_intto(column), failure.reason(), string_intto(row + 1)}),
        failure.reason(), line, column, row);
    located.setMessage(failure.messageId(), failure.parameters());
    throw located;
}

} // namespace core
