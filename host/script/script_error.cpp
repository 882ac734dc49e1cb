// SPDX-License-Identifier: Apache-2.0
#include "host/script/script_error.h"

#include <core/runtime/utf8.h>

#include <unicode/uchar.h>
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

/// A character as it may be sent to a terminal.
core::wstring shown(UChar32 c) {
    if (c == u'\t')
        return u"\t";
    if (u_iscntrl(c) || U_IS_SURROGATE(c))
        return u"\uFFFD"; // nothing in a script may steer the terminal
    core::wstring text(1, static_cast<core::wchar>(c));
    if (c > 0xFFFF)
        text = {U16_LEAD(c), U16_TRAIL(c)};
    return text;
}

core::wstring shown(core::wstring_view text) {
    core::wstring result;
    for (std::size_t i = 0; i < text.size();) {
        UChar32 c = 0;
        U16_NEXT(text.data(), i, text.size(), c);
        result += shown(c);
    }
    return result;
}

/// As many blanks as the character takes columns.
core::wstring blank_below(UChar32 c) {
    if (c == u'\t')
        return u"\t";
    const auto category = u_charType(c);
    if (category == U_NON_SPACING_MARK || category == U_ENCLOSING_MARK || category == U_FORMAT_CHAR)
        return {};
    const int width = u_getIntPropertyValue(c, UCHAR_EAST_ASIAN_WIDTH);
    return core::wstring(width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1, u' ');
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
        result.line += shown(c);
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

void fail_at(Span span, const char* id, std::initializer_list<core::wstring> params) {
    throw ScriptError(span, core::message_text(id, params));
}

void show_error(std::ostream& out, const Source& source, const ScriptError& error, bool colour) {
    const auto painted = [&](const char* paint, const std::string& text) {
        return colour ? paint + text + kPlain : text;
    };
    const Position position = source.position(error.span().offset);
    const std::string place =
        source.name() + ':' + std::to_string(position.line) + ':' + std::to_string(position.column) + ':';
    const Excerpt lines = excerpt(source, error.span());
    out << painted(kBold, place) << ' ' << core::to_utf8(shown(error.description())) << '\n'
        << "    " << core::to_utf8(lines.line) << '\n'
        << "    " << painted(kRed, core::to_utf8(lines.mark)) << '\n';
}

} // namespace host::script
