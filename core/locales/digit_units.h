// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <array>
#include <cstddef>

namespace core {

/// The ten digits with which a language writes numbers. Digits outside the basic plane share the first unit
/// of their pairs.
struct DigitUnits {
    wchar high = 0; ///< the first unit of each digit; 0 where a digit is one unit
    std::array<wchar, 10> low = {u'0', u'1', u'2', u'3', u'4', u'5', u'6', u'7', u'8', u'9'};

    /// The units of a digit.
    [[nodiscard]] std::size_t width() const noexcept { return high != 0 ? 2 : 1; }

    /// Writes a digit, 0 to 9, and returns its end.
    wchar* put(wchar* out, std::size_t digit) const noexcept {
        if (high != 0)
            *out++ = high;
        *out++ = low[digit];
        return out;
    }

    /// Takes a digit of this language or of ASCII off the front; -1 when none stands there.
    [[nodiscard]] int take(wstring_view& rest) const noexcept {
        if (rest.empty())
            return -1;
        if (rest.front() >= u'0' && rest.front() <= u'9') {
            const int digit = rest.front() - u'0';
            rest.remove_prefix(1);
            return digit;
        }
        if (low[0] == u'0' || (high != 0 && (rest.front() != high || rest.size() < 2)))
            return -1;
        for (std::size_t i = 0; i < low.size(); ++i) {
            if (rest[width() - 1] == low[i]) {
                rest.remove_prefix(width());
                return static_cast<int>(i);
            }
        }
        return -1;
    }
};

} // namespace core
