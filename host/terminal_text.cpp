// SPDX-License-Identifier: Apache-2.0
#include "host/terminal_text.h"

#include <core/runtime/utf8.h>

#include <unicode/uchar.h>
#include <unicode/utf16.h>

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
        if (u_iscntrl(c) && c != u'\t')
            c = 0xFFFD;
    }
    return core::to_utf8(shown);
}

int terminal_width(char32_t c) {
    const auto code = static_cast<UChar32>(c);
    const auto category = u_charType(code);
    if (category == U_NON_SPACING_MARK || category == U_ENCLOSING_MARK)
        return 0;
    const int width = u_getIntPropertyValue(code, UCHAR_EAST_ASIAN_WIDTH);
    return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}

std::size_t terminal_width(std::string_view text) {
    std::size_t width = 0;
    const core::wstring units = core::from_utf8(text);
    for (std::size_t i = 0; i < units.size();) {
        UChar32 c = 0;
        U16_NEXT(units.data(), i, units.size(), c);
        width += static_cast<std::size_t>(terminal_width(static_cast<char32_t>(c)));
    }
    return width;
}

} // namespace host
