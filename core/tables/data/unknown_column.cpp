// SPDX-License-Identifier: Apache-2.0
#include "core/tables/data/unknown_column.h"

#include <core/tables/errors.h>
#include <core/tables/expression_errors.h>
#include <core/values/errors.h>

namespace core {

void throw_unknown_column(const TableData& data, wstring_view name) {
    NearestName nearest(name);
    for (std::size_t i = 0; i < data.columnCount(); ++i)
        nearest.add(data.column(i).info.name);
    throw_unknown_column(name, nearest);
}

void throw_unknown_column(wstring_view name, const NearestName& nearest) {
    if (nearest.best().empty())
        throw_error<ContextException>(messages::kUnknownColumn, {wstring(name)});
    const wstring text = message_text(messages::kExpressionColumnNear, {wstring(name), nearest.best()});
    throw_with_message(ContextException(text), messages::kUnknownColumn, {wstring(name)});
}

} // namespace core
