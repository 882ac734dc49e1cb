// SPDX-License-Identifier: Apache-2.0
#include "core/strings/base64.h"

#include <core/strings/char_class.h>

#include <array>
#include <cstdint>

namespace core {
namespace {

constexpr wstring_view kDigits = u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr wchar kPadding = u'=';

} // namespace

wstring base64_encode(std::span<const std::byte> bytes) {
    wstring text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        std::uint32_t group = 0;
        for (std::size_t j = i; j < i + 3; ++j)
            group = group << 8 | (j < bytes.size() ? std::to_integer<std::uint32_t>(bytes[j]) : 0);
        for (std::size_t digit = 0; digit < 4; ++digit)
            text += i + digit <= bytes.size() ? kDigits[group >> (18 - 6 * digit) & 63] : kPadding;
    }
    return text;
}

std::optional<std::vector<std::byte>> base64_decode(wstring_view text) {
    std::vector<std::byte> bytes;
    bytes.reserve(text.size() / 4 * 3);
    std::uint32_t group = 0;
    std::size_t digits = 0;
    std::size_t padding = 0;
    for (const wchar c : text) {
        if (is_space(c))
            continue;
        const std::size_t digit = c == kPadding ? 0 : kDigits.find(c);
        if (digit == wstring_view::npos || (padding != 0 && c != kPadding))
            return std::nullopt;
        padding += c == kPadding ? 1 : 0;
        group = group << 6 | static_cast<std::uint32_t>(digit);
        if (++digits % 4 == 0) {
            for (const int shift : {16, 8, 0})
                bytes.push_back(static_cast<std::byte>(group >> shift & 0xFF));
        }
    }
    if (digits % 4 != 0 || padding > 2)
        return std::nullopt;
    bytes.resize(bytes.size() - padding);
    return bytes;
}

} // namespace core
