// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/hex_digit.h"

#include <core/files/disk_file.h>
#include <core/runtime/utf8.h>

namespace core {
namespace {

constexpr wstring_view kPrefix = u"file://";

bool is_plain(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
           std::string_view("/-._~!$&'()+,;=:@").find(c) != std::string_view::npos;
}

} // namespace

wstring file_url(std::string_view path) {
    constexpr std::u16string_view kDigits = u"0123456789ABCDEF";
    wstring url(kPrefix);
    for (const char c : path) {
        if (is_plain(c)) {
            url.push_back(static_cast<wchar>(c));
        } else {
            const auto byte = static_cast<unsigned char>(c);
            url += {u'%', kDigits[byte >> 4], kDigits[byte & 15]};
        }
    }
    return url;
}

std::string file_path(wstring_view url) {
    if (!url.starts_with(kPrefix))
        return to_utf8(url);
    const std::string escaped = to_utf8(url.substr(kPrefix.size()));
    std::string path;
    path.reserve(escaped.size());
    for (std::size_t i = 0; i < escaped.size(); ++i) {
        if (escaped[i] == '%' && i + 2 < escaped.size()) {
            const auto digit = [&](std::size_t at) {
                return hex_digit(static_cast<unsigned char>(escaped[at]));
            };
            const int high = digit(i + 1), low = digit(i + 2);
            if (high >= 0 && low >= 0) {
                path.push_back(static_cast<char>(high << 4 | low));
                i += 2;
                continue;
            }
        }
        path.push_back(escaped[i]);
    }
    return path;
}

} // namespace core
