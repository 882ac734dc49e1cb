// SPDX-License-Identifier: Apache-2.0
#include <core/exchange/column_text.h>
#include <core/runtime/utf8.h>

#include <unicode/uchar.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

namespace core {
namespace {

/// What is shown in the place of a character; `next` is the one behind it. 0 for nothing.
char32_t visible(char32_t c, char32_t next) {
    switch (c) {
    case U'\t':
        return U' ';
    case U'\r':
        return next == U'\n' ? 0 : U'↵';
    case U'\n':
    case U'\u2028':
    case U'\u2029':
        return U'↵';
    default:
        const auto code = static_cast<UChar32>(c);
        return steers(c) || U_IS_SURROGATE(code) ? U'\uFFFD' : c;
    }
}

void append_utf8(std::string& text, char32_t c) {
    char bytes[U8_MAX_LENGTH];
    std::int32_t length = 0;
    U8_APPEND_UNSAFE(bytes, length, c);
    text.append(bytes, static_cast<std::size_t>(length));
}

} // namespace

bool steers(char32_t c) noexcept {
    const auto code = static_cast<UChar32>(c);
    return u_charType(code) == U_CONTROL_CHAR || u_hasBinaryProperty(code, UCHAR_BIDI_CONTROL);
}

int column_count(char32_t c) {
    if (c >= U' ' && c <= U'~')
        return 1;
    const auto code = static_cast<UChar32>(c);
    switch (u_charType(code)) {
    case U_NON_SPACING_MARK:
    case U_ENCLOSING_MARK:
        return 0;
    case U_FORMAT_CHAR:
        return c == U'\u00AD' ? 1 : 0; // the soft hyphen shows
    default:
        break;
    }
    const int syllable = u_getIntPropertyValue(code, UCHAR_HANGUL_SYLLABLE_TYPE);
    if (syllable == U_HST_VOWEL_JAMO || syllable == U_HST_TRAILING_JAMO)
        return 0; // joins the consonant before
    const int width = u_getIntPropertyValue(code, UCHAR_EAST_ASIAN_WIDTH);
    return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}

std::size_t column_count(std::string_view text) {
    std::size_t width = 0;
    const wstring units = from_utf8(text);
    for (std::size_t i = 0; i < units.size();) {
        UChar32 c = 0;
        U16_NEXT(units.data(), i, units.size(), c);
        width += static_cast<std::size_t>(column_count(static_cast<char32_t>(c)));
    }
    return width;
}

FittedText fitted_text(wstring_view text, std::size_t width) {
    FittedText fitted;
    std::size_t keptBytes = 0, keptColumns = 0; // what leaves a column for the mark
    const auto at = [text](std::size_t& i) {
        char32_t c = 0;
        U16_NEXT(text.data(), i, text.size(), c);
        return c;
    };
    for (std::size_t i = 0; i < text.size();) {
        const char32_t read = at(i);
        std::size_t ahead = i;
        const char32_t c = visible(read, i < text.size() ? at(ahead) : 0);
        if (c == 0)
            continue;
        const auto columns = static_cast<std::size_t>(column_count(c));
        if (fitted.columns + columns > width) {
            fitted.text.resize(keptBytes);
            fitted.text += width > 0 ? "…" : "";
            fitted.columns = keptColumns + (width > 0 ? 1 : 0);
            break;
        }
        append_utf8(fitted.text, c);
        fitted.columns += columns;
        if (fitted.columns + 1 <= width) {
            keptBytes = fitted.text.size();
            keptColumns = fitted.columns;
        }
    }
    return fitted;
}

} // namespace core
