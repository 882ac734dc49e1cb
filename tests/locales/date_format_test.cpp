// SPDX-License-Identifier: Apache-2.0
// Standard patterns by locale and chosen ones: what is written reads back, nothing else is read.
#include "tests/locales/read_back.h"

#include <core/dates/settings.h>
#include <core/locales/date_format.h>
#include <core/runtime/utf8.h>
#include <host/host_process.h>

#include <random>
#include <string>
#include <tuple>

namespace core {
namespace {

TEST(DateFormat, StandardPatternsFollowTheLocaleAndReadBack) {
    const Date date(2004, 3, 1, 13, 5, 7);
    EXPECT_EQ(DateFormat().format(date), u"2004-03-01 13:05:07");
    EXPECT_EQ(DateFormat::ofValues(u"", Locale("de")).format(date), u"2004-03-01 13:05:07");
    const DateFormat russian = DateFormat::ofValues(u"", kRussian);
    EXPECT_EQ(russian.format(date), u"01.03.2004 13:05:07");
    EXPECT_EQ(russian.format(date, DatePattern::date), u"01.03.2004");
    EXPECT_EQ(DateFormat(u"", Locale("de")).format(date), u"01.03.2004, 13:05:07");
    EXPECT_EQ(DateFormat().format(date, DatePattern::time), u"13:05:07");

    std::mt19937_64 random(2);
    const DateFormat formats[] = {
        DateFormat(),
        russian,
        DateFormat(u"datetime=s.m.H d/M/yyyy"),
        DateFormat(u"locale=ru; datetime='EEEE, d MMMM y, h:mm:ss a'"),
        DateFormat(u"locale=en; datetime='MMM dd yyyy K:mm:ss B'"),
        DateFormat(u"datetime=YYYY-'W'ww cccc HH:mm:ss"),
        DateFormat(u"datetime='D/y QQQ kk.mm.ss'"),
        DateFormat(u"datetime=yyyyMMddHHmmss"),
        DateFormat(u"date=ddMMyyyy; time='HHmmss''Z'''"),
        DateFormat(u"datetime='''Datum: ''dd.MM.yyyy'' um ''H ''o''''clock'' г.mm''''ss'")};
    for (const DateFormat& format : formats) {
        for (int i = 0; i < 2000; ++i) {
            const Date written = Date(random() % Date::kLimit);
            const wstring text = format.format(written);
            Date back;
            ASSERT_EQ(read(format, u"\t" + text + u"9", back), static_cast<std::ptrdiff_t>(text.size() + 1));
            ASSERT_EQ(back.toString(), written.toString());
        }
        Date back(1);
        EXPECT_GE(read(format, format.format(Date()), back), 0);
        EXPECT_TRUE(back.isEmpty());
    }
}

TEST(DateFormat, ReadsOnlyItsPattern) {
    const DateFormat format = DateFormat::ofValues(u"", kRussian);
    Date date(2000, 1, 1);
    for (const wstring_view text :
         {u"", u"01.03.2004", u"01.03.2004 13:05", u"2004-3-1 13:05:07", u"30.02.2004 00:00:00",
          u"01.13.2004 00:00:00", u"01.03.2004 24:00:00", u"01.03.2004 12:60:00", u"01.03.2004 12:00:60",
          u"01.03.04 13:05:07", u"20040301130507", u"00.00.0000 00:00:00", u"01.03.2004  13:05:07",
          u"2004-03-011", u"2004-02-30", u"2004-13-01"})
        EXPECT_EQ(read(format, text, date), -1) << std::string(text.begin(), text.end());
    EXPECT_EQ(read(format, u"1.3.2004 9:5:7", date), 14);
    EXPECT_EQ(date, Date(2004, 3, 1, 9, 5, 7));
    EXPECT_EQ(read(format, u"13:05:07", date, DatePattern::time), 8);
    EXPECT_EQ(date, Date(1, 1, 1, 13, 5, 7));
    const DateFormat names(u"locale=en; date='EEEE d MMMM yyyy'");
    EXPECT_EQ(read(names, u"monday 1 MARCH 2004", date, DatePattern::date), 19);
    EXPECT_EQ(read(names, u"Tuesday 1 March 2004", date, DatePattern::date), -1) << "it was a Monday";
    EXPECT_EQ(read(names, u"Monday 1 Mar 2004", date, DatePattern::date), -1);
    EXPECT_EQ(read(DateFormat(u"locale=en; date='MMMMM d yyyy'"), u"J 1 2004", date, DatePattern::date), -1)
        << "June or July";
    EXPECT_EQ(read(DateFormat(u"locale=en; date='MMMMM d yyyy'"), u"F 1 2004", date, DatePattern::date), 8);
    EXPECT_EQ(format.format(Date(Date::kLimit)), u"00.00.0000 00:00:00");
    EXPECT_EQ(DateFormat(u"date=d-M-yyyy").format(Date(Date::kLimit)), u"0-0-0000 00:00:00");
    EXPECT_EQ(DateFormat(u"date=MMMM.EEE").format(Date(Date::kLimit), DatePattern::date), u".");
    expect_refused<DateFormat>({u"date=", u"time=' HH'", u"moment=HH", u"date", u"date=dd; Date=d"});
}

TEST(DateFormat, IsoIsReadBesideEveryPattern) {
    const DateFormat format(u"locale=ru");
    const std::pair<wstring_view, Date> moments[] = {
        {u"2004-03-01", Date(2004, 3, 1)},
        {u"2004-03-01T13:05", Date(2004, 3, 1, 13, 5)},
        {u"2004-03-01t13:05:07", Date(2004, 3, 1, 13, 5, 7)},
        {u"2004-03-01 13:05:07,25", Date(2004, 3, 1, 13, 5, 7) + DateSpan(2500)},
        {u"2004-03-01T13:05:07.123456789", Date(2004, 3, 1, 13, 5, 7) + DateSpan(1234)},
        {u"2004-03-01T13:05:07Z", Date(2004, 3, 1, 14, 5, 7)},
        {u"2004-03-01T13:05:07.5+03:00", Date(2004, 3, 1, 11, 5, 7) + DateSpan(5000)},
        {u"2004-03-01T13:05-0130", Date(2004, 3, 1, 15, 35)},
        {u"2004-03-01T23:05-01", Date(2004, 3, 2, 1, 5)}};
    Settings settings;
    settings.part<DateSettings>().timeZone = "Etc/GMT-1";
    const host::HostProcess process(settings);
    for (const auto& [text, expected] : moments) {
        Date date;
        EXPECT_EQ(read(format, text, date, DatePattern::asked), static_cast<std::ptrdiff_t>(text.size()))
            << to_utf8(text);
        EXPECT_EQ(date, expected) << to_utf8(text);
    }
    const std::pair<wstring_view, std::ptrdiff_t> cut[] = {{u"2004-03-01T24:00", 10},
                                                           {u"2004-03-01T13", 10},
                                                           {u"2004-03-01T13:05:60", 10},
                                                           {u"2004-03-01T13:05+25:00", 10},
                                                           {u"0001-01-01T00:00+01:00", 10},
                                                           {u"2004-03-01T13:05:07.", 19},
                                                           {u"2004-03-0", -1},
                                                           {u"04-03-01", -1}};
    for (const auto& [text, length] : cut) {
        Date date;
        EXPECT_EQ(read(format, text, date, DatePattern::asked), length) << to_utf8(text);
    }
    Date date;
    EXPECT_EQ(read(DateFormat(u"time='h a'"), u"13:05:07", date, DatePattern::asked), 8);
    EXPECT_EQ(date, Date(1, 1, 1, 13, 5, 7));
}

TEST(DateFormat, YearsOfTwoDigitsAndTheEmptyDate) {
    Date date;
    const DateFormat two(u"date=dd.MM.yy; empty=never", Locale("de"));
    EXPECT_EQ(read(two, u"01.02.68", date, DatePattern::asked), 8);
    EXPECT_EQ(date, Date(2068, 2, 1));
    EXPECT_EQ(read(two, u"01.02.69", date, DatePattern::asked), 8);
    EXPECT_EQ(date, Date(1969, 2, 1));
    EXPECT_EQ(two.format(Date(), DatePattern::asked), u"never");
    EXPECT_EQ(read(two, u" never", date, DatePattern::asked), 6);
    EXPECT_TRUE(date.isEmpty());
    EXPECT_EQ(DateFormat(u"", Locale("de")).format(Date()), u"");
    date = Date(2004, 1, 1);
    EXPECT_TRUE(DateFormat(u"", Locale("de")).parse(u"", date));
    EXPECT_TRUE(date.isEmpty());
}

TEST(DateFormat, TextIsQuotedAndOtherLettersAreRefusedByName) {
    const Date date(2004, 3, 1, 13, 5, 7);
    EXPECT_EQ(DateFormat(u"date='''Datum'': dd.MM.yyyy'").format(date, DatePattern::date),
              u"Datum: 01.03.2004");
    EXPECT_EQ(DateFormat(u"date=d.M.yyyy 'г'.").format(date, DatePattern::date), u"1.3.2004 г.");
    EXPECT_EQ(DateFormat(u"time=H 'o''clock', m'' s").format(date, DatePattern::time), u"13 o'clock, 5' 7");
    const std::tuple<wstring_view, std::string, std::string, std::string> cases[] = {
        {u"time=hh:mm tt", "hh:mm tt", "tt", "7"},
        {u"time='''h'' h:mm'", "'h' h:mm", "h", "5"},
        {u"date='Datum: dd.MM.yyyy'", "Datum: dd.MM.yyyy", "t", "3"},
        {u"date=yyyy-MM-yyyy", "yyyy-MM-yyyy", "yyyy", "9"},
        {u"date=yyyy-MM-LLL", "yyyy-MM-LLL", "LLL", "9"},
        {u"date=yyy-MM-dd", "yyy-MM-dd", "yyy", "1"},
        {u"date=ddd", "ddd", "ddd", "1"},
        {u"date=dMyyyy", "dMyyyy", "d", "1"},
        {u"date=d1", "d1", "d", "1"},
        {u"date=d'1'", "d'1'", "d", "1"},
        {u"date=dd 'of MM", "dd 'of MM", "'of MM", "4"},
        {u"date=''' ''dd'", "' 'dd", "' 'dd", "1"},
        {u"date='''today'''", "'today'", "'today'", "1"}};
    for (const auto& [format, pattern, part, place] : cases) {
        try {
            (void)DateFormat(format);
            ADD_FAILURE() << pattern;
        } catch (const CtorException& e) {
            EXPECT_EQ(std::string(e.what()), "In the date pattern “" + pattern + "” the part “" + part +
                                                 "” at character " + place +
                                                 " means nothing. Text stands between apostrophes.");
        }
    }
}

} // namespace
} // namespace core
