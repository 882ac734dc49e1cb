// SPDX-License-Identifier: Apache-2.0
#include "core/files/disk_path.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

// "C:\folder\name" is "C:/folder/name" inside of the library and "file:///C:/folder/name" as a URL;
// "\\server\share\name" is
// "//server/share/name" and "file:////server/share/name".
namespace core {
namespace {

constexpr bool is_letter(char32_t c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

template <class Text>
bool has_drive(Text path) noexcept {
    return path.size() >= 2 && is_letter(path[0]) && path[1] == ':';
}

char small(char c) noexcept {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool is_same_word(std::string_view a, std::string_view b) noexcept {
    return std::ranges::equal(a, b, {}, small, small);
}

/// Whether a name is that of a device, whatever its extension.
bool is_device(std::string_view name) noexcept {
    constexpr std::array<std::string_view, 6> kDevices{"con", "prn", "aux", "nul", "conin$", "conout$"};
    constexpr std::array<std::string_view, 2> kNumbered{"com", "lpt"};
    name = name.substr(0, name.find('.'));
    while (name.ends_with(' '))
        name.remove_suffix(1);
    if (name.size() == 4 && name[3] >= '0' && name[3] <= '9')
        return std::ranges::any_of(kNumbered,
                                   [&](auto word) { return is_same_word(word, name.substr(0, 3)); });
    return std::ranges::any_of(kDevices, [&](auto word) { return is_same_word(word, name); });
}

/// The system cuts dots and blanks off the end of a name, and takes what stands behind ":" for a part of the
/// file.
bool is_name_itself(std::string_view name) noexcept {
    if (name.empty() || name == "." || name == "..")
        return true;
    return name.back() != '.' && name.back() != ' ' && name.find(':') == std::string_view::npos &&
           !is_device(name);
}

} // namespace

std::string to_url_path(std::string_view path) {
    std::string plain = plain_path(std::string(path));
    return has_drive(std::string_view(plain)) ? '/' + plain : plain;
}

std::string from_url_path(std::string path) {
    path = plain_path(std::move(path));
    if (path.starts_with('/') && has_drive(std::string_view(path).substr(1)))
        path.erase(0, 1);
    return path;
}

std::string plain_path(std::string path) {
    std::ranges::replace(path, '\\', '/');
    return path;
}

wstring plain_path(wstring path) {
    std::ranges::replace(path, u'\\', u'/');
    return path;
}

bool begins_with_drive(wstring_view text) noexcept {
    return has_drive(text) && (text.size() == 2 || text[2] == u'/' || text[2] == u'\\') &&
           text.substr(2, 2) != u"//";
}

bool means_itself(std::string_view path) noexcept {
    if (path.starts_with("//./") || path.starts_with("\\\\.\\"))
        return true; // a device, and it says so
    if (has_drive(path))
        path.remove_prefix(2);
    while (!path.empty()) {
        const std::size_t end = std::min(path.find_first_of("/\\"), path.size());
        if (!is_name_itself(path.substr(0, end)))
            return false;
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return true;
}

} // namespace core
