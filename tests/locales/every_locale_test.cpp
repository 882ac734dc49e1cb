// SPDX-License-Identifier: Apache-2.0
// Every locale of ICU: what is written is what ICU's own formatters write, and reads back.
#include "tests/locales/read_back.h"

#include <core/locales/date_format.h>
#include <core/locales/numeric_format.h>
#include <core/runtime/utf8.h>

#include <unicode/decimfmt.h>
#include <unicode/gregocal.h>
#include <unicode/smpdtfmt.h>

#include <memory>
#include <random>
#include <vector>

namespace core {
namespace {

wstring text_of(const icu::UnicodeString& text) {
    return wstring(text.getBuffer(), static_cast<std::size_t>(text.length()));
}

std::vector<std::string> all_locales() {
    std::int32_t count = 0;
    const icu::Locale* const all = icu::Locale::getAvailableLocales(count);
    std::vector<std::string> names;
    for (std::int32_t i = 0; i < count; ++i)
        names.emplace_back(all[i].getName());
    return names;
}

std::string random_number(std::mt19937_64& random) {
    std::string digits = random() % 2 == 0 ? "-" : "";
    digits += std::to_string(random() % 9 + 1);
    for (std::size_t length = random() % 15; length != 0; --length)
        digits += static_cast<char>('0' + random() % 10);
    if (random() % 3 != 0)
        digits += '.' + std::to_string(random() % 10'000) + '1';
    return digits;
}

/// What ICU writes of a number, with all its digits.
wstring icu_text(icu::DecimalFormat& format, const std::string& number) {
    UErrorCode status = U_ZERO_ERROR;
    icu::UnicodeString text;
    format.format(icu::StringPiece(number), text, nullptr, status);
    return text_of(text);
}

TEST(EveryLocale, WritesNumbersAsIcuDoesAndReadsThem) {
    std::mt19937_64 random(1);
    for (const std::string& name : all_locales()) {
        for (const auto& [style, string] : {std::pair{UNUM_DECIMAL, u""}, {UNUM_PERCENT, u"scale=percent"}}) {
            UErrorCode status = U_ZERO_ERROR;
            const std::unique_ptr<icu::NumberFormat> made(
                icu::NumberFormat::createInstance(icu::Locale(name.c_str()), style, status));
            auto& icu = dynamic_cast<icu::DecimalFormat&>(*made);
            icu.setMaximumFractionDigits(30);
            icu.setMinimumGroupingDigits(UNUM_MINIMUM_GROUPING_DIGITS_AUTO);
            const NumericFormat format(string, Locale(name));
            for (int i = 0; i < 20; ++i) {
                const std::string digits = random_number(random);
                const Numeric number = Numeric::fromString(std::string_view(digits));
                const wstring text = format.format(number);
                EXPECT_EQ(to_utf8(text), to_utf8(icu_text(icu, digits))) << name;
                Numeric back;
                EXPECT_EQ(read(format, text, back), static_cast<std::ptrdiff_t>(text.size()))
                    << name << ": " << to_utf8(text);
                EXPECT_EQ(back, number) << name << ": " << to_utf8(text);
            }
        }
    }
}

TEST(EveryLocale, ReadsEachSignAndPlainDigits) {
    for (const std::string& name : all_locales()) {
        for (const wstring_view sign : {u"before", u"behind", u"brackets"}) {
            const NumericFormat format(u"fraction=2; sign=" + wstring(sign), Locale(name));
            for (const char* const digits : {"-1234567.25", "-0.5", "1234.75", "0", "-12"}) {
                const Numeric number = Numeric::fromString(std::string_view(digits));
                const wstring text = format.format(number);
                Numeric back(77);
                EXPECT_EQ(read(format, text, back), static_cast<std::ptrdiff_t>(text.size()))
                    << name << ": " << to_utf8(text);
                EXPECT_EQ(back, number) << name << ": " << to_utf8(text);
            }
            Numeric back;
            EXPECT_EQ(read(format, u"-1234", back), 5) << name;
            EXPECT_EQ(back, Numeric(-1234)) << name;
        }
    }
}

/// ICU's own formatter of a form, by the Gregorian calendar of all times.
std::unique_ptr<icu::SimpleDateFormat> icu_format(const std::string& name, icu::DateFormat::EStyle date,
                                                  icu::DateFormat::EStyle time) {
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale locale(name.c_str());
    locale.setKeywordValue("calendar", "gregorian", status);
    std::unique_ptr<icu::DateFormat> made(icu::DateFormat::createDateTimeInstance(date, time, locale));
    auto calendar = std::make_unique<icu::GregorianCalendar>(*icu::TimeZone::getGMT(), locale, status);
    calendar->setGregorianChange(-1e18, status);
    made->adoptCalendar(calendar.release());
    EXPECT_TRUE(U_SUCCESS(status));
    return std::unique_ptr<icu::SimpleDateFormat>(dynamic_cast<icu::SimpleDateFormat*>(made.release()));
}

UDate icu_date(Date date) {
    const Date epoch(1970, 1, 1);
    return static_cast<double>((date - epoch).ticks()) / 10;
}

TEST(EveryLocale, WritesDatesAsIcuDoesAndReadsThem) {
    using Style = icu::DateFormat;
    struct Form {
        const char16_t* string;
        Style::EStyle date;
        Style::EStyle time;
    };
    const Form forms[] = {{u"date=short", Style::kShort, Style::kNone},
                          {u"date=medium", Style::kMedium, Style::kNone},
                          {u"date=long", Style::kLong, Style::kNone},
                          {u"date=full", Style::kFull, Style::kNone},
                          {u"time=short", Style::kNone, Style::kShort},
                          {u"time=medium", Style::kNone, Style::kMedium},
                          {u"date=full; time=short", Style::kFull, Style::kShort},
                          {u"", Style::kMedium, Style::kMedium}};
    std::mt19937_64 random(2);
    const std::uint64_t first = Date(1969, 1, 1).ticks();
    const std::uint64_t span = Date(2069, 1, 1).ticks() - first;
    for (const std::string& name : all_locales()) {
        for (const Form& form : forms) {
            const auto icu = icu_format(name, form.date, form.time);
            const DateFormat format(form.string, Locale(name));
            for (int i = 0; i < 10; ++i) {
                Date date = Date(first + random() % span).begOfMinute();
                if (form.time == Style::kMedium)
                    date += DateSpan(static_cast<std::int64_t>(random() % 60) * kTicksPerSecond);
                const wstring text = format.format(date, DatePattern::asked);
                icu::UnicodeString expected;
                EXPECT_EQ(to_utf8(text), to_utf8(text_of(icu->format(icu_date(date), expected))))
                    << name << ' ' << to_utf8(form.string);
                Date back;
                EXPECT_EQ(read(format, text, back, DatePattern::asked),
                          static_cast<std::ptrdiff_t>(text.size()))
                    << name << ' ' << to_utf8(form.string) << ": " << to_utf8(text);
                const DateSpan time = date - date.begOfDay();
                EXPECT_EQ(back, form.date == Style::kNone   ? Date() + time
                                : form.time == Style::kNone ? date.begOfDay()
                                                            : date)
                    << name << ": " << to_utf8(text);
            }
            Date iso;
            EXPECT_EQ(read(format, u"2024-02-29", iso, DatePattern::date), 10) << name;
            EXPECT_EQ(iso, Date(2024, 2, 29)) << name;
        }
    }
}

TEST(EveryLocale, TheCalendarIsGregorianForEveryYear) {
    for (const Date date :
         {Date(1, 1, 1, 1, 0, 0), Date(1000, 2, 28), Date(1582, 10, 10), Date(9999, 12, 31)}) {
        const auto icu = icu_format("en", icu::DateFormat::kFull, icu::DateFormat::kNone);
        icu->applyPattern(u"EEEE, d MMMM yyyy, D");
        icu::UnicodeString expected;
        const DateFormat format(u"date='EEEE, d MMMM yyyy, D'", Locale("en"));
        EXPECT_EQ(to_utf8(format.format(date, DatePattern::date)),
                  to_utf8(text_of(icu->format(icu_date(date), expected))));
        Date back;
        EXPECT_GT(read(format, format.format(date, DatePattern::date), back, DatePattern::date), 0);
        EXPECT_EQ(back, date.begOfDay());
    }
}

} // namespace
} // namespace core
