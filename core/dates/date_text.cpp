// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/digit_pairs.h"

#include <core/dates/date.h>
#include <core/strings/char_class.h>

#include <array>
#include <istream>
#include <ostream>

namespace core {
namespace {

enum class Form { digits, xml };

/// What stands before each part in the XML form.
constexpr char kSeparators[] = {'\0', '-', '-', 'T', ':', ':'};

using Parts = std::array<int, 6>; // year, month, day, hour, minute, second

template <Form form, class Char>
Char* write(Date date, Char* out) noexcept {
    Parts parts;
    date.split(parts[0], parts[1], parts[2], parts[3], parts[4], parts[5]);
    out = write_pair(out, static_cast<std::size_t>(parts[0] / 100));
    parts[0] %= 100;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (form == Form::xml && i > 0)
            *out++ = static_cast<Char>(kSeparators[i]);
        out = write_pair(out, static_cast<std::size_t>(parts[i]));
    }
    return out;
}

template <Form form, class Char>
Date read(std::basic_string_view<Char> text, const Char** end) noexcept {
    const Char* at = text.data();
    const Char* const last = at + text.size();
    if (end != nullptr)
        *end = at;
    while (at != last && is_space(*at))
        ++at;
    constexpr std::ptrdiff_t kLength = form == Form::xml ? Date::kXMLTextLength : Date::kTextLength;
    if (last - at < kLength)
        return Date();

    Parts parts{};
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (form == Form::xml && i > 0 && *at++ != static_cast<Char>(kSeparators[i]))
            return Date();
        for (int digits = i == 0 ? 4 : 2; digits > 0; --digits, ++at) {
            if (*at < Char('0') || *at > Char('9'))
                return Date();
            parts[i] = parts[i] * 10 + static_cast<int>(*at - Char('0'));
        }
    }
    if (!Date::isMoment(parts[0], parts[1], parts[2], parts[3], parts[4], parts[5]))
        return Date();
    if (end != nullptr)
        *end = at;
    return Date(parts[0], parts[1], parts[2], parts[3], parts[4], parts[5]);
}

} // namespace

wstring Date::toString() const {
    wstring text(kTextLength, u'\0');
    toString(text.data());
    return text;
}

wstring Date::toXMLString() const {
    wstring text(kXMLTextLength, u'\0');
    toXMLString(text.data());
    return text;
}

wchar* Date::toString(wchar* out) const noexcept {
    return write<Form::digits>(*this, out);
}
char* Date::toString(char* out) const noexcept {
    return write<Form::digits>(*this, out);
}
wchar* Date::toXMLString(wchar* out) const noexcept {
    return write<Form::xml>(*this, out);
}
char* Date::toXMLString(char* out) const noexcept {
    return write<Form::xml>(*this, out);
}

Date Date::fromString(wstring_view text, const wchar** end) noexcept {
    return read<Form::digits>(text, end);
}
Date Date::fromString(std::string_view text, const char** end) noexcept {
    return read<Form::digits>(text, end);
}
Date Date::fromXMLString(wstring_view text, const wchar** end) noexcept {
    return read<Form::xml>(text, end);
}
Date Date::fromXMLString(std::string_view text, const char** end) noexcept {
    return read<Form::xml>(text, end);
}

wostream& Date::toStream(wostream& stream) const {
    wchar text[kTextLength];
    toString(text);
    constexpr std::streamsize kLength = kTextLength;
    if (stream.good() && (stream.rdbuf() == nullptr || stream.rdbuf()->sputn(text, kLength) != kLength))
        stream.setstate(std::ios_base::badbit);
    return stream;
}

bool Date::fromStream(wistream& stream) {
    auto* const buffer = stream.rdbuf();
    if (buffer == nullptr || !stream.good())
        return false;
    using Traits = wistream::traits_type;
    const auto peek = [buffer] {
        const auto next = buffer->sgetc();
        return Traits::eq_int_type(next, Traits::eof()) ? u'\0' : Traits::to_char_type(next);
    };
    while (is_space(peek()))
        buffer->sbumpc();
    wchar text[kTextLength];
    for (wchar& digit : text) {
        digit = peek();
        if (digit < u'0' || digit > u'9')
            return false;
        buffer->sbumpc();
    }
    const wchar* end = nullptr;
    const Date date = fromString(wstring_view(text, kTextLength), &end);
    if (end == text)
        return false;
    *this = date;
    return true;
}

} // namespace core
