// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/hex_digit.h"

#include <core/runtime/guid.h>

namespace core {

wchar* to_string(const GUID& id, wchar* out) noexcept {
    constexpr wchar kDigits[] = u"0123456789abcdef";
    const auto put = [&](std::uint32_t value, int digits) {
        for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
            *out++ = kDigits[value >> shift & 0xF];
    };
    put(id.data1, 8);
    *out++ = u'-';
    put(id.data2, 4);
    *out++ = u'-';
    put(id.data3, 4);
    for (std::size_t i = 0; i < 8; ++i) {
        if (i == 0 || i == 2)
            *out++ = u'-';
        put(id.data4[i], 2);
    }
    return out;
}

wstring to_string(const GUID& id) {
    wstring text(kGuidTextLength, u'\0');
    to_string(id, text.data());
    return text;
}

bool from_string(wstring_view text, GUID& id) noexcept {
    id = kNullGuid;
    if (text.size() != kGuidTextLength)
        return false;
    std::uint8_t bytes[16] = {};
    std::size_t count = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (detail::is_guid_hyphen(i)) {
            if (text[i] != u'-')
                return false;
            continue;
        }
        const int value = hex_digit(text[i]);
        if (value < 0)
            return false;
        bytes[count / 2] = static_cast<std::uint8_t>(bytes[count / 2] << 4 | value);
        ++count;
    }
    id = detail::guid_of(bytes);
    return true;
}

} // namespace core
