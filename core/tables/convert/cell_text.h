// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/dates/date.h>
#include <core/runtime/types.h>

#include <cstdint>
#include <optional>
#include <string_view>

/// The forms in which texts hold cells, in text of one- or two-byte characters. They are the same in every
/// language.
namespace core {

/// How a date was written.
enum class DateForm : std::uint8_t {
    day,         ///< 2024-02-29
    minuteBlank, ///< 2024-02-29 13:05
    minuteT,     ///< 2024-02-29T13:05
    secondBlank, ///< 2024-02-29 13:05:07
    secondT,     ///< 2024-02-29T13:05:07
    fraction,    ///< one of the two before, with digits of a second behind a point
    digits,      ///< 20240229130507
};

/// A date and how it was written.
struct DateText {
    Date date;
    DateForm form;
};

namespace detail {

/// Reads `count` digits; -1 where there are others among them.
template <class C>
[[nodiscard]] constexpr int read_few_digits(const C* at, int count) noexcept {
    int value = 0;
    for (; count > 0; --count, ++at) {
        const auto digit = static_cast<unsigned>(*at) - static_cast<unsigned>('0');
        if (digit > 9)
            return -1;
        value = value * 10 + static_cast<int>(digit);
    }
    return value;
}

template <class C>
[[nodiscard]] std::optional<Date> read_moment(const C* day, std::size_t gap, const C* time, std::size_t parts,
                                              std::size_t timeGap) noexcept {
    int part[6] = {read_few_digits(day, 4),
                   read_few_digits(day + 4 + gap, 2),
                   read_few_digits(day + 6 + 2 * gap, 2),
                   0,
                   0,
                   0};
    for (std::size_t i = 0; i < parts; ++i)
        part[3 + i] = read_few_digits(time + i * (2 + timeGap), 2);
    if (!Date::isMoment(part[0], part[1], part[2], part[3], part[4], part[5]))
        return std::nullopt;
    return Date(part[0], part[1], part[2], part[3], part[4], part[5]);
}

/// The digits behind the point of a second, as far as a date can hold them: ten thousandths. Nothing for
/// digits that would be lost.
template <class C>
[[nodiscard]] std::optional<std::uint64_t> read_ticks(std::basic_string_view<C> digits) noexcept {
    std::uint64_t ticks = 0;
    for (std::size_t i = 0; i < digits.size() || i < 4; ++i) {
        const unsigned digit = i < digits.size() ? static_cast<unsigned>(digits[i]) - '0' : 0;
        if (digit > 9 || (i >= 4 && digit != 0))
            return std::nullopt;
        ticks = i < 4 ? ticks * 10 + digit : ticks;
    }
    return ticks;
}

} // namespace detail

/// Returns the date that a whole text spells in one of the forms; nothing for any other text.
template <class C>
[[nodiscard]] std::optional<DateText> read_date(std::basic_string_view<C> text) noexcept {
    const C* const at = text.data();
    const std::size_t size = text.size();
    const auto made = [](std::optional<Date> date, DateForm form) {
        return date ? std::optional(DateText{*date, form}) : std::nullopt;
    };
    if (size == 14)
        return made(detail::read_moment(at, 0, at + 8, 3, 0), DateForm::digits);
    if (size < 10 || at[4] != C('-') || at[7] != C('-'))
        return std::nullopt;
    if (size == 10)
        return made(detail::read_moment(at, 1, at, 0, 0), DateForm::day);
    const bool t = at[10] == C('T');
    if (size < 16 || (!t && at[10] != C(' ')) || at[13] != C(':'))
        return std::nullopt;
    if (size == 16)
        return made(detail::read_moment(at, 1, at + 11, 2, 1), t ? DateForm::minuteT : DateForm::minuteBlank);
    if (size < 19 || at[16] != C(':'))
        return std::nullopt;
    auto moment = detail::read_moment(at, 1, at + 11, 3, 1);
    if (size == 19 || !moment)
        return made(moment, t ? DateForm::secondT : DateForm::secondBlank);
    const auto ticks = size > 20 && at[19] == C('.') ? detail::read_ticks(text.substr(20)) : std::nullopt;
    if (!ticks)
        return std::nullopt;
    return DateText{Date(moment->ticks() + *ticks), DateForm::fraction};
}

} // namespace core
