// SPDX-License-Identifier: Apache-2.0
#include "core/exchange/cells/locale_forms.h"

#include "core/locales/date_symbols.h"

#include <core/runtime/utf8.h>
#include <core/strings/char_class.h>
#include <core/strings/integer_text.h>

#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include <algorithm>

namespace core {
namespace {

// A number has its digits behind the point as its shape, and this where it stands in groups.
constexpr LocaleForms::Shape kGrouped = 0x20;
// A date has 0, 2 or 3 units of time, and this where day and month have two digits.
constexpr LocaleForms::Shape kPadded = 0x20;

/// The locale's short pattern with whole years, and with day and month in `digits` digits; empty where it has
/// words in it.
wstring day_pattern(const Locale& locale, std::size_t digits) {
    const LocalePattern pattern = locale_pattern(locale, DateStyle::shortForm, std::nullopt);
    wstring made;
    for (std::size_t i = 0, end = 0; i < pattern.text.size() && pattern.months.empty(); i = end) {
        const wchar unit = pattern.text[i];
        end = std::min(pattern.text.find_first_not_of(unit, i), pattern.text.size());
        if (unit == u'd' || (unit == u'M' && end - i <= 2))
            made.append(digits, unit);
        else if (unit == u'y')
            made += u"yyyy";
        else if (unit < 0x80 && !is_alpha(unit) && unit != u'\'')
            made.append(end - i, unit);
        else
            return {};
    }
    return made;
}

/// The digits that stand at the end.
std::size_t last_digits(wstring_view text) noexcept {
    const auto is_digit = [](wchar unit) { return u_charDigitValue(unit) >= 0; };
    return static_cast<std::size_t>(std::find_if_not(text.rbegin(), text.rend(), is_digit) - text.rbegin());
}

bool is_iso(std::string_view text) noexcept {
    return text.size() >= 10 && text[4] == '-' && text[7] == '-' &&
           is_ascii_digit(static_cast<wchar>(text[0]));
}

} // namespace

LocaleForms::LocaleForms(const Locale& locale)
    : locale_(locale), number_({}, locale),
      date_({}, locale), times_{DateFormat(u"time=HH:mm"), DateFormat(u"time=HH:mm:ss")} {
    for (const std::size_t digits : {1U, 2U}) {
        if (const wstring pattern = day_pattern(locale, digits); !pattern.empty())
            days_.emplace_back(u"date='" + pattern + u"'", locale);
    }
}

std::optional<Numeric> LocaleForms::number(std::string_view text) {
    units_ = from_utf8(text);
    Numeric number;
    const wchar* end = nullptr;
    if (!number_.parse(units_, number, &end) || end != units_.data() + units_.size())
        return std::nullopt;
    return number;
}

bool LocaleForms::isPadded() const noexcept {
    int first = -1;
    for (std::size_t i = 0; i < units_.size();) {
        UChar32 character = 0;
        U16_NEXT(units_.data(), i, units_.size(), character);
        const int digit = u_charDigitValue(character);
        if (first >= 0)
            return first == 0 && digit >= 0;
        first = digit;
    }
    return false;
}

std::optional<Date> LocaleForms::date(std::string_view text) {
    if (is_iso(text))
        return std::nullopt;
    units_ = from_utf8(text);
    Date date;
    const wchar* end = nullptr;
    if (!date_.parse(units_, date, &end, DatePattern::asked))
        return std::nullopt;
    wstring_view rest = wstring_view(units_).substr(static_cast<std::size_t>(end - units_.data()));
    if (rest.empty())
        return date;
    // Programs write a plain time behind the day, whatever the locale's own form is.
    if (rest.front() != u' ' || date != date.begOfDay())
        return std::nullopt;
    rest.remove_prefix(1);
    for (const DateFormat& format : times_) {
        if (Date time; format.parse(rest, time, &end, DatePattern::time) && end == rest.data() + rest.size())
            return date + (time - Date());
    }
    return std::nullopt;
}

std::optional<LocaleForms::Shape> LocaleForms::shapeOf(const Numeric& number) {
    std::int64_t length = 0;
    std::int64_t precision = 0;
    number.lengthAndPrecision(length, precision);
    for (const std::size_t digits : {last_digits(units_), std::size_t{0}}) {
        if (digits > Numeric::kMaxScale || static_cast<std::int64_t>(digits) < precision)
            continue;
        for (const Shape grouped : {Shape{0}, kGrouped}) {
            const auto shape = static_cast<Shape>(digits | grouped);
            numbers(shape).format(number, again_);
            if (again_ == units_)
                return shape;
        }
    }
    return std::nullopt;
}

std::optional<LocaleForms::Shape> LocaleForms::shapeOf(Date date) {
    const auto colons = std::ranges::count(units_, u':');
    const auto timeUnits = static_cast<std::size_t>(colons == 0 ? 0 : colons + 1);
    if (days_.empty() || timeUnits > 3)
        return std::nullopt;
    for (const Shape padded : {Shape{0}, kPadded}) {
        const auto shape = static_cast<Shape>(timeUnits | padded);
        compose(date, shape);
        if (again_ == units_)
            return shape;
    }
    return std::nullopt;
}

void LocaleForms::write(std::string& out, const Numeric& number, Shape shape) {
    numbers(shape).format(number, again_);
    out += to_utf8(again_);
}

void LocaleForms::write(std::string& out, Date date, Shape shape) {
    compose(date, shape);
    out += to_utf8(again_);
}

const NumericFormat& LocaleForms::numbers(Shape shape) {
    auto& format = numbers_[shape];
    if (!format) {
        const bool grouped = (shape & kGrouped) != 0;
        format.emplace(u"fraction=" + string_intto(shape & ~kGrouped) + (grouped ? u"" : u"; group=''"),
                       locale_);
    }
    return *format;
}

/// Makes the text of a date in `again_`.
void LocaleForms::compose(Date date, Shape shape) {
    days_[(shape & kPadded) != 0 ? 1 : 0].format(date, again_, DatePattern::date);
    const auto timeUnits = static_cast<std::size_t>(shape & ~kPadded);
    if (timeUnits == 0)
        return;
    times_[timeUnits - 2].format(date, time_, DatePattern::time);
    again_.append(u" ").append(time_);
}

} // namespace core
