// SPDX-License-Identifier: Apache-2.0
#include "core/exchange/tables/escaped_text.h"

namespace core {

std::string in_html(std::string_view text) {
    return replaced(text, [](char c) -> std::string_view {
        switch (c) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return "&quot;";
        case '\n':
        case '\r':
            return "<br>";
        case '\t':
            return {};
        default:
            return static_cast<unsigned char>(c) < 0x20 ? "\xEF\xBF\xBD" : std::string_view();
        }
    });
}

} // namespace core
