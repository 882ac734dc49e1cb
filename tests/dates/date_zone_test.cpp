// SPDX-License-Identifier: Apache-2.0
// Local and universal time, the changes of clocks, and the current date under a clock that stands.
#include "tests/support/stopped_clock.h"

#include <core/dates.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

namespace core {
namespace {

constexpr const char* kBerlin = "Europe/Berlin";

TEST(DateZone, OffsetsFollowTheZone) {
    const Date winter(2004, 1, 15, 12, 0, 0);
    const Date summer(2004, 7, 15, 12, 0, 0);
    EXPECT_EQ(winter.toLocalTime(kBerlin), Date(2004, 1, 15, 13, 0, 0));
    EXPECT_EQ(summer.toLocalTime(kBerlin), Date(2004, 7, 15, 14, 0, 0));
    EXPECT_EQ(summer.toLocalTime("Asia/Kathmandu"), Date(2004, 7, 15, 17, 45, 0));
    for (const char* zone : {kBerlin, "America/St_Johns", "Asia/Tokyo", "UTC", ""}) {
        for (const Date date :
             {winter, summer, Date(1850, 5, 5), Date(1, 1, 3), Date(9999, 12, 29) + DateSpan(1)})
            EXPECT_EQ(date.toLocalTime(zone).toUniversalTime(zone), date) << zone;
    }
    EXPECT_EQ(winter.toLocalTime(), winter.toLocalTime(std::string()));
    EXPECT_EQ(winter.toUniversalTime(), winter.toUniversalTime(std::string()));
}

TEST(DateZone, SkippedAndDoubledHoursUseTheOffsetBeforeTheChange) {
    EXPECT_EQ(Date(2004, 3, 28, 1, 59, 59).toUniversalTime(kBerlin), Date(2004, 3, 28, 0, 59, 59));
    EXPECT_EQ(Date(2004, 3, 28, 2, 30, 0).toUniversalTime(kBerlin), Date(2004, 3, 28, 1, 30, 0));
    EXPECT_EQ(Date(2004, 3, 28, 3, 0, 0).toUniversalTime(kBerlin), Date(2004, 3, 28, 1, 0, 0));
    EXPECT_EQ(Date(2004, 10, 31, 2, 30, 0).toUniversalTime(kBerlin), Date(2004, 10, 31, 0, 30, 0));
    EXPECT_EQ(Date(2004, 10, 31, 3, 0, 0).toUniversalTime(kBerlin), Date(2004, 10, 31, 2, 0, 0));
}

TEST(DateZone, TheEndsOfTheRangeHold) {
    EXPECT_TRUE(Date().toLocalTime("Asia/Tokyo").isEmpty());
    EXPECT_TRUE(Date().toUniversalTime("America/New_York").isEmpty());
    EXPECT_TRUE(Date(1, 1, 1, 0, 0, 1).toUniversalTime("Asia/Tokyo").isEmpty());
    EXPECT_EQ(Date::largest().toLocalTime("Asia/Tokyo"), Date::largest());
}

TEST(DateZone, TheCurrentDateIsTheClocksLocalTimeInWholeSeconds) {
    using namespace std::chrono_literals;
    const auto moment = std::chrono::sys_days(std::chrono::year(2004) / 3 / 1) + 13h + 5min + 7s;
    for (const auto& [time, universal] :
         {std::pair(moment + 999ms, Date(2004, 3, 1, 13, 5, 7)),
          std::pair(std::chrono::sys_days() - 1ms, Date(1969, 12, 31, 23, 59, 59))}) {
        const StoppedClock clock(std::chrono::time_point_cast<std::chrono::system_clock::duration>(time));
        EXPECT_EQ(Date::getCurrentDate(), universal.toLocalTime());
    }
    const auto seconds = Date::getCurrentDate() - Date(1970, 1, 1).toLocalTime();
    const auto system = std::chrono::system_clock::now().time_since_epoch();
    EXPECT_LE(std::abs(seconds.ticks() / kTicksPerSecond -
                       std::chrono::floor<std::chrono::seconds>(system).count()),
              86'400);
}

TEST(DateZone, ZoneAndWeekFollowTheSettingsOfTheProcess) {
    Settings settings;
    settings.part<DateSettings>().timeZone = "Asia/Tokyo";
    settings.part<DateSettings>().firstDayOfWeek = 7;
    const host::HostProcess process(settings);
    const Date date(2004, 3, 3, 12);
    EXPECT_EQ(date.toLocalTime(), Date(2004, 3, 3, 21));
    EXPECT_EQ(date.toUniversalTime(), Date(2004, 3, 3, 3));
    EXPECT_EQ(date.begOfWeek(), Date(2004, 2, 29));
    EXPECT_EQ(date.endOfWeek(), Date(2004, 3, 6, 23, 59, 59));
}

} // namespace
} // namespace core
