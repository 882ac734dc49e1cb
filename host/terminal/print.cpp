// SPDX-License-Identifier: Apache-2.0
#include "host/terminal/print.h"

#include "host/terminal/column_types.h"

#include <core/exchange/json.h>
#include <core/exchange/table_view.h>
#include <core/reports/report.h>
#include <core/values/generic_value.h>

#include <ostream>

namespace host {

void print_value(const core::Value& value, Console& console, std::size_t most) {
    using core::TableForm;
    const TableForm form = console.mode.value_or(console.json ? TableForm::json : TableForm::table);
    if (const auto columns = value.query<core::IValueColumns>()) {
        print_value(table_of_columns(*columns, alias_of(console.language)), console, most);
    } else if (const auto report = core::report_of(value)) {
        if (form == TableForm::table)
            core::print_report(console.out, *report, line_width(console), most, console.colours);
        else
            print_value(report->table, console, most);
    } else if (core::table_view(value))
        core::write_table(console.out, value, form, line_width(console), most);
    else if (form == TableForm::json || form == TableForm::jsonl)
        console.out << core::to_json(value) << '\n';
    else
        console.out << value << '\n';
}

} // namespace host
