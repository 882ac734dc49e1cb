// SPDX-License-Identifier: Apache-2.0
#include "host/commands/describe_text.h"
#include "host/terminal/text_columns.h"

#include <core/runtime/locale.h>
#include <core/runtime/utf8.h>

#include <nlohmann/json.hpp>

#include <ostream>

namespace host::describe {

using namespace core;

void write_locales(Console& console) {
    const Locale english("en");
    const Locale russian("ru");
    const Locale& reader = console.language == Language::russian ? russian : english;
    auto all = nlohmann::ordered_json::array();
    Columns columns;
    for (const Locale& locale : Locale::all()) {
        const std::string ownName = to_utf8(locale.ownName());
        if (!console.json) {
            columns.add({locale.key(), to_utf8(locale.name(reader)), ownName});
            continue;
        }
        all.push_back(
            {{"key", locale.key()},
             {"parent", locale.parent().key()},
             {"language", locale.language()},
             {"region", locale.region()},
             {"name", {{"en", to_utf8(locale.name(english))}, {"ru", to_utf8(locale.name(russian))}}},
             {"ownName", ownName},
             {"rightToLeft", locale.isRightToLeft()},
             {"firstDayOfWeek", locale.firstDayOfWeek()}});
    }
    if (console.json)
        console.out << all.dump(2) << '\n';
    else
        columns.write(console.out);
}

} // namespace host::describe
