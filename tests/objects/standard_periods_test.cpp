// SPDX-License-Identifier: Apache-2.0
// Standard periods and beginning dates as scripts hold them: by both names, equal by what they mean, stored
// with their variants, shown with their dates.
#include "tests/collections/script.h"
#include "tests/support/stopped_clock.h"

#include <core/dates/settings.h>
#include <core/lists/errors.h>
#include <core/objects/standard_periods.h>
#include <core/runtime/threads/thread.h>
#include <core/strings/names.h>

#include <set>

using namespace script;

namespace {

using Variant = StandardPeriodVariant;
using Beginning = StandardBeginningDateVariant;

Settings universal_time(const char* locale = "root") {
    Settings settings;
    settings.locale = Locale(locale);
    settings.language = Locale("en");
    settings.part<DateSettings>().timeZone = "UTC";
    return settings;
}

/// On 22 November 2026, a Sunday.
class StandardPeriods : public testing::Test {
  protected:
    host::HostProcess process_{universal_time()};
    StoppedClock clock_{std::chrono::sys_days(std::chrono::year(2026) / 11 / 22) + std::chrono::hours(13)};
};

GenericValue period(Variant variant) {
    return make(u"СтандартныйПериод", {to_value(variant)});
}

GenericValue stored(const GenericValue& value) {
    return GenericValue::fromString(text(value));
}

/// Each value has two names that a script can write, and none is there twice.
void expect_names(Enumeration& enumeration, std::size_t count) {
    std::set<wstring> names;
    std::set<wstring> shown;
    for (int i = 0; i < enumeration.getNProps(); ++i) {
        const GenericValue value = enumeration.value(i);
        ASSERT_EQ(enumeration.number(value), i);
        for (const int alias : {kEnglish, kRussian}) {
            const wstring name = enumeration.getPropName(i, alias);
            EXPECT_TRUE(is_valid_name(name));
            EXPECT_TRUE(names.insert(name).second) << to_utf8(name);
            Thread::setResourceLocale(Locale(alias == kEnglish ? "en" : "ru"));
            EXPECT_TRUE(shown.insert(value.presentation()).second) << to_utf8(value.presentation());
        }
        EXPECT_TRUE(stored(value).equals(value));
    }
    Thread::setResourceLocale(Locale("en"));
    EXPECT_EQ(names.size(), 2 * count);
}

} // namespace

TEST_F(StandardPeriods, VariantsHaveNamesInBothLanguages) {
    expect_names(*script_enumeration(Variant{}), 48);
    expect_names(*script_enumeration(Beginning{}), 22);
}

TEST_F(StandardPeriods, APeriodGivesItsEndsForNowAndForADay) {
    const GenericValue month = period(Variant::thisMonth);
    EXPECT_TRUE(property(month, u"Variant").equals(to_value(Variant::thisMonth)));
    EXPECT_TRUE(property(month, u"BeginDate").equals(Date(2026, 11, 1)));
    EXPECT_TRUE(property(month, u"ДатаОкончания").equals(Date(2026, 11, 30, 23, 59, 59)));
    EXPECT_TRUE(call(month, u"Contains", {Date(2026, 11, 30, 12)}).isTrue());
    EXPECT_FALSE(call(month, u"Содержит", {Date(2026, 12, 1)}).isTrue());
    const GenericValue february = call(month, u"НаДату", {Date(2024, 2, 5)});
    EXPECT_TRUE(february.equals(make(u"StandardPeriod", {Date(2024, 2, 1), Date(2024, 2, 29, 23, 59, 59)})));
    EXPECT_TRUE(property(february, u"Вариант").equals(to_value(Variant::custom)));

    const GenericValue year = make(u"StandardBeginningDate", {to_value(Beginning::beginningOfThisYear)});
    EXPECT_TRUE(property(year, u"Date").equals(Date(2026, 1, 1)));
    EXPECT_TRUE(call(year, u"On", {Date(2024, 2, 5)}).equals(Date(2024, 1, 1)));
    const GenericValue given = make(u"СтандартнаяДатаНачала", {Date(2024, 2, 5)});
    EXPECT_TRUE(property(given, u"Дата").equals(Date(2024, 2, 5)));
}

