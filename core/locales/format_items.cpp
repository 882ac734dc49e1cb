// SPDX-License-Identifier: Apache-2.0
#include "core/locales/format_items.h"

#include <core/locales/errors.h>
#include <core/runtime/errors.h>
#include <core/strings/char_class.h>
#include <core/strings/compare.h>
#include <core/strings/trim.h>

namespace core {
namespace {

[[noreturn]] void refuse_item(wstring_view item) {
    throw_error<CtorException>(messages::kFormatItem, {wstring(item)});
}

/// Takes the value off the front of `rest`, with the ";" behind it.
wstring take_value(wstring_view& rest) {
    const wstring_view all = rest;
    rest = trim_left(rest);
    if (rest.empty() || rest.front() != u'\'') {
        const std::size_t length = rest.find(u';');
        wstring value(trim_all(rest.substr(0, length)));
        rest.remove_prefix(length == wstring_view::npos ? rest.size() : length + 1);
        return value;
    }
    wstring value;
    for (rest.remove_prefix(1);; rest.remove_prefix(1)) {
        const std::size_t length = rest.find(u'\'');
        if (length == wstring_view::npos)
            refuse_item(all);
        value += rest.substr(0, length);
        rest.remove_prefix(length + 1);
        if (rest.empty() || rest.front() != u'\'')
            break;
        value += u'\'';
    }
    rest = trim_left(rest);
    if (!rest.empty()) {
        if (rest.front() != u';')
            refuse_item(all);
        rest.remove_prefix(1);
    }
    return value;
}

} // namespace

bool FormatItem::is(wstring_view expected) const noexcept {
    return compare_nocase(name, expected) == 0;
}

const wstring& FormatItem::text() const {
    if (value.empty() || is_space(value.front()))
        refuse();
    return value;
}

void FormatItem::refuse() const {
    refuse_item(wstring(name) + u'=' + value);
}

std::vector<FormatItem> format_items(wstring_view format) {
    std::vector<FormatItem> items;
    for (wstring_view rest = trim_left(format); !rest.empty(); rest = trim_left(rest)) {
        if (rest.front() == u';') {
            rest.remove_prefix(1);
            continue;
        }
        const std::size_t length = rest.find(u'=');
        if (length == wstring_view::npos)
            refuse_item(rest);
        const wstring_view name = trim_right(rest.substr(0, length));
        rest.remove_prefix(length + 1);
        items.push_back({name, take_value(rest)});
    }
    return items;
}

} // namespace core
