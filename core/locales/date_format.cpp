// SPDX-License-Identifier: Apache-2.0
#include "core/locales/cached_format.h"
#include "core/locales/format_items.h"

#include <core/locales/date_format.h>
#include <core/locales/errors.h>
#include <core/locales/settings.h>
#include <core/strings/char_class.h>
#include <core/strings/trim.h>

#include <algorithm>
#include <array>

namespace core {
namespace {

/// The letters of the parts, in the order of a date's parts.
constexpr wstring_view kLetters = u"yMdHms";
using Parts = std::array<int, kLetters.size()>;
constexpr Parts kEmptyDate = {1, 1, 1, 0, 0, 0};

[[noreturn]] void refuse_part(wstring_view pattern, wstring_view part) {
    throw_error<CtorException>(messages::kPatternPart, {wstring(pattern), wstring(part)});
}

bool is_latin_letter(wchar c) noexcept {
    return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z');
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

/// Every part comes once, the year with four digits and the others with one or two; a part that may have one
/// digit is not followed by another digit, so that its end can be found; and readers, who skip white space in
/// front, find what a text begins with.
DateFormat::Pattern DateFormat::compile(wstring_view pattern) {
    Pattern pieces;
    const auto append_text = [&](const wstring& text) {
        if (pieces.empty() || pieces.back().width != 0)
            pieces.push_back({0, 0, {}});
        pieces.back().text += text;
    };
    std::array<bool, kLetters.size()> seen{};
    for (wstring_view rest = pattern; !rest.empty();) {
        const wchar front = rest.front();
        if (front == u'\'') {
            const auto text = take_quoted(rest);
            if (!text)
                refuse_part(pattern, rest);
            append_text(text->empty() ? u"'" : *text);
            continue;
        }
        const std::size_t width = std::min(rest.find_first_not_of(front), rest.size());
        const wstring_view letters = rest.substr(0, is_latin_letter(front) ? width : 1);
        rest.remove_prefix(letters.size());
        if (!is_latin_letter(front)) {
            append_text(wstring(letters));
            continue;
        }
        const std::size_t part = kLetters.find(front);
        if (part == wstring_view::npos || seen[part] || (part == 0 ? width != 4 : width > 2))
            refuse_part(pattern, letters);
        seen[part] = true;
        pieces.push_back({part, width, {}});
    }
    for (std::size_t i = 0; i + 1 < pieces.size(); ++i) {
        const Piece& next = pieces[i + 1];
        if (pieces[i].width == 1 && (next.width != 0 || is_ascii_digit(next.text.front())))
            refuse_part(pattern, kLetters.substr(pieces[i].part, 1));
    }
    if (std::find(seen.begin(), seen.end(), true) == seen.end() ||
        (pieces.front().width == 0 && is_space(pieces.front().text.front())))
        refuse_part(pattern, pattern);
    return pieces;
}

/// Takes the parts off the front of `rest`.
bool DateFormat::take(wstring_view& rest, const Pattern& pattern, int* parts) noexcept {
    for (const auto& [part, width, text] : pattern) {
        if (width != 0) {
            parts[part] = part == 0 ? take_number(rest, 4, 4) : take_number(rest, 1, 2);
            if (parts[part] < 0)
                return false;
        } else {
            if (!rest.starts_with(text))
                return false;
            rest.remove_prefix(text.size());
        }
    }
    return true;
}

DateFormat::DateFormat(wstring_view format, const Locale& locale)
    : date_(compile(locale.isRussian() ? u"dd.MM.yyyy" : u"yyyy-MM-dd")), time_(compile(u"HH:mm:ss")) {
    for (const FormatItem& item : format_items(format)) {
        Pattern* const pattern = item.is(u"date")       ? &date_
                                 : item.is(u"time")     ? &time_
                                 : item.is(u"datetime") ? &dateTime_
                                                        : nullptr;
        if (pattern == nullptr)
            item.refuse();
        *pattern = compile(item.text());
    }
    if (dateTime_.empty()) {
        dateTime_ = date_;
        dateTime_.push_back({0, 0, u" "});
        dateTime_.insert(dateTime_.end(), time_.begin(), time_.end());
    }
}

const DateFormat::Pattern& DateFormat::pattern(DatePattern number) const noexcept {
    return number == DatePattern::date ? date_ : number == DatePattern::time ? time_ : dateTime_;
}

void DateFormat::format(Date date, wstring& text, DatePattern number) const {
    Parts parts;
    date.split(parts[0], parts[1], parts[2], parts[3], parts[4], parts[5]);
    text.clear();
    for (const Piece& piece : pattern(number)) {
        if (piece.width != 0)
            append_number(text, parts[piece.part], piece.width);
        else
            text += piece.text;
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
    const bool done = take(rest, pattern(number), parts.data()) &&
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
