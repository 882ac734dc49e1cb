// SPDX-License-Identifier: Apache-2.0
#include "core/tables/objects/table_parts.h"

#include <core/strings/term.h>

#include <array>

namespace core {

GenericValue losses_table(const Losses& losses) {
    const auto table = create_value_table();
    table->addColumn(u"Row", TypeDomain(kNumberType));
    table->addColumn(u"Line", TypeDomain{kNumberType, kUndefinedType});
    table->addColumn(u"Column", TypeDomain(kStringType));
    table->addColumn(u"Text", TypeDomain(kStringType));
    table->addColumn(u"Reason", TypeDomain(kStringType));
    for (const Loss& loss : losses.first()) {
        const std::array<Value, 5> cells = {Value(loss.row), loss.line != 0 ? Value(loss.line) : Value(),
                                            Value(loss.column), Value(loss.text), Value(loss_text(loss))};
        table->appendRow(cells);
    }
    return Value(table.query<IValue>());
}

} // namespace core
