// SPDX-License-Identifier: Apache-2.0
#include "core/tables/objects/table_parts.h"

#include <core/locales/local_wstring.h>
#include <core/strings/term.h>

#include <array>

namespace core {

GenericValue losses_table(const Losses& losses) {
    // What the user reads above the columns; scripts know them by their English names in every language.
    const auto title = &LocalWString::fromString;
    const auto table = create_value_table();
    table->addColumn(u"Row", TypeDomain(kNumberType), title(u"root='Row'; ru='Номер строки'"));
    table->addColumn(u"Line", TypeDomain{kNumberType, kUndefinedType},
                     title(u"root='Line'; ru='Строка файла'"));
    table->addColumn(u"Column", TypeDomain(kStringType), title(u"root='Column'; ru='Колонка'"));
    table->addColumn(u"Text", TypeDomain(kStringType), title(u"root='Text'; ru='Текст'"));
    table->addColumn(u"Reason", TypeDomain(kStringType), title(u"root='Reason'; ru='Причина'"));
    for (const Loss& loss : losses.first()) {
        const std::array<Value, 5> cells = {Value(loss.row), loss.line != 0 ? Value(loss.line) : Value(),
                                            Value(loss.column), Value(loss.text), Value(loss_text(loss))};
        table->appendRow(cells);
    }
    return Value(table.query<IValue>());
}

} // namespace core
