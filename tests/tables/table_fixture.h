// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/collections/script.h"

#include <core/descriptions.h>
#include <core/tables.h>

namespace script {

/// A test of value tables, with ways to make one and to read it at a glance.
class TableTest : public Test {
  protected:
    /// A table of columns with values row by row.
    static GenericValue table_of(wstring_view columns, std::vector<Arguments> rows) {
        const GenericValue table = make(u"ValueTable");
        for (const wstring_view name : string_tokenize(columns, u", "))
            call(property(table, u"Columns"), u"Add", {Value(name)});
        for (const Arguments& cells : rows) {
            const GenericValue row = call(table, u"Add");
            for (std::size_t i = 0; i < cells.size(); ++i)
                call(row, u"Set", {i, cells[i]});
        }
        return table;
    }
    /// All rows as text: cells with "," between them, rows with ";".
    static wstring content(const Value& table) {
        wstring text;
        for (const GenericValue& row : walk(table)) {
            for (const GenericValue& cell : walk(row))
                text += cell.presentation() + u",";
            text.back() = u';';
        }
        return text;
    }
    static wstring unknown_row() { return message_text("IDS_VT_UNKNOWN_ROW_ERROR"); }
    static wstring unknown_column(const wchar* name) {
        return message_text("IDS_VT_UNKNOWN_COLUMN_ERROR", {name});
    }
    static wstring twice(const wchar* name) { return message_text("IDS_VT_COLUMNS_NOT_UNIQUE", {name}); }
    static GenericValue description(wstring_view types) { return make(u"TypeDescription", {Value(types)}); }
    static void assign(const Value& object, const wchar* name, const GenericValue& value) {
        const auto context = object.query<IContext_>();
        context->setPropVal(context->findProp(name), value);
    }
};

} // namespace script
