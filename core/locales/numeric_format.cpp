// SPDX-License-Identifier: Apache-2.0
#include "core/locales/cached_format.h"
#include "core/locales/format_items.h"

#include <core/locales/numeric_format.h>
#include <core/locales/settings.h>
#include <core/strings/char_class.h>
#include <core/strings/trim.h>

#include <string>

namespace core {
namespace {

constexpr int kMaxFraction = 1000;
constexpr std::size_t kGroup = 3;

std::size_t leading_digits(wstring_view text) noexcept {
    std::size_t count = 0;
    while (count < text.size() && is_ascii_digit(text[count]))
        ++count;
    return count;
}

int fraction_digits(const FormatItem& item) {
    int number = 0;
    if (item.value.empty() || item.value.size() > 4 || leading_digits(item.value) != item.value.size())
        item.refuse();
    for (const wchar c : item.value)
        number = number * 10 + (c - u'0');
    if (number > kMaxFraction)
        item.refuse();
    return number;
}

wchar separator(const FormatItem& item) {
    if (item.value.size() != 1 || item.value[0] == u'\0' || is_digit(item.value[0]) ||
        item.value[0] == u'-' || item.value[0] == u'+')
        item.refuse();
    return item.value[0];
}

/// Moves the whole digits at the front of `rest` to `digits`. After a separator come exactly three digits;
/// where they do not, the separator is not part of the number.
void take_whole(wstring_view& rest, wchar group, std::string& digits) {
    const auto take = [&](std::size_t count) {
        for (const wchar c : rest.substr(0, count))
            digits += static_cast<char>(c);
        rest.remove_prefix(count);
    };
    const std::size_t first = leading_digits(rest);
    take(first);
    if (group == u'\0' || first == 0 || first > kGroup)
        return;
    while (!rest.empty() && rest.front() == group && leading_digits(rest.substr(1)) == kGroup) {
        rest.remove_prefix(1);
        take(kGroup);
    }
}

/// The number at the front of `rest` in the plain form; empty if none exists.
std::string take_number(wstring_view& rest, wchar point, wchar group) {
    std::string plain;
    if (!rest.empty() && (rest.front() == u'-' || rest.front() == u'+')) {
        plain += static_cast<char>(rest.front());
        rest.remove_prefix(1);
    }
    const std::size_t sign = plain.size();
    take_whole(rest, group, plain);
    const std::size_t whole = plain.size() - sign;
    if (!rest.empty() && rest.front() == point && (whole != 0 || leading_digits(rest.substr(1)) != 0)) {
        plain += '.';
        rest.remove_prefix(1);
        take_whole(rest, u'\0', plain);
    }
    return plain.size() == sign ? std::string() : plain;
}

} // namespace

NumericFormat::NumericFormat(wstring_view format) {
    for (const FormatItem& item : format_items(format)) {
        if (item.is(u"fraction"))
            fraction_ = fraction_digits(item);
        else if (item.is(u"point"))
            point_ = separator(item);
        else if (item.is(u"group"))
            group_ = separator(item);
        else if (item.is(u"zero"))
            zero_ = item.text();
        else
            item.refuse();
    }
    if (point_ == group_)
        FormatItem{u"group", wstring(1, group_)}.refuse();
    // The text of zero must not be that of another number.
    wstring_view zero = zero_;
    const std::string plain = take_number(zero, point_, group_);
    if (!plain.empty() && zero.empty() && Numeric::fromString(std::string_view(plain)).sign() != 0)
        FormatItem{u"zero", zero_}.refuse();
}

void NumericFormat::format(const Numeric& number, wstring& text) const {
    if (isPlain()) {
        wchar buffer[64];
        const std::size_t length = number.toString(buffer, std::size(buffer));
        if (length <= std::size(buffer))
            text.assign(buffer, length);
        else
            text = number.toString();
        return;
    }
    const Numeric shown = fraction_ == kAllDigits ? number : number.round(fraction_);
    if (shown.sign() == 0 && !zero_.empty()) {
        text = zero_;
        return;
    }
    const wstring plain = shown.toString();
    const std::size_t begin = shown.sign() < 0 ? 1 : 0;
    const std::size_t end = std::min(plain.find(u'.'), plain.size());
    const wstring_view whole = wstring_view(plain).substr(begin, end - begin);
    const wstring_view fraction = wstring_view(plain).substr(std::min(end + 1, plain.size()));
    const std::size_t wanted =
        fraction_ == kAllDigits ? fraction.size() : static_cast<std::size_t>(fraction_);

    text.assign(plain, 0, begin);
    for (std::size_t i = 0; i < whole.size(); ++i) {
        if (group_ != u'\0' && i != 0 && (whole.size() - i) % kGroup == 0)
            text += group_;
        text += whole[i];
    }
    if (wanted != 0) {
        text += point_;
        text += fraction;
        text.append(wanted - fraction.size(), u'0');
    }
}

wstring NumericFormat::format(const Numeric& number) const {
    wstring text;
    format(number, text);
    return text;
}

bool NumericFormat::parse(wstring_view text, Numeric& number, const wchar** end) const {
    const wchar* stop = text.data();
    Numeric read;
    if (isPlain()) {
        read = Numeric::fromString(text, &stop);
    } else {
        const wstring_view start = trim_left(text);
        wstring_view rest = start;
        const std::string plain = take_number(rest, point_, group_);
        // The longer reading counts: the text of zero may begin like a number ("0 pcs"), and a number like
        // the text of zero ("-5" where zero is "-").
        const std::size_t length = plain.empty() ? 0 : start.size() - rest.size();
        if (zero_.size() > length && start.starts_with(zero_)) {
            stop = start.data() + zero_.size();
        } else if (length != 0) {
            read = Numeric::fromString(std::string_view(plain));
            stop = rest.data();
        }
    }
    if (end != nullptr)
        *end = stop;
    if (stop == text.data())
        return false;
    number = std::move(read);
    return true;
}

const NumericFormat& default_numeric_format() {
    // Nearly every process keeps the plain form, and every text of a number comes through here.
    static const NumericFormat plain;
    const wstring& format = current_settings().part<FormatSettings>().numericFormat;
    return format.empty() ? plain : cached_format<NumericFormat>(format);
}

} // namespace core
