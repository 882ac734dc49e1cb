// SPDX-License-Identifier: Apache-2.0
#include "core/exchange/cells/column_list.h"

#include <core/exchange/errors.h>
#include <core/strings/char_class.h>
#include <core/strings/integer_text.h>
#include <core/strings/names.h>
#include <core/strings/split.h>
#include <core/strings/trim.h>
#include <core/values/type.h>

#include <algorithm>

namespace core {
namespace {

[[noreturn]] void refuse(wstring_view item) {
    throw_error<ContextException>(messages::kBadColumnList, {wstring(item)});
}

/// The items between commas that stand outside of parentheses.
std::vector<wstring_view> items_of(wstring_view list) {
    std::vector<wstring_view> items;
    std::size_t begin = 0;
    int depth = 0;
    for (std::size_t i = 0; i <= list.size(); ++i) {
        if (i == list.size() || (list[i] == u',' && depth == 0)) {
            items.push_back(trim_all(list.substr(begin, i - begin)));
            begin = i + 1;
        } else if (list[i] == u'(' || list[i] == u')') {
            depth += list[i] == u'(' ? 1 : -1;
        }
    }
    return items;
}

/// The numbers between the parentheses of a type, at most `most`.
std::vector<std::uint32_t> numbers_of(wstring_view text, std::size_t most, wstring_view item) {
    std::vector<std::uint32_t> numbers;
    for (const wstring_view part : string_tokenize(text, u",")) {
        const auto number = string_toint<std::uint32_t>(trim_all(part));
        if (!number || numbers.size() == most)
            refuse(item);
        numbers.push_back(*number);
    }
    return numbers;
}

TypeDomain domain_of(wstring_view type, wstring_view item) {
    const std::size_t open = std::min(type.find(u'('), type.size());
    const wstring_view word = trim_all(type.substr(0, open));
    wstring_view inside;
    if (open < type.size()) {
        if (!type.ends_with(u')'))
            refuse(item);
        inside = type.substr(open + 1, type.size() - open - 2);
    }
    const auto is = [word](wstring_view english, wstring_view russian) {
        return compare_nocase(word, english) == 0 || compare_nocase(word, russian) == 0;
    };
    const bool number = is(u"Number", u"Число");
    const auto numbers = numbers_of(inside, number ? 2 : is(u"String", u"Строка") ? 1 : 0, item);
    if (number) {
        TypeDomain domain(kNumberType);
        if (!numbers.empty())
            domain.setNumericQualifiers(NumericQualifiers(numbers[0], numbers.size() > 1 ? numbers[1] : 0));
        return domain;
    }
    if (is(u"String", u"Строка")) {
        TypeDomain domain(kStringType);
        if (!numbers.empty())
            domain.setStringQualifiers(StringQualifiers(numbers[0], true));
        return domain;
    }
    if (is(u"Date", u"Дата"))
        return TypeDomain(kDateType);
    if (is(u"Boolean", u"Булево"))
        return TypeDomain(kBooleanType);
    refuse(item);
}

} // namespace

std::vector<ListedColumn> read_column_list(wstring_view list) {
    std::vector<ListedColumn> columns;
    if (trim_all(list).empty())
        return columns;
    for (const wstring_view item : items_of(list)) {
        const auto blank = std::ranges::find_if(item, [](wchar unit) { return is_space(unit); });
        const auto length = static_cast<std::size_t>(blank - item.begin());
        const wstring_view name = item.substr(0, length);
        const wstring_view type = trim_all(item.substr(length));
        if (!is_valid_name(name))
            throw_error<ContextException>(messages::kBadColumnName, {wstring(name)});
        if (std::ranges::any_of(columns,
                                [&](const auto& one) { return compare_nocase(one.name, name) == 0; }))
            throw_error<ContextException>(messages::kColumnTwice, {wstring(name)});
        columns.push_back({wstring(name), {}});
        if (!type.empty())
            columns.back().domain = domain_of(type, item);
    }
    return columns;
}

} // namespace core
