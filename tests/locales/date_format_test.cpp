// SPDX-License-Identifier: Apache-2.0
// Standard patterns by locale and chosen ones: what is written reads back, nothing else is read.
#include "tests/locales/read_back.h"

#include <core/locales/date_format.h>

#include <random>
#include <string>
#include <tuple>

namespace core {
namespace {

TEST(DateFormat, StandardPatternsFollowTheLocaleAndReadBack) {
    const Date date(2004, 3, 1, 13, 5, 7);
    EXPECT_EQ(DateFormat().format(date), u"2004-03-01 13:05:07");
    EXPECT_EQ(DateFormat(u"", Locale("de")).format(date), u"2004-03-01 13:05:07");
    EXPECT_EQ(DateFormat(u"", Locale("rue")).format(date), u"2004-03-01 13:05:07");
    EXPECT_EQ(DateFormat(u"", kRussian).format(date), u"01.03.2004 13:05:07");
    EXPECT_EQ(DateFormat(u"", kRussian).format(date, DatePattern::date), u"01.03.2004");
    EXPECT_EQ(DateFormat().format(date, DatePattern::time), u"13:05:07");

    std::mt19937_64 random(2);
    const DateFormat formats[] = {
        DateFormat(), DateFormat(u"", kRussian), DateFormat(u"datetime=s.m.H d/M/yyyy"),
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
        EXPECT_GT(read(format, format.format(Date()), back), 0);
        EXPECT_TRUE(back.isEmpty());
    }
}

TEST(DateFormat, ReadsOnlyItsPattern) {
    const DateFormat format(u"", kRussian);
    Date date(2000, 1, 1);
    for (const wstring_view text :
         {u"", u"01.03.2004", u"01.03.2004 13:05", u"2004-03-01 13:05:07", u"30.02.2004 00:00:00",
          u"01.13.2004 00:00:00", u"01.03.2004 24:00:00", u"01.03.2004 12:60:00", u"01.03.2004 12:00:60",
          u"01.03.04 13:05:07", u"20040301130507", u"00.00.0000 00:00:00", u"01.03.2004  13:05:07"})
        EXPECT_EQ(read(format, text, date), -1) << std::string(text.begin(), text.end());
    EXPECT_EQ(read(format, u"1.3.2004 9:5:7", date), 14);
    EXPECT_EQ(date, Date(2004, 3, 1, 9, 5, 7));
    EXPECT_EQ(read(format, u"13:05:07", date, DatePattern::time), 8);
    EXPECT_EQ(date, Date(1, 1, 1, 13, 5, 7));
    EXPECT_EQ(format.format(Date(Date::kLimit)), u"00.00.0000 00:00:00");
    EXPECT_EQ(DateFormat(u"date=d-M-yyyy").format(Date(Date::kLimit)), u"0-0-0000 00:00:00");
    expect_refused<DateFormat>({u"date=", u"time=' HH'", u"moment=HH", u"date", u"date=dd; Date=d"});
}

TEST(DateFormat, TextIsQuotedAndOtherLettersAreRefusedByName) {
    const Date date(2004, 3, 1, 13, 5, 7);
    EXPECT_EQ(DateFormat(u"date='''Datum'': dd.MM.yyyy'").format(date, DatePattern::date),
              u"Datum: 01.03.2004");
    EXPECT_EQ(DateFormat(u"date=d.M.yyyy 'г'.").format(date, DatePattern::date), u"1.3.2004 г.");
    EXPECT_EQ(DateFormat(u"time=H 'o''clock', m'' s").format(date, DatePattern::time), u"13 o'clock, 5' 7");
    const std::tuple<wstring_view, std::string, std::string> cases[] = {
        {u"time=hh:mm tt", "hh:mm tt", "hh"},
        {u"time=H:mm tt", "H:mm tt", "tt"},
        {u"date='Datum: dd.MM.yyyy'", "Datum: dd.MM.yyyy", "D"},
        {u"date=yyyy-MM-yyyy", "yyyy-MM-yyyy", "yyyy"},
        {u"date=yy-MM-dd", "yy-MM-dd", "yy"},
        {u"date=ddd", "ddd", "ddd"},
        {u"date=dMyyyy", "dMyyyy", "d"},
        {u"date=d1", "d1", "d"},
        {u"date=d'1'", "d'1'", "d"},
        {u"date=dd 'of MM", "dd 'of MM", "'of MM"},
        {u"date=''' ''dd'", "' 'dd", "' 'dd"},
        {u"date='''today'''", "'today'", "'today'"}};
    for (const auto& [format, pattern, part] : cases) {
        try {
            (void)DateFormat(format);
            ADD_FAILURE() << pattern;
        } catch (const CtorException& e) {
            EXPECT_EQ(std::string(e.what()), "In the date pattern “" + pattern + "” the part “" + part +
                                                 "” means nothing. Text stands between apostrophes.");
        }
    }
}

} // namespace
} // namespace core
