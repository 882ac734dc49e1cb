// SPDX-License-Identifier: Apache-2.0
// Format strings of numbers, dates, Booleans and words, texts in several languages, and keys of locales: each
// is refused or works, and what it writes reads back. The input is UTF-8: the format string, a text to read
// and digits, with line feeds between them.
#include <core/locales.h>
#include <core/runtime/utf8.h>

#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

using namespace core;

void require(bool holds) {
    if (!holds)
        std::abort();
}

std::string_view take_line(std::string_view& rest) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    return line;
}

/// Calls `work` with the format of a format string that is not refused.
template <class Format, class Work>
void with_format(const wstring& string, Work work) {
    std::optional<Format> format;
    try {
        format.emplace(string, Locale("ru"));
    } catch (const CtorException&) {
        return;
    }
    work(*format);
}

template <class Format, class Value, class... More>
void check_reading(const Format& format, wstring_view text, Value& value, More... more) {
    const wchar* end = nullptr;
    const bool done = format.parse(text, value, &end, more...);
    require(end >= text.data() && end <= text.data() + text.size());
    require(done || end == text.data());
}

void check_number(const NumericFormat& format, wstring_view text, const Numeric& number, bool readable) {
    Numeric read;
    check_reading(format, text, read);
    const wstring written = format.format(number);
    const wchar* end = nullptr;
    Numeric back;
    if (readable) {
        require(format.parse(written, back, &end) && end == written.data() + written.size());
        require(format.format(back) == written);
    }
}

void check_date(const DateFormat& format, wstring_view text, Date date) {
    for (const DatePattern pattern :
         {DatePattern::asked, DatePattern::date, DatePattern::time, DatePattern::dateTime}) {
        Date read;
        check_reading(format, text, read, pattern);
        (void)format.format(date, pattern);
    }
}

void check_words(const wstring& string, const Numeric& number) {
    try {
        (void)WordsFormat(string, Locale("ru")).format(number);
    } catch (const CtorException&) {
    } catch (const LocaleException&) { // there are no words
    }
}

void check_languages(const wstring& written) {
    try {
        const LocalWString read = LocalWString::fromString(written);
        require(LocalWString::fromString(read.toString()) == read);
    } catch (const CtorException&) {
    } catch (const LocaleException&) {
    }
}

void check_locale(std::string_view key) {
    try {
        const Locale locale(key);
        require(Locale(locale.key()) == locale);
        (void)locale.name(Locale("ru"));
    } catch (const LocaleException&) {
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    const wstring string = from_utf8(take_line(rest));
    const wstring text = from_utf8(take_line(rest));
    const Numeric number = Numeric::fromString(rest.substr(0, 100));
    // A negative number whose text has no digits cannot be read.
    const bool readable = number.sign() >= 0 || string.find(u'=') == wstring::npos ||
                          (string.find(u"neg") == wstring::npos && string.find(u"NEG") == wstring::npos);
    with_format<NumericFormat>(string,
                               [&](const NumericFormat& f) { check_number(f, text, number, readable); });
    with_format<DateFormat>(string, [&](const DateFormat& f) {
        check_date(f, text, Date(static_cast<std::uint64_t>(static_cast<std::int64_t>(number))));
    });
    with_format<BoolFormat>(string, [&](const BoolFormat& f) {
        bool value = false;
        check_reading(f, text, value);
    });
    check_words(string, number);
    check_languages(text);
    check_locale(to_utf8(text));
    return 0;
}
