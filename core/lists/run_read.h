// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/lists/unit_scan.h"

#include <core/dates/date.h>
#include <core/numbers/numeric.h>
#include <core/strings/char_class.h>

#include <cstdint>
#include <iterator>
#include <string>

/// The common case of every token: it is well-formed, in its usual form, and lies in [at, end) with a unit to
/// spare. Each function returns the end of what it read, or null when the reader that goes unit by unit has
/// to decide; so none of them needs to know where a malformed token stops.
namespace core::detail {

inline const wchar* run_spaces(const wchar* at, const wchar* end) noexcept {
    while (at != end && core::is_space(*at))
        ++at;
    return at == end ? nullptr : at;
}

inline const wchar* run_unit(const wchar* at, const wchar* end, wchar unit) noexcept {
    at = run_spaces(at, end);
    return at != nullptr && *at == unit ? at + 1 : nullptr;
}

/// What stands before an element.
inline const wchar* run_gap(const wchar* at, const wchar* end, bool comma) noexcept {
    if (comma && (at = run_unit(at, end, u',')) == nullptr)
        return nullptr;
    return run_spaces(at, end);
}

/// Digits with one point among them, as the number they are without the point. Too few digits to overflow.
struct RunDecimal {
    static constexpr std::ptrdiff_t kMaxDigits = 18;

    bool negative = false;
    bool point = false;
    std::ptrdiff_t fraction = 0; ///< digits behind the point
    std::uint64_t digits = 0;

    /// The number, without its point.
    [[nodiscard]] std::int64_t whole() const noexcept {
        const auto magnitude = static_cast<std::int64_t>(digits);
        return negative ? -magnitude : magnitude;
    }
    const wchar* read(const wchar* at, const wchar* end) noexcept {
        negative = *at == u'-';
        at += negative ? 1 : 0;
        const wchar* const first = at;
        for (; at != end && is_ascii_digit(*at); ++at)
            digits = digits * 10 + static_cast<std::uint64_t>(*at - u'0');
        if (at == end || at == first || at - first > kMaxDigits)
            return nullptr;
        point = *at == u'.';
        if (point) {
            const wchar* const behind = ++at;
            for (; at != end && is_ascii_digit(*at); ++at)
                digits = digits * 10 + static_cast<std::uint64_t>(*at - u'0');
            fraction = at - behind;
            if (at == end || at - first > kMaxDigits)
                return nullptr;
        }
        return at;
    }
};

inline const wchar* run_boolean(const wchar* at, const wchar* end, bool& value) noexcept {
    if (end - at < 2 || (*at != u'0' && *at != u'1'))
        return nullptr;
    value = *at == u'1';
    return at + 1;
}

inline const wchar* run_integer(const wchar* at, const wchar* end, bool withSign,
                                std::uint64_t& value) noexcept {
    RunDecimal decimal;
    at = decimal.read(at, end);
    // A digit of another script may follow.
    if (at == nullptr || decimal.point || *at >= 0x80 || (decimal.negative && !withSign))
        return nullptr;
    value = decimal.negative ? 0 - decimal.digits : decimal.digits;
    return at;
}

inline const wchar* run_double(const wchar* at, const wchar* end, double& value) noexcept {
    // Up to here both operands are exact, so the quotient is correctly rounded.
    constexpr std::uint64_t kExact = std::uint64_t{1} << 53;
    static constexpr double kPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8, 1e9,
                                         1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18};
    static_assert(std::size(kPowers) == RunDecimal::kMaxDigits + 1);
    RunDecimal decimal;
    at = decimal.read(at, end);
    if (at == nullptr || *at == u'e' || *at == u'E' || decimal.digits > kExact)
        return nullptr;
    const double magnitude = static_cast<double>(decimal.digits) / kPowers[decimal.fraction];
    value = decimal.negative ? -magnitude : magnitude;
    return at;
}

inline const wchar* run_numeric(const wchar* at, const wchar* end, Numeric& number) {
    RunDecimal decimal;
    const wchar* stop = decimal.read(at, end);
    if (stop != nullptr) {
        number = Numeric::fromScaled(decimal.whole(), static_cast<std::uint32_t>(decimal.fraction));
        return stop;
    }
    Numeric read = Numeric::fromString(wstring_view(at, static_cast<std::size_t>(end - at)), &stop);
    if (stop == at || stop == end)
        return nullptr;
    number = std::move(read);
    return stop;
}

inline const wchar* run_date(const wchar* at, const wchar* end, Date& date) noexcept {
    constexpr auto kLength = static_cast<std::ptrdiff_t>(Date::kTextLength);
    if (end - at < kLength)
        return nullptr;
    const wchar* stop = nullptr;
    const Date read = Date::fromString(wstring_view(at, Date::kTextLength), &stop);
    if (stop != at + kLength)
        return nullptr;
    date = read;
    return stop;
}

/// The text of a string without quotes and escapes in it.
inline const wchar* run_string(const wchar* at, const wchar* end, wstring_view& text) noexcept {
    if (*at != u'"')
        return nullptr;
    const wchar* const close = find_unit<EndsPlainRead>(++at, end);
    if (end - close < 2 || *close != u'"' || close[1] == u'"' || close[1] == u'\\')
        return nullptr;
    text = wstring_view(at, static_cast<std::size_t>(close - at));
    return close + 1;
}

} // namespace core::detail
