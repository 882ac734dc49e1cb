// SPDX-License-Identifier: Apache-2.0
#include "host/terminal/terminal_text.h"

#include <core/exchange/column_text.h>
#include <core/runtime/utf8.h>

#include <unicode/utf16.h>

#include <algorithm>

namespace host {
namespace {

/// The text without its middle, no surrogate pair cut.
core::wstring clipped(core::wstring_view text, std::size_t most) {
    if (text.size() <= most)
        return core::wstring(text);
    std::size_t begin = most / 2;
    std::size_t end = text.size() - most / 2;
    if (begin > 0 && U16_IS_LEAD(text[begin - 1]))
        --begin;
    if (U16_IS_LEAD(text[end - 1]))
        ++end;
    return core::wstring(text.substr(0, begin)).append(u" … ").append(text.substr(end));
}

} // namespace

std::string terminal_text(core::wstring_view text, std::size_t most) {
    core::wstring shown = clipped(text, most);
    for (core::wchar& c : shown) {
        if (core::steers(c) && c != u'\t')
            c = 0xFFFD;
    }
    return core::to_utf8(shown);
}

std::string terminal_lines(core::wstring_view text) {
    std::string lines;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(u'\n', begin), text.size());
        lines += begin == 0 ? "" : "\n    ";
        lines += terminal_text(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return lines;
}

} // namespace host
