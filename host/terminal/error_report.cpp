// SPDX-License-Identifier: Apache-2.0
#include "host/terminal/error_report.h"

#include "host/exchange/tables/column_text.h"
#include "host/terminal/terminal_text.h"

#include <core/runtime/utf8.h>

#include <unicode/utf16.h>

#include <algorithm>
#include <ostream>

namespace host::script {
namespace {

constexpr std::size_t kShownBefore = 60; // characters of a long line kept on each side of the mark
constexpr std::size_t kShownAfter = 60;

constexpr const char* kBold = "\033[1m";
constexpr const char* kRed = "\033[1;31m";
constexpr const char* kPlain = "\033[0m";

/// As many blanks as the character takes columns.
core::wstring blank_below(UChar32 c) {
    if (c == u'\t')
        return u"\t";
    return core::wstring(static_cast<std::size_t>(column_count(static_cast<char32_t>(c))), u' ');
}

struct Excerpt {
    core::wstring line;
    core::wstring mark;
};

Excerpt excerpt(const Source& source, Span span) {
    const Span line = source.line_at(span.offset);
    const auto begin =
        std::max<std::int64_t>(line.offset, std::int64_t{span.offset} - std::int64_t{kShownBefore});
    const auto end =
        std::min<std::int64_t>(line.end(), std::int64_t{span.offset} + std::int64_t{kShownAfter});
    const core::wchar* const text = source.text().data();

    Excerpt result;
    if (begin > line.offset) {
        result.line = u"…";
        result.mark = u" ";
    }
    core::wstring underline;
    for (std::int64_t i = begin; i < end;) {
        const std::int64_t at = i;
        UChar32 c = 0;
        U16_NEXT(text, i, end, c);
        result.line.append(text + at, text + i);
        if (at < span.offset)
            result.mark += blank_below(c);
        else if (at < span.end())
            underline += core::wstring(blank_below(c).size(), u'~');
    }
    if (end < line.end())
        result.line += u"…";
    if (underline.empty())
        underline = u"~";
    underline[0] = u'^';
    result.mark += underline;
    return result;
}

} // namespace

void show_error(std::ostream& out, const Source& source, const ScriptError& error, bool colour) {
    const auto painted = [&](const char* paint, const std::string& text) {
        return colour ? paint + text + kPlain : text;
    };
    const Position position = source.position(error.span().offset);
    const std::string place = terminal_text(core::from_utf8(source.name())) + ':' +
                              std::to_string(position.line) + ':' + std::to_string(position.column) + ':';
    const Excerpt lines = excerpt(source, error.span());
    out << painted(kBold, place) << ' ' << terminal_text(error.description()) << '\n'
        << "    " << terminal_text(lines.line) << '\n'
        << "    " << painted(kRed, core::to_utf8(lines.mark)) << '\n';
}

} // namespace host::script
