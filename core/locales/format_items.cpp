// SPDX-License-Identifier: Apache-2.0
#include "core/locales/format_items.h"

#include <core/locales/errors.h>
#include <core/runtime/errors.h>
#include <core/strings/char_class.h>
#include <core/strings/compare.h>
#include <core/strings/trim.h>

#include <algorithm>

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
    const std::optional<wstring> value = take_quoted(rest);
    if (!value)
        refuse_item(all);
    rest = trim_left(rest);
    if (!rest.empty()) {
        if (rest.front() != u';')
            refuse_item(all);
        rest.remove_prefix(1);
    }
    return *value;
}

} // namespace

std::optional<wstring> take_quoted(wstring_view& rest) {
    wstring text;
    for (std::size_t at = 1;;) {
        const std::size_t end = rest.find(u'\'', at);
        if (end == wstring_view::npos)
            return std::nullopt;
        text += rest.substr(at, end - at);
        at = end + 1;
        if (at == rest.size() || rest[at] != u'\'') {
            rest.remove_prefix(at);
            return text;
        }
        text += u'\'';
        ++at;
    }
}

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
        FormatItem item{name, take_value(rest)};
        if (std::any_of(items.begin(), items.end(), [&](const FormatItem& other) { return other.is(name); }))
            item.refuse();
        items.push_back(std::move(item));
    }
    return items;
}

} // namespace core
