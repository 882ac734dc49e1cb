// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/named_calls.h"

#include <core/strings/char_class.h>
#include <core/strings/compare.h>
#include <core/strings/names.h>
#include <core/strings/trim.h>
#include <core/tables/errors.h>
#include <core/values/errors.h>

#include <algorithm>

namespace core {
namespace {

[[noreturn]] void refuse(wstring_view item) {
    throw_error<ContextException>(messages::kCallMalformed, {wstring(item)});
}

/// The pieces of a text between commas that stand outside of parentheses, brackets and quotes.
std::vector<wstring_view> items_of(wstring_view text) {
    std::vector<wstring_view> items;
    std::size_t begin = 0;
    int depth = 0;
    wchar until = 0; // what closes the quotes or brackets that are open
    for (std::size_t i = 0; i <= text.size(); ++i) {
        const wchar unit = i < text.size() ? text[i] : u',';
        if (i < text.size() && until != 0) {
            until = unit == until ? wchar{0} : until;
        } else if (unit == u'"' || unit == u'[') {
            until = unit == u'[' ? u']' : u'"';
        } else if (unit == u'(' || unit == u')') {
            depth += unit == u'(' ? 1 : -1;
        } else if (unit == u',' && (depth == 0 || i == text.size())) {
            items.push_back(trim_all(text.substr(begin, i - begin)));
            begin = i + 1;
        }
    }
    return items;
}

/// The length of the name that a text begins with.
std::size_t name_length(wstring_view text) noexcept {
    const auto end = std::ranges::find_if(text, [](wchar unit) { return !is_alnum(unit) && unit != u'_'; });
    return static_cast<std::size_t>(end - text.begin());
}

/// The offset behind the parenthesis that closes the one that a text begins with; 0 where none does.
std::size_t closed_at(wstring_view text) noexcept {
    int depth = 0;
    bool quoted = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == u'"')
            quoted = !quoted;
        else if (!quoted && text[i] == u'(')
            ++depth;
        else if (!quoted && text[i] == u')' && --depth == 0)
            return i + 1;
    }
    return 0;
}

/// The name behind As, or nothing.
wstring_view name_behind(wstring_view rest, wstring_view item) {
    rest = trim_all(rest);
    if (rest.empty())
        return {};
    const wstring_view word = rest.substr(0, name_length(rest));
    const bool as =
        compare_nocase(word, wstring_view(u"As")) == 0 || compare_nocase(word, wstring_view(u"Как")) == 0;
    const wstring_view name = trim_all(rest.substr(word.size()));
    if (!as || !is_valid_name(name))
        refuse(item);
    return name;
}

NamedCall read_item(wstring_view item) {
    NamedCall call;
    call.text = item;
    const wstring_view word = item.substr(0, name_length(item));
    if (word.empty())
        refuse(item);
    const wstring_view behind = trim_all(item.substr(word.size()));
    if (!behind.starts_with(u'(')) {
        call.arguments = {word};
        call.name = name_behind(behind, item);
        return call;
    }
    const std::size_t end = closed_at(behind);
    if (end == 0)
        refuse(item);
    call.function = word;
    if (const wstring_view inside = trim_all(behind.substr(1, end - 2)); !inside.empty())
        call.arguments = items_of(inside);
    call.name = name_behind(behind.substr(end), item);
    return call;
}

} // namespace

std::vector<NamedCall> read_named_calls(wstring_view list) {
    std::vector<NamedCall> calls;
    if (trim_all(list).empty())
        return calls;
    for (const wstring_view item : items_of(list))
        calls.push_back(read_item(item));
    return calls;
}

} // namespace core
