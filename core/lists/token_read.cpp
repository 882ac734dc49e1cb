// SPDX-License-Identifier: Apache-2.0
#include "core/lists/token_read.h"

#include "core/lists/unit_scan.h"
#include "core/runtime/hex_digit.h"

#include <core/lists/token.h>

#include <algorithm>
#include <array>
#include <limits>

namespace core {
namespace detail {
namespace {

constexpr int kEnd = UnitSource::kEnd;

int digit_of(int unit) noexcept {
    return unit == kEnd ? -1 : core::digit(static_cast<wchar>(unit));
}

/// A string of any length.
class WholeText {
  public:
    explicit WholeText(wstring& text) : text_(text) {}
    [[nodiscard]] std::size_t room() const noexcept { return std::numeric_limits<std::size_t>::max(); }
    void append(wstring_view units) { text_.append(units); }

  private:
    wstring& text_;
};

/// A string of limited length. That the limit is reached is a failure at once, whatever follows.
class LimitedText {
  public:
    LimitedText(wchar* buffer, std::size_t size) noexcept : at_(buffer), end_(buffer + size) {}
    [[nodiscard]] std::size_t room() const noexcept { return static_cast<std::size_t>(end_ - at_); }
    void append(wstring_view units) noexcept { at_ = std::copy(units.begin(), units.end(), at_); }
    void terminate() noexcept { *at_ = u'\0'; }

  private:
    wchar* at_;
    wchar* end_;
};

enum class AfterQuote { unit, closed, malformed };

/// What a quote inside a string means, by what follows it.
AfterQuote read_after_quote(UnitSource& source, wchar& unit) {
    if (source.skipIf(u'"')) {
        unit = u'"';
        return AfterQuote::unit;
    }
    if (!source.skipIf(u'\\'))
        return AfterQuote::closed;
    wchar digits[4];
    for (wchar& digit : digits) {
        const int next = source.peek();
        if (next == kEnd || hex_digit(static_cast<wchar>(next)) < 0)
            return AfterQuote::malformed;
        digit = static_cast<wchar>(next);
        source.skip();
    }
    unit = unescape_char(digits);
    return AfterQuote::unit;
}

template <class Text>
bool read_quoted(UnitSource& source, Text text) {
    if (!source.skipIf(u'"'))
        return false;
    while (text.room() != 0) {
        if (TextBuffer* const runs = source.runs(); runs != nullptr && runs->fill()) {
            const wstring_view run = runs->atHand().substr(0, text.room());
            const wchar* const end = find_unit<EndsPlainRead>(run.data(), run.data() + run.size());
            text.append({run.data(), end});
            runs->readTo(end);
            if (end == run.data() + run.size())
                continue;
        }
        const int next = source.take();
        if (next == kEnd)
            return false;
        auto unit = static_cast<wchar>(next);
        if (unit == u'"') {
            switch (read_after_quote(source, unit)) {
            case AfterQuote::unit:
                break;
            case AfterQuote::closed:
                if constexpr (requires { text.terminate(); })
                    text.terminate();
                return true;
            case AfterQuote::malformed:
                return false;
            }
        }
        text.append({&unit, 1});
    }
    return false;
}

} // namespace

bool read_boolean(UnitSource& source, bool& value) {
    const int unit = source.peek();
    if (unit != u'0' && unit != u'1')
        return false;
    value = unit == u'1';
    source.skip();
    return true;
}

bool read_integer(UnitSource& source, bool withSign, std::uint64_t& value) {
    value = 0;
    bool negative = false;
    if (const int sign = source.peek(); withSign && (sign == u'-' || sign == u'+')) {
        negative = sign == u'-';
        source.skip();
    }
    int digit = digit_of(source.peek());
    if (digit < 0)
        return false;
    for (; digit >= 0; digit = digit_of(source.peek())) {
        value = value * 10 + static_cast<unsigned>(digit);
        source.skip();
    }
    if (negative)
        value = 0 - value;
    return true;
}

bool read_guid(UnitSource& source, GUID& id) {
    id = kNullGuid;
    wchar text[kGuidTextLength];
    for (std::size_t i = 0; i < kGuidTextLength; ++i) {
        const int next = source.peek();
        if (next == kEnd)
            return false;
        const auto unit = static_cast<wchar>(next);
        if (is_guid_hyphen(i) ? unit != u'-' : hex_digit(unit) < 0)
            return false;
        text[i] = unit;
        source.skip();
    }
    return from_string({text, kGuidTextLength}, id);
}

bool read_string(UnitSource& source, wstring& text) {
    text.clear();
    if (read_quoted(source, WholeText(text)))
        return true;
    text.clear();
    return false;
}

bool read_string(UnitSource& source, wchar* buffer, std::size_t size) {
    if (size == 0)
        return false;
    if (read_quoted(source, LimitedText(buffer, size)))
        return true;
    *buffer = u'\0';
    return false;
}

bool get_integer(wistream& in, bool withSign, std::uint64_t& value) {
    UnitSource source(in);
    source.skipSpaces();
    return read_integer(source, withSign, value);
}

} // namespace detail

using detail::UnitSource;

namespace {

bool next_is(wistream& in, wchar unit) {
    UnitSource source(in);
    source.skipSpaces();
    return source.peek() == unit;
}

bool take_next(wistream& in, wchar unit) {
    UnitSource source(in);
    source.skipSpaces();
    return source.skipIf(unit);
}

} // namespace

void skip_spaces(wistream& in) {
    UnitSource(in).skipSpaces();
}

bool is_begin_of_list(wistream& in) {
    return next_is(in, u'{');
}
bool is_end_of_list(wistream& in) {
    return next_is(in, u'}');
}
bool is_comma(wistream& in) {
    return next_is(in, u',');
}
bool get_begin_of_list(wistream& in) {
    return take_next(in, u'{');
}
bool get_end_of_list(wistream& in) {
    return take_next(in, u'}');
}
bool get_comma(wistream& in) {
    return take_next(in, u',');
}

bool from_stream(wistream& in, bool& value) {
    UnitSource source(in);
    source.skipSpaces();
    return detail::read_boolean(source, value);
}

bool from_stream(wistream& in, double& value) {
    UnitSource source(in);
    return detail::read_double(source, value);
}

bool from_stream(wistream& in, float& value) {
    UnitSource source(in);
    source.skipSpaces();
    if (!detail::read_float(source, value))
        in.setstate(std::ios_base::failbit);
    return !in.fail();
}

bool from_stream(wistream& in, GUID& id) {
    UnitSource source(in);
    source.skipSpaces();
    return detail::read_guid(source, id);
}

bool from_stream(wistream& in, wstring& text) {
    UnitSource source(in);
    source.skipSpaces();
    return detail::read_string(source, text);
}

bool from_stream(wistream& in, wchar* buffer, std::uint32_t size) {
    UnitSource source(in);
    source.skipSpaces();
    return detail::read_string(source, buffer, size);
}

wchar unescape_char(const wchar* in) noexcept {
    unsigned unit = 0;
    for (int i = 0; i < 4; ++i)
        unit = unit << 4 | static_cast<unsigned>(hex_digit(in[i]));
    return static_cast<wchar>(unit);
}

} // namespace core
