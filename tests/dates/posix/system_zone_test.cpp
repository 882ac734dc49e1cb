// SPDX-License-Identifier: Apache-2.0
// Zones beside those of the C library, which reads the same files and rules by code of its own, and the zone
// of the system.
#include "tests/dates/zone_model.h"
#include "tests/support/new_folder.h"

#include <core/dates.h>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <set>

namespace {

using core::Date;
using core::DateSpan;
using core::TimeZoneException;

namespace fs = std::filesystem;

const fs::path kZones = "/usr/share/zoneinfo";

std::string content(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> names_below(const fs::path& folder) {
    std::vector<std::string> names;
    std::error_code error;
    for (const auto& entry : fs::recursive_directory_iterator(folder, error))
        if (entry.is_regular_file() && content(entry.path()).starts_with("TZif"))
            names.push_back(fs::relative(entry.path(), folder).string());
    return names;
}

TEST(SystemZone, EveryZoneOfTheSystemIsTheOneOfTheCLibrary) {
    std::set<std::string> seen;
    for (const std::string& name : names_below(kZones)) {
        if (name.starts_with("right/") || name.starts_with("posix/"))
            continue; // the one counts leap seconds, the other is the same again
        if (seen.insert(content(kZones / name)).second) // many names have one zone
            test::expect_as_in_c_library(name, 1, 40);
        if (HasFailure())
            break;
    }
    if (seen.empty())
        GTEST_SKIP() << "the system has no zone files";
}

TEST(SystemZone, LeapSecondsOfAFileDoNotCount) {
    std::mt19937_64 random(3);
    for (const std::string name : {"Europe/Berlin", "America/Caracas", "Asia/Almaty"}) {
        if (!fs::exists(kZones / "right" / name))
            GTEST_SKIP() << "the system has no zone files with leap seconds";
        for (int i = 0; i < 2000; ++i) {
            const Date date =
                Date(1960, 1, 1) +
                DateSpan(static_cast<std::int64_t>(random() % 2'000'000'000) * core::kTicksPerSecond);
            ASSERT_EQ(date.toLocalTime("right/" + name), date.toLocalTime(name));
        }
    }
}

TEST(SystemZone, RulesAreThoseOfTheCLibrary) {
    // For years before 1971 the C library takes the days of 1970.
    for (const char* rule :
         {"CET-1CEST,M3.5.0,M10.5.0/3", "EST+5EDT,M3.2.0/2:00:00,M11.1.0", "<+0545>-5:45", "UTC0",
          "<-03>3<-02>,M3.5.0/-2,M10.5.0/-1", "IST-2IDT,M3.4.4/26,M10.5.0",
          "AAA-10BBB-10:30:15,J60/2,300/3:30:15", "XXX2YYY,59,J365/-167", "AEST-10AEDT,M10.1.0,M4.1.0/3",
          "XXX3EDT4,0/0,J365/23", ":NZST-12NZDT,M9.5.0/2:45,M4.1.0/3:45"})
        test::expect_as_in_c_library(rule, 1971, 300);
}

TEST(SystemZone, ALinkToItselfAndAPipeAreRefused) {
    const fs::path folder = support::new_folder("zones");
    fs::create_symlink(folder, folder / "loop");
    EXPECT_THROW(Date::checkTimeZone((folder / "loop").string()), TimeZoneException);
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_THROW(Date::checkTimeZone((folder / "pipe").string()), TimeZoneException);
    fs::remove_all(folder);
}

/// The system's zone is found once, so that each case takes a process of its own.
void expect_system_zone(const char* tz, const Date& universal, const Date& local) {
    EXPECT_EXIT(
        {
            tz != nullptr ? ::setenv("TZ", tz, 1) : ::unsetenv("TZ");
            std::_Exit(universal.toLocalTime() == local ? 0 : 1);
        },
        testing::ExitedWithCode(0), "")
        << (tz != nullptr ? tz : "no TZ");
}

TEST(SystemZoneDeathTest, TheSystemsZoneIsThatOfTZ) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const Date date(2025, 7, 1);
    expect_system_zone("Asia/Tokyo", date, Date(2025, 7, 1, 9));
    expect_system_zone(":Asia/Tokyo", date, Date(2025, 7, 1, 9));
    expect_system_zone("EST5EDT,M3.2.0,M11.1.0", date, Date(2025, 6, 30, 20));
    expect_system_zone("", date, date);
    EXPECT_EXIT(
        {
            ::setenv("TZ", "No/Such_Zone", 1);
            try {
                (void)Date::getCurrentDate();
            } catch (const TimeZoneException& e) {
                std::_Exit(e.zone() == u"No/Such_Zone" ? 0 : 1);
            }
        },
        testing::ExitedWithCode(0), "");
    if (fs::exists("/etc/localtime"))
        expect_system_zone(nullptr, date, date.toLocalTime("/etc/localtime"));
}

} // namespace
