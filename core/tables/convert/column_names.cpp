// SPDX-License-Identifier: Apache-2.0
#include "core/tables/convert/column_names.h"

#include <core/strings/char_class.h>
#include <core/strings/integer_text.h>
#include <core/strings/trim.h>

#include <algorithm>

namespace core {

wstring ColumnNames::make(wstring_view title) {
    wstring name(trim_all(title));
    std::ranges::replace_if(
        name, [](wchar unit) { return !is_alnum(unit) && unit != u'_'; }, u'_');
    if (name.empty())
        name = u"Column";
    else if (!is_valid_name(name))
        name.insert(0, 1, u'_');        // it begins with a digit
    std::size_t& number = taken_[name]; // an element stays where it is
    for (const wstring first = name; number != 0 && !taken_.try_emplace(name, 1).second;)
        name = first + u"_" + string_intto(++number);
    number = std::max<std::size_t>(number, 1);
    return name;
}

} // namespace core
