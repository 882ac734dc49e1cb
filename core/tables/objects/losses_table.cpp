// SPDX-License-Identifier: Apache-2.0
#include "core/tables/objects/table_parts.h"

#include <core/locales/local_wstring.h>
#include <core/strings/term.h>

#include <array>

namespace core {
namespace {

/// What the user reads above a column; scripts know it by its English name in every language.
LocalWString title(const wchar* english, const wchar* russian) {
    LocalWString both(english);
    both.set(Locale("ru"), russian);
    return both;
}

} // namespace

GenericValue losses_table(const Losses& losses) {
    const auto table = create_value_table();
    table->addColumn(u"Row", TypeDomain(kNumberType), title(u"Row", u"Номер строки"));
    table->addColumn(u"Line", TypeDomain{kNumberType, kUndefinedType}, title(u"Line", u"Строка файла"));
    table->addColumn(u"Column", TypeDomain(kStringType), title(u"Column", u"Колонка"));
    table->addColumn(u"Text", TypeDomain(kStringType), title(u"Text", u"Текст"));
    table->addColumn(u"Reason", TypeDomain(kStringType), title(u"Reason", u"Причина"));
    for (const Loss& loss : losses.first()) {
        const std::array<Value, 5> cells = {Value(loss.row), loss.line != 0 ? Value(loss.line) : Value(),
                                            Value(loss.column), Value(loss.text), Value(loss_text(loss))};
        table->appendRow(cells);
    }
    return Value(table.query<IValue>());
}

} // namespace core
