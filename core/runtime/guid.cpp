// SPDX-License-Identifier: Apache-2.0
#include <core/runtime/guid.h>

namespace core {
namespace {

constexpr bool is_hyphen_place(std::size_t i) {
    return i == 8 || i == 13 || i == 18 || i == 23;
}

/// The value of a hexadecimal digit, fullwidth letters included, or -1.
constexpr int nibble(wchar c) {
    if (c >= u'0' && c <= u'9')
        return c - u'0';
    const auto letter = static_cast<wchar>(c >= 0xFF21 ? c - 0xFEE0 : c); // fullwidth to ASCII
    if (letter >= u'a' && letter <= u'f')
        return letter - u'a' + 10;
    if (letter >= u'A' && letter <= u'F')
        return letter - u'A' + 10;
    return -1;
}

} // namespace

wstring to_string(const GUID& id) {
    constexpr wchar kDigits[] = u"0123456789abcdef";
    wstring text;
    text.reserve(36);
    const auto put = [&](std::uint32_t value, int digits) {
        for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
            text.push_back(kDigits[value >> shift & 0xF]);
    };
    put(id.data1, 8);
    text.push_back(u'-');
    put(id.data2, 4);
    text.push_back(u'-');
    put(id.data3, 4);
    for (std::size_t i = 0; i < 8; ++i) {
        if (i == 0 || i == 2)
            text.push_back(u'-');
        put(id.data4[i], 2);
    }
    return text;
}

bool from_string(wstring_view text, GUID& id) noexcept {
    id = kNullGuid;
    if (text.size() != 36)
        return false;
    std::uint8_t bytes[16] = {};
    std::size_t count = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (is_hyphen_place(i)) {
            if (text[i] != u'-')
                return false;
            continue;
        }
        const int value = nibble(text[i]);
        if (value < 0)
            return false;
        bytes[count / 2] = static_cast<std::uint8_t>(bytes[count / 2] << 4 | value);
        ++count;
    }
    id.data1 = std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 |
               bytes[3];
    id.data2 = static_cast<std::uint16_t>(bytes[4] << 8 | bytes[5]);
    id.data3 = static_cast<std::uint16_t>(bytes[6] << 8 | bytes[7]);
    for (std::size_t i = 0; i < 8; ++i)
        id.data4[i] = bytes[8 + i];
    return true;
}

} // namespace core
