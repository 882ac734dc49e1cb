// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

namespace core {

/// The value of a hexadecimal digit of either case, fullwidth letters included, or -1.
[[nodiscard]] constexpr int hex_digit(wchar c) noexcept {
    if (c >= u'0' && c <= u'9')
        return c - u'0';
    const auto letter = static_cast<wchar>(c >= 0xFF21 ? c - 0xFEE0 : c); // fullwidth to ASCII
    if (letter >= u'a' && letter <= u'f')
        return letter - u'a' + 10;
    if (letter >= u'A' && letter <= u'F')
        return letter - u'A' + 10;
    return -1;
}

} // namespace core
