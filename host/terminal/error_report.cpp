// SPDX-License-Identifier: Apache-2.0
#include "host/terminal/error_report.h"

#include "host/terminal/terminal_text.h"

#include <core/exchange/column_text.h>
#include <core/exchange/json.h>
#include <core/runtime/utf8.h>
#include <core/strings/integer_text.h>
#include <core/values/generic_value.h>

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

std::string in_json(const core::wstring& text) {
    return core::to_json(core::GenericValue(text));
}

/// A place that a failure has; 0 for what is not known.
struct FailedAt {
    core::wstring file;
    std::uint64_t line = 0;
    std::int64_t column = 0;
};

void show_object(std::ostream& out, const core::wstring& message, std::string_view id,
                 const FailedAt& at = {}) {
    out << "{\"error\":" << in_json(message);
    if (!id.empty())
        out << ",\"id\":" << in_json(core::from_utf8(std::string(id)));
    if (at.line != 0)
        out << ",\"file\":" << in_json(at.file) << ",\"line\":" << at.line;
    if (at.column != 0)
        out << ",\"column\":" << at.column;
    out << "}\n";
}

} // namespace

void show_error(Console& console, const core::script::Error& error) {
    if (console.json)
        return show_object(
            console.err, error.description(), error.messageId(),
            {error.file(), static_cast<std::uint64_t>(error.line()), error.line() != 0 ? error.column() : 0});
    const auto painted = [&](const char* paint, const std::string& text) {
        return console.colour ? paint + text + kPlain : text;
    };
    const std::string place = terminal_text(error.file()) + ':' + std::to_string(error.line()) + ':' +
                              std::to_string(error.column()) + ':';
    const Excerpt lines = excerpt(error.place());
    console.err << painted(kBold, place) << ' ' << terminal_lines(error.description()) << '\n'
                << "    " << terminal_text(lines.line) << '\n'
                << "    " << painted(kRed, core::to_utf8(lines.mark)) << '\n';
}

void show_failure(Console& console, const core::wstring& message, std::string_view id) {
    if (console.json)
        return show_object(console.err, message, id);
    console.err << "corehost: " << terminal_lines(message) << '\n';
}

void show_failure_in(Console& console, const core::wstring& file, std::uint64_t line,
                     const core::wstring& message) {
    if (console.json)
        return show_object(console.err, message, {}, {file, line});
    const core::wstring place = line != 0 ? u':' + core::string_intto(line) : core::wstring();
    show_failure(console, file + place + u": " + message);
}

} // namespace host
