// SPDX-License-Identifier: Apache-2.0
#include "core/locales/cached_format.h"
#include "core/locales/format_items.h"

#include <core/locales/date_format.h>
#include <core/locales/settings.h>
#include <core/strings/trim.h>

#include <array>

namespace core {
namespace {

/// The letters of the parts, in the order of a date's parts.
constexpr wstring_view kLetters = u"yMdHms";
using Parts = std::array<int, kLetters.size()>;
constexpr Parts kEmptyDate = {1, 1, 1, 0, 0, 0};

/// What stands at the front of a pattern: a part with its width, or a character that stands for itself.
struct Piece {
    std::size_t part; ///< npos for a character
    std::size_t length;
};

Piece first_piece(wstring_view pattern) noexcept {
    const std::size_t part = kLetters.find(pattern.front());
    if (part == wstring_view::npos)
        return {part, 1};
    const std::size_t length = pattern.find_first_not_of(pattern.front());
    return {part, length == wstring_view::npos ? pattern.size() : length};
}

/// Whether the year has four digits, the other parts one or two, none comes twice, and it can be told where
/// a part of one digit or two ends.
bool is_pattern(wstring_view pattern) noexcept {
    std::array<bool, kLetters.size()> seen{};
    while (!pattern.empty()) {
        const auto [part, length] = first_piece(pattern);
        pattern.remove_prefix(length);
        if (part == wstring_view::npos)
            continue;
        const bool endless = length == 1 && !pattern.empty() &&
                             (kLetters.find(pattern.front()) != wstring_view::npos ||
                              (pattern.front() >= u'0' && pattern.front() <= u'9'));
        if (seen[part] || endless || (part == 0 ? length != 4 : length > 2))
            return false;
        seen[part] = true;
    }
    return true;
}

/// Takes a number off the front of `rest`; -1 when there are fewer digits than `least`.
int take_number(wstring_view& rest, std::size_t least, std::size_t most) noexcept {
    int number = 0;
    std::size_t count = 0;
    for (; count < most && count < rest.size() && rest[count] >= u'0' && rest[count] <= u'9'; ++count)
        number = number * 10 + (rest[count] - u'0');
    rest.remove_prefix(count);
    return count >= least ? number : -1;
}

/// Takes the parts off the front of `rest`.
bool take_parts(wstring_view& rest, wstring_view pattern, Parts& parts) noexcept {
    while (!pattern.empty()) {
        const auto [part, length] = first_piece(pattern);
        if (part != wstring_view::npos) {
            parts[part] = part == 0 ? take_number(rest, 4, 4) : take_number(rest, 1, 2);
            if (parts[part] < 0)
                return false;
        } else {
            if (rest.empty() || rest.front() != pattern.front())
                return false;
            rest.remove_prefix(1);
        }
        pattern.remove_prefix(length);
    }
    return true;
}

void append_number(wstring& text, int number, std::size_t width) {
    wchar digits[4];
    std::size_t first = std::size(digits);
    for (; number != 0 || width != 0; number /= 10) {
        digits[--first] = static_cast<wchar>(u'0' + number % 10);
        width -= width != 0 ? 1 : 0;
    }
    text.append(digits + first, std::size(digits) - first);
}

} // namespace

DateFormat::DateFormat(wstring_view format, const Locale& locale)
    : date_(locale.isRussian() ? u"dd.MM.yyyy" : u"yyyy-MM-dd"), time_(u"HH:mm:ss") {
    for (const FormatItem& item : format_items(format)) {
        wstring* const pattern = item.is(u"date")       ? &date_
                                 : item.is(u"time")     ? &time_
                                 : item.is(u"datetime") ? &dateTime_
                                                        : nullptr;
        if (pattern == nullptr || !is_pattern(item.value))
            item.refuse();
        *pattern = item.text();
    }
    if (dateTime_.empty())
        dateTime_ = date_ + u' ' + time_;
}

const wstring& DateFormat::pattern(DatePattern number) const noexcept {
    return number == DatePattern::date ? date_ : number == DatePattern::time ? time_ : dateTime_;
}

void DateFormat::format(Date date, wstring& text, DatePattern number) const {
    Parts parts;
    date.split(parts[0], parts[1], parts[2], parts[3], parts[4], parts[5]);
    text.clear();
    wstring_view rest = pattern(number);
    text.reserve(rest.size() + parts.size());
    while (!rest.empty()) {
        const auto [part, length] = first_piece(rest);
        if (part != wstring_view::npos)
            append_number(text, parts[part], length);
        else
            text += rest.front();
        rest.remove_prefix(length);
    }
}

wstring DateFormat::format(Date date, DatePattern number) const {
    wstring text;
    format(date, text, number);
    return text;
}

bool DateFormat::parse(wstring_view text, Date& date, const wchar** end, DatePattern number) const {
    wstring_view rest = trim_left(text);
    Parts parts = kEmptyDate;
    const bool done = take_parts(rest, pattern(number), parts) &&
                      Date::isMoment(parts[0], parts[1], parts[2], parts[3], parts[4], parts[5]);
    if (done)
        date = Date(parts[0], parts[1], parts[2], parts[3], parts[4], parts[5]);
    if (end != nullptr)
        *end = done ? rest.data() : text.data();
    return done;
}

const DateFormat& default_date_format() {
    const Settings& settings = current_settings();
    return cached_format<DateFormat>(settings.part<FormatSettings>().dateFormat, settings.locale);
}

} // namespace core
