// SPDX-License-Identifier: Apache-2.0
#include "host/terminal/print.h"

#include "host/exchange/json/json_value.h"
#include "host/exchange/tables/table_view.h"

#include <core/values/generic_value.h>

#include <ostream>

namespace host {

void print_value(const core::Value& value, Console& console, std::size_t most) {
    if (console.json)
        console.out << to_json(value) << '\n';
    else if (const auto view = table_view(value))
        print_table(console.out, *view, line_width(console), most);
    else
        console.out << value << '\n';
}

} // namespace host
