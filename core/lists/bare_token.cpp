// SPDX-License-Identifier: Apache-2.0
#include "core/lists/bare_token.h"

#include "core/runtime/hex_digit.h"

#include <core/runtime/guid.h>
#include <core/strings/char_class.h>

#include <algorithm>
#include <utility>

namespace core::detail {
namespace {

bool is_sign(wchar unit) noexcept {
    return unit == u'-' || unit == u'+';
}

} // namespace

bool BareToken::takesInteger(wchar unit) noexcept {
    return core::is_digit(unit) || (length_ == 0 && is_sign(unit));
}

bool BareToken::takesDecimal(wchar unit) noexcept {
    if (unit == u'.')
        return !std::exchange(point_, true);
    return core::is_ascii_digit(unit) || (length_ == 0 && is_sign(unit));
}

bool BareToken::takesFloat(wchar unit) noexcept {
    return floating_.next(unit) == FloatToken::Step::take;
}

bool BareToken::takesId(wchar unit) const noexcept {
    if (length_ >= kGuidTextLength)
        return false;
    return is_guid_hyphen(length_) ? unit == u'-' : hex_digit(unit) >= 0;
}

bool BareToken::take(wchar unit) noexcept {
    integer_ = integer_ && takesInteger(unit);
    decimal_ = decimal_ && takesDecimal(unit);
    float_ = float_ && takesFloat(unit);
    id_ = id_ && takesId(unit);
    digit_ = digit_ || core::is_digit(unit);
    length_ = std::min(length_ + 1, kGuidTextLength + 1);
    return integer_ || decimal_ || float_ || id_;
}

bool BareToken::complete() const noexcept {
    constexpr int kEnd = -1;
    return ((integer_ || decimal_) && digit_) || (id_ && length_ == kGuidTextLength) ||
           (float_ && FloatToken(floating_).next(kEnd) == FloatToken::Step::accept);
}

} // namespace core::detail
