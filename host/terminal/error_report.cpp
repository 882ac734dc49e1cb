// SPDX-License-Identifier: Apache-2.0
#include "host/terminal/error_report.h"

#include "host/terminal/terminal_text.h"

#include <core/exchange/column_text.h>
#include <core/runtime/utf8.h>

#include <unicode/utf16.h>

#include <algorithm>
#include <ostream>

namespace host {
namespace {

constexpr std::int64_t kShownBefore = 60; // units of a long line kept on each side of the mark
constexpr std::int64_t kShownAfter = 60;

constexpr const char* kBold = "\033[1m";
constexpr const char* kRed = "\033[1;31m";
constexpr const char* kPlain = "\033[0m";

/// As many blanks as the character takes columns.
core::wstring blank_below(UChar32 c) {
    if (c == u'\t')
        return u"\t";
    return core::wstring(static_cast<std::size_t>(core::column_count(static_cast<char32_t>(c))), u' ');
}

struct Excerpt {
    core::wstring line;
    core::wstring mark;
};

Excerpt excerpt(const core::script::Place& place) {
    const std::int64_t marked = place.offset;
    const auto begin = std::max<std::int64_t>(0, marked - kShownBefore);
    const auto end = std::min<std::int64_t>(std::ssize(place.text), marked + kShownAfter);
    const core::wchar* const text = place.text.data();

    Excerpt result;
    if (begin > 0) {
        result.line = u"…";
        result.mark = u" ";
    }
    core::wstring underline;
    for (std::int64_t i = begin; i < end;) {
        const std::int64_t at = i;
        UChar32 c = 0;
        U16_NEXT(text, i, end, c);
        result.line.append(text + at, text + i);
        if (at < marked)
            result.mark += blank_below(c);
        else if (at < marked + place.length)
            underline += core::wstring(blank_below(c).size(), u'~');
    }
    if (end < std::ssize(place.text))
        result.line += u"…";
    if (underline.empty())
        underline = u"~";
    underline[0] = u'^';
    result.mark += underline;
    return result;
}

} // namespace

void show_error(std::ostream& out, const core::script::Error& error, bool colour) {
    const auto painted = [&](const char* paint, const std::string& text) {
        return colour ? paint + text + kPlain : text;
    };
    const std::string place = terminal_text(error.file()) + ':' + std::to_string(error.line()) + ':' +
                              std::to_string(error.column()) + ':';
    const Excerpt lines = excerpt(error.place());
    out << painted(kBold, place) << ' ' << terminal_lines(error.description()) << '\n'
        << "    " << terminal_text(lines.line) << '\n'
        << "    " << painted(kRed, core::to_utf8(lines.mark)) << '\n';
}

} // namespace host