TEST_F(StandardPeriods, WhatIsNoPeriodIsRefused) {
    EXPECT_EQ(failure([] { make(u"StandardPeriod", {1}); }), type_mismatch(0));
    EXPECT_EQ(failure([] { make(u"StandardPeriod", {Date(2024, 1, 1)}); }), type_mismatch(0));
    EXPECT_EQ(failure([] { make(u"StandardPeriod", {Date(2024, 1, 1), u"later"}); }), type_mismatch(1));
    EXPECT_EQ(failure([] { make(u"StandardBeginningDate", {to_value(Variant::today)}); }), type_mismatch(0));
    EXPECT_EQ(failure([] { call(period(Variant::today), u"On", {1}); }), type_mismatch(0));
}

TEST_F(StandardPeriods, EqualityAndStoringKeepTheVariant) {
    std::vector<GenericValue> values = {
        make(u"StandardPeriod", {Date(2026, 11, 22), Date(2026, 11, 22, 23, 59, 59)}),
        make(u"StandardBeginningDate"), make(u"StandardBeginningDate", {Date(2026, 11, 22)})};
    for (int i = 0; i <= static_cast<int>(Variant::next7Days); ++i)
        values.push_back(period(static_cast<Variant>(i)));
    for (int i = 1; i <= static_cast<int>(Beginning::beginningOfNextYear); ++i)
        values.push_back(to_value(StandardBeginningDate(static_cast<Beginning>(i))));
    for (const GenericValue& a : values) {
        const GenericValue again = stored(a);
        EXPECT_TRUE(again.equals(a)) << to_utf8(text(a));
        EXPECT_EQ(again.hashCode(), a.hashCode());
        for (const GenericValue& b : values)
            EXPECT_EQ(a.equals(b), &a == &b) << to_utf8(text(a)) << to_utf8(text(b));
    }
    for (const auto* const broken :
         {u"{\"#\",%,{48}}", u"{\"#\",%,{-1}}", u"{\"#\",%,{0,1}}", u"{\"#\",%,{}}"}) {
        wstring list = broken;
        list.replace(list.find(u'%'), 1, to_string(kStandardPeriodClass));
        EXPECT_THROW(static_cast<void>(GenericValue::fromString(list)), ListStreamException) << to_utf8(list);
    }
}

TEST_F(StandardPeriods, AreShownWithTheirDates) {
    const auto shown = [](const GenericValue& value) { return to_utf8(value.presentation()); };
    EXPECT_EQ(shown(period(Variant::thisMonth)), "This month (2026-11-01 – 2026-11-30)");
    EXPECT_EQ(shown(period(Variant::today)), "Today (2026-11-22)");
    EXPECT_EQ(shown(make(u"StandardPeriod")), "Custom");
    EXPECT_EQ(shown(make(u"StandardPeriod", {Date(2026, 1, 1), Date(2026, 1, 31, 23, 59, 59)})),
              "2026-01-01 – 2026-01-31");
    EXPECT_EQ(shown(make(u"StandardPeriod", {Date(2026, 1, 1), Date(2026, 1, 1, 12)})),
              "2026-01-01 00:00:00 – 2026-01-01 12:00:00");
    EXPECT_EQ(shown(make(u"StandardBeginningDate", {to_value(Beginning::beginningOfNextWeek)})),
              "Beginning of the next week (2026-11-23)");
    EXPECT_EQ(shown(make(u"StandardBeginningDate", {Date(2026, 1, 1)})), "2026-01-01");
}

TEST(StandardPeriodPresentation, FollowsTheLocaleOfTheProcess) {
    const host::HostProcess process(universal_time("ru"));
    const StoppedClock clock(std::chrono::sys_days(std::chrono::year(2026) / 11 / 22));
    EXPECT_EQ(to_utf8(period(Variant::thisMonth).presentation()), "This month (01.11.2026 – 30.11.2026)");
}
