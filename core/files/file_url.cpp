// SPDX-License-Identifier: Apache-2.0
#include "core/files/disk_path.h"
#include "core/runtime/hex_digit.h"

#include <core/files/disk_file.h>
#include <core/files/errors.h>
#include <core/runtime/utf8.h>
#include <core/strings/compare.h>

#include <cerrno>

namespace core {
namespace {

constexpr wstring_view kPrefix = u"file://";

bool is_plain(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
           std::string_view("/-._~!$&'()+,;=:@").find(c) != std::string_view::npos;
}

/// The path in a URL, its escapes resolved.
std::string unescaped(wstring_view text) {
    const std::string escaped = to_utf8(text);
    std::string path;
    path.reserve(escaped.size());
    for (std::size_t i = 0; i < escaped.size(); ++i) {
        if (escaped[i] == '%' && i + 2 < escaped.size()) {
            const int high = hex_digit(static_cast<unsigned char>(escaped[i + 1]));
            const int low = hex_digit(static_cast<unsigned char>(escaped[i + 2]));
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

} // namespace

bool is_file_url(wstring_view text) noexcept {
    return text.size() >= kPrefix.size() && compare_nocase(text.substr(0, kPrefix.size()), kPrefix) == 0;
}

void require_whole_path(const std::string& path) {
    if (path.find('\0') != std::string::npos)
        throw_file_error(messages::kFileOpen, file_url(path), EINVAL);
}

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
    std::string path = is_file_url(url) ? unescaped(url.substr(kPrefix.size())) : to_utf8(url);
    require_whole_path(path);
    return path;
}

} // namespace core
