// SPDX-License-Identifier: Apache-2.0
#include "core/locales/cached_format.h"
#include "core/locales/date_layout.h"

#include <core/locales/date_format.h>
#include <core/locales/settings.h>
#include <core/strings/trim.h>

namespace core {
namespace {

const DatePieces& pieces_of(const DateLayout& layout, DatePattern pattern) noexcept {
    switch (pattern == DatePattern::asked ? layout.asked : pattern) {
    case DatePattern::date:
        return layout.date;
    case DatePattern::time:
        return layout.time;
    default:
        return layout.dateTime;
    }
}

/// The format of the texts of dates, which has defaults of its own.
struct ValueDateFormat {
    ValueDateFormat(const wstring& key, const Locale& locale) : format(DateFormat::ofValues(key, locale)) {}
    DateFormat format;
};

/// Reads a date in one form; what another form has read from more of the text stays.
void attempt(const DatePieces& form, wstring_view start, std::size_t& length, Date& date) {
    wstring_view rest = start;
    Date read;
    if (form.read(rest, read) && start.size() - rest.size() > length) {
        length = start.size() - rest.size();
        date = read;
    }
}

} // namespace

DateFormat::DateFormat(wstring_view format) : layout_(date_layout(format, Locale(), DateDefaults::iso)) {}

DateFormat::DateFormat(wstring_view format, const Locale& locale)
    : layout_(date_layout(format, locale, DateDefaults::users)) {}

void DateFormat::format(Date date, wstring& text, DatePattern pattern) const {
    text.clear();
    if (date.isEmpty() && layout_->empty)
        text = *layout_->empty;
    else
        pieces_of(*layout_, pattern).write(date, text);
}

wstring DateFormat::format(Date date, DatePattern pattern) const {
    wstring text;
    format(date, text, pattern);
    return text;
}

bool DateFormat::parse(wstring_view text, Date& date, const wchar** end, DatePattern pattern) const {
    const wstring_view start = trim_left(text);
    const DatePattern wanted = pattern == DatePattern::asked ? layout_->asked : pattern;
    Date read;
    std::size_t length = 0;
    attempt(pieces_of(*layout_, wanted), start, length, read);
    wstring_view rest = start;
    if (Date iso; take_iso(rest, iso, wanted) && start.size() - rest.size() > length) {
        length = start.size() - rest.size();
        read = iso;
    }
    if (pattern == DatePattern::asked) {
        for (const DatePieces& other : layout_->others)
            attempt(other, start, length, read);
    }
    const auto& empty = layout_->empty;
    const bool isEmpty =
        empty && (empty->empty() ? start.empty() : empty->size() > length && start.starts_with(*empty));
    if (isEmpty) {
        length = empty->size();
        read = Date();
    }
    const bool found = length != 0 || isEmpty;
    if (end != nullptr)
        *end = found ? start.data() + length : text.data();
    if (found)
        date = read;
    return found;
}

DateFormat DateFormat::ofValues(wstring_view format, const Locale& locale) {
    DateFormat made;
    made.layout_ = date_layout(format, locale, DateDefaults::values);
    return made;
}

const DateFormat& default_date_format() {
    const Settings& settings = current_settings();
    return cached_format<ValueDateFormat>(settings.part<FormatSettings>().dateFormat, settings.locale).format;
}

} // namespace core
