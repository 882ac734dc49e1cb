// SPDX-License-Identifier: Apache-2.0
#include "core/files/disk_path.h"
#include "core/runtime/hex_digit.h"

#include <core/files/disk_file.h>
#include <core/files/errors.h>
#include <core/files/url.h>
#include <core/runtime/utf8.h>
#include <core/strings/compare.h>

#include <algorithm>
#include <cerrno>

namespace core {
namespace {

constexpr wstring_view kPrefix = u"file://";
constexpr wstring_view kDigits = u"0123456789ABCDEF";

bool is_plain(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
           std::string_view("/-._~!$&'()+,;=:@").find(c) != std::string_view::npos;
}

/// How many bytes the character at the start of `bytes` has; 0 where no character of UTF-8 stands there.
std::size_t utf8_length(std::string_view bytes) {
    const auto lead = static_cast<unsigned char>(bytes.front());
    const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    const std::string_view character = bytes.substr(0, length);
    return to_utf8(from_utf8(character)) == character ? character.size() : 0;
}

/// The bytes of a path as people read them.
wstring visible(std::string_view bytes) {
    constexpr unsigned char kDelete = 0x7F;
    wstring text;
    while (!bytes.empty()) {
        const auto byte = static_cast<unsigned char>(bytes.front());
        const std::size_t length = byte < 0x20 || byte == kDelete ? 0 : utf8_length(bytes);
        if (length != 0)
            text += from_utf8(bytes.substr(0, length));
        else
            text += {u'\\', u'x', kDigits[byte >> 4], kDigits[byte & 15]};
        bytes.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return text;
}

} // namespace

wstring escape_url(std::string_view bytes) {
    wstring text;
    text.reserve(bytes.size());
    for (const char c : bytes) {
        if (is_plain(c)) {
            text.push_back(static_cast<wchar>(c));
        } else {
            const auto byte = static_cast<unsigned char>(c);
            text += {u'%', kDigits[byte >> 4], kDigits[byte & 15]};
        }
    }
    return text;
}

std::string unescape_url(wstring_view text) {
    const std::string escaped = to_utf8(text);
    std::string bytes;
    bytes.reserve(escaped.size());
    for (std::size_t i = 0; i < escaped.size(); ++i) {
        if (escaped[i] == '%' && i + 2 < escaped.size()) {
            const int high = hex_digit(static_cast<unsigned char>(escaped[i + 1]));
            const int low = hex_digit(static_cast<unsigned char>(escaped[i + 2]));
            if (high >= 0 && low >= 0) {
                bytes.push_back(static_cast<char>(high << 4 | low));
                i += 2;
                continue;
            }
        }
        bytes.push_back(escaped[i]);
    }
    return bytes;
}

wstring shown_url(wstring_view url) {
    wstring shown =
        is_file_url(url) ? visible(from_url_path(unescape_url(url.substr(kPrefix.size())))) : wstring();
    return shown.empty() ? wstring(url) : shown;
}

bool is_file_url(wstring_view text) noexcept {
    return text.size() >= kPrefix.size() && compare_nocase(text.substr(0, kPrefix.size()), kPrefix) == 0;
}

void require_whole_path(const std::string& path) {
    if (path.find('\0') != std::string::npos || !means_itself(path))
        throw_file_error(messages::kFileOpen, file_url(path), EINVAL);
}

wstring file_url(std::string_view path) {
    return wstring(kPrefix) + escape_url(to_url_path(path));
}

std::string file_path(wstring_view url) {
    std::string path =
        is_file_url(url) ? from_url_path(unescape_url(url.substr(kPrefix.size()))) : plain_path(to_utf8(url));
    require_whole_path(path);
    return path;
}

} // namespace core
