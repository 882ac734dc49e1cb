// SPDX-License-Identifier: Apache-2.0
#include "core/exchange/cells/locale_forms.h"

#include <core/runtime/utf8.h>

#include <unicode/udat.h>
#include <unicode/unum.h>

#include <algorithm>
#include <memory>

namespace core {
namespace {

std::string symbol(const UNumberFormat* format, UNumberFormatSymbol which) {
    wchar buffer[16];
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t length = unum_getSymbol(format, which, buffer, std::size(buffer), &status);
    return U_SUCCESS(status) ? to_utf8(wstring_view(buffer, static_cast<std::size_t>(length)))
                             : std::string();
}

/// The short pattern of dates; empty where the system has none.
wstring date_pattern(const std::string& locale) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UDateFormat, decltype(&udat_close)> format(
        udat_open(UDAT_NONE, UDAT_SHORT, locale.c_str(), nullptr, 0, nullptr, 0, &status), &udat_close);
    wchar buffer[64];
    const std::int32_t length =
        U_SUCCESS(status) ? udat_toPattern(format.get(), 0, buffer, std::size(buffer), &status) : 0;
    return U_SUCCESS(status) ? wstring(buffer, static_cast<std::size_t>(length)) : wstring();
}

bool is_digit_byte(char c) noexcept {
    return static_cast<unsigned char>(c - '0') < 10;
}

/// Takes a number of `least` to `most` digits off the front; -1 where none stands there.
int take_number(std::string_view& text, std::size_t least, std::size_t most) noexcept {
    int value = 0;
    std::size_t count = 0;
    for (; count < most && count < text.size() && is_digit_byte(text[count]); ++count)
        value = value * 10 + (text[count] - '0');
    text.remove_prefix(count);
    return count >= least ? value : -1;
}
bool take(std::string_view& text, char c) noexcept {
    const bool found = text.starts_with(c);
    text.remove_prefix(found ? 1 : 0);
    return found;
}

} // namespace

LocaleForms::LocaleForms(const Locale& locale) : point_(".") {
    UErrorCode status = U_ZERO_ERROR;
    UNumberFormat* const format = unum_open(UNUM_DECIMAL, nullptr, 0, locale.key().c_str(), nullptr, &status);
    if (U_SUCCESS(status)) {
        point_ = symbol(format, UNUM_DECIMAL_SEPARATOR_SYMBOL);
        groups_.push_back(symbol(format, UNUM_GROUPING_SEPARATOR_SYMBOL));
        unum_close(format);
    }
    // People type a common blank where the locale has one that does not break.
    if (!groups_.empty() && (groups_.front() == "\u00A0" || groups_.front() == "\u202F"))
        groups_ = {"\u00A0", "\u202F", " "};
    std::size_t part = 0;
    for (const wchar unit : date_pattern(locale.key())) {
        const bool isPart = unit == u'd' || unit == u'M' || unit == u'y';
        if (isPart && (part == 0 || order_[part - 1] != static_cast<char>(unit)) && part < order_.size())
            order_[part++] = static_cast<char>(unit);
        else if (!isPart && part == 1 && unit < 0x80)
            separator_ = static_cast<char>(unit);
    }
}

std::optional<std::string_view> LocaleForms::plainNumber(std::string_view text) {
    plain_.clear();
    if (text.starts_with('-') || text.starts_with('+')) {
        plain_ = text.front();
        text.remove_prefix(1);
    }
    std::size_t digits = 0; // since the sign or the last group mark
    const std::string* group = nullptr;
    while (!text.empty()) {
        if (is_digit_byte(text.front())) {
            plain_ += text.front();
            text.remove_prefix(1);
            ++digits;
            continue;
        }
        const std::string* mark = nullptr;
        for (const std::string& one : groups_)
            mark = !one.empty() && text.starts_with(one) ? &one : mark;
        const bool first = group == nullptr;
        if (mark == nullptr || (!first && (mark != group || digits != 3)) ||
            (first && (digits == 0 || digits > 3)))
            break;
        group = mark;
        digits = 0;
        text.remove_prefix(mark->size());
    }
    if (group != nullptr && digits != 3)
        return std::nullopt;
    if (text.starts_with(point_)) {
        plain_ += '.';
        text.remove_prefix(point_.size());
        for (; !text.empty() && is_digit_byte(text.front()); text.remove_prefix(1))
            plain_ += text.front();
    }
    return text.empty() && !plain_.empty() ? std::optional<std::string_view>(plain_) : std::nullopt;
}

std::optional<Date> LocaleForms::date(std::string_view text) const noexcept {
    int year = 0, month = 0, day = 0;
    for (std::size_t i = 0; i < order_.size(); ++i) {
        if (i != 0 && !take(text, separator_))
            return std::nullopt;
        if (order_[i] == 'y')
            year = take_number(text, 4, 4);
        else
            (order_[i] == 'd' ? day : month) = take_number(text, 1, 2);
    }
    int time[3] = {0, 0, 0};
    if (!text.empty()) {
        if (!take(text, ' '))
            return std::nullopt;
        for (std::size_t i = 0; i < 3 && (i < 2 || !text.empty()); ++i) {
            if (i != 0 && !take(text, ':'))
                return std::nullopt;
            time[i] = take_number(text, i == 0 ? 1 : 2, 2);
        }
    }
    if (!text.empty() || !Date::isMoment(year, month, day, time[0], time[1], time[2]))
        return std::nullopt;
    return Date(year, month, day, time[0], time[1], time[2]);
}

void LocaleForms::writeNumber(std::string& out, std::string_view plain, bool grouped) const {
    if (plain.starts_with('-')) {
        out += '-';
        plain.remove_prefix(1);
    }
    const std::size_t whole = std::min(plain.find('.'), plain.size());
    for (std::size_t i = 0; i < whole; ++i) {
        if (grouped && !groups_.empty() && i != 0 && (whole - i) % 3 == 0)
            out += groups_.front();
        out += plain[i];
    }
    if (whole < plain.size())
        out.append(point_).append(plain.substr(whole + 1));
}

void LocaleForms::writeDate(std::string& out, Date date, int timeUnits, bool padded) const {
    int year = 0, month = 0, day = 0, time[3] = {};
    date.split(year, month, day, time[0], time[1], time[2]);
    const auto put = [&out](int number, std::size_t width) {
        const std::string digits = std::to_string(number);
        out.append(width - std::min(width, digits.size()), '0').append(digits);
    };
    for (std::size_t i = 0; i < order_.size(); ++i) {
        if (i != 0)
            out += separator_;
        if (order_[i] == 'y')
            put(year, 4);
        else
            put(order_[i] == 'd' ? day : month, padded ? 2 : 1);
    }
    for (int i = 0; i < timeUnits; ++i) {
        out += i == 0 ? ' ' : ':';
        put(time[i], 2);
    }
}

} // namespace core
