// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/types.h>

#include <cstddef>
#include <string>
#include <string_view>

/// Pieces of JSON text, in UTF-8 or UTF-16.
namespace core {

/// Appends what stands between the quotes of a JSON string.
template <class C>
void append_json_characters(std::basic_string<C>& json, std::basic_string_view<C> text) {
    constexpr std::string_view kHex = "0123456789abcdef";
    const auto put = [&json](std::string_view ascii) { json.append(ascii.begin(), ascii.end()); };
    for (std::size_t begin = 0, i = 0;; ++i) {
        const bool end = i == text.size();
        const C c = end ? C() : text[i];
        const bool control = c >= 0 && c < 0x20;
        if (!end && !control && c != '"' && c != '\\')
            continue;
        json += text.substr(begin, i - begin);
        if (end)
            return;
        begin = i + 1;
        if (c == '\n') {
            put("\\n");
        } else if (c == '\t') {
            put("\\t");
        } else if (control) {
            const std::size_t code = static_cast<unsigned char>(c);
            put("\\u00");
            put(kHex.substr(code >> 4U, 1));
            put(kHex.substr(code & 0xFU, 1));
        } else {
            put("\\");
            json += c;
        }
    }
}

/// Appends a JSON string, with its quotes.
inline void append_json_string(std::string& json, std::string_view text) {
    json += '"';
    append_json_characters(json, text);
    json += '"';
}

/// Returns whether a text is a number as JSON writes it.
[[nodiscard]] CORE_API bool is_json_number(wstring_view text) noexcept;

} // namespace core
