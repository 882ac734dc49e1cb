// SPDX-License-Identifier: Apache-2.0
// Zones of files, rules and names. The C library reads the same files and rules by code of its own, and is
// the model here.
#include "tests/dates/zone_model.h"

#include <core/dates.h>
#include <core/runtime/threads/thread.h>
#include <core/runtime/utf8.h>
#include <host/host_process.h>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <set>

namespace {

using core::Date;
using core::DateSpan;
using core::TimeZoneException;
using support::EnvironmentVariable;

namespace fs = std::filesystem;

const fs::path kZones = "/usr/share/zoneinfo";

/// A folder that is gone at the end.
class Folder {
  public:
    Folder() {
        std::string name = (fs::temp_directory_path() / "zones-XXXXXX").string();
        path_ = ::mkdtemp(name.data());
    }
    ~Folder() { fs::remove_all(path_); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    /// A file of these bytes. Each has a name of its own, since zones are read once.
    std::string file(const std::string& bytes) {
        const fs::path path = path_ / std::to_string(++count_);
        std::ofstream(path, std::ios::binary) << bytes;
        return path.string();
    }
    [[nodiscard]] const fs::path& path() const { return path_; }

  private:
    fs::path path_;
    int count_ = 0;
};

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

TEST(Zone, EveryZoneOfTheSystemIsTheOneOfTheCLibrary) {
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

TEST(Zone, LeapSecondsOfAFileDoNotCount) {
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

TEST(Zone, RulesAreThoseOfTheCLibrary) {
    // For years before 1971 the C library takes the days of 1970.
    for (const char* rule :
         {"CET-1CEST,M3.5.0,M10.5.0/3", "EST+5EDT,M3.2.0/2:00:00,M11.1.0", "<+0545>-5:45", "UTC0",
          "<-03>3<-02>,M3.5.0/-2,M10.5.0/-1", "IST-2IDT,M3.4.4/26,M10.5.0",
          "AAA-10BBB-10:30:15,J60/2,300/3:30:15", "XXX2YYY,59,J365/-167", "AEST-10AEDT,M10.1.0,M4.1.0/3",
          "XXX3EDT4,0/0,J365/23", ":NZST-12NZDT,M9.5.0/2:45,M4.1.0/3:45"})
        test::expect_as_in_c_library(rule, 1971, 300);
    // Without dates they are those of the United States.
    EXPECT_EQ(Date(2025, 3, 9, 6, 59, 59).toLocalTime("AAA5BBB"), Date(2025, 3, 9, 1, 59, 59));
    EXPECT_EQ(Date(2025, 3, 9, 7).toLocalTime("AAA5BBB"), Date(2025, 3, 9, 3));
    EXPECT_EQ(Date(2025, 11, 2, 5, 59, 59).toLocalTime("AAA5BBB"), Date(2025, 11, 2, 1, 59, 59));
    EXPECT_EQ(Date(2025, 11, 2, 6).toLocalTime("AAA5BBB"), Date(2025, 11, 2, 1));
    EXPECT_EQ(Date(2025, 7, 1).toLocalTime("CET-1CEST-3"), Date(2025, 7, 1, 3));
}

TEST(Zone, WhatIsNoZoneIsRefusedByName) {
    const Date date(2004, 7, 1);
    for (const std::string name : {"No/Such_Zone",
                                   "Europe",
                                   "../zoneinfo/Europe/Berlin",
                                   "/no/such/file",
                                   "/dev/zero",
                                   "CET-1CEST,",
                                   "CET-25",
                                   "CET-1CEST,M3.5.0",
                                   "CET-1CEST,M13.5.0,M10.5.0",
                                   "CET-1CEST,M3.6.0,M10.5.0",
                                   "CET-1CEST,M3.5.7,M10.5.0",
                                   "CET-1CEST,J0,M10.5.0",
                                   "CET-1CEST,366,M10.5.0",
                                   "CET-1:60",
                                   "AB1",
                                   "<AB>1",
                                   "<ABC1",
                                   "CET-1CEST,M3.5.0/168,M10.5.0",
                                   "CET-1CEST,M3.5.0,M10.5.0 ",
                                   "A1B-3"}) {
        try {
            (void)date.toLocalTime(name);
            ADD_FAILURE() << name;
        } catch (const TimeZoneException& e) {
            EXPECT_EQ(core::to_utf8(e.zone()), name);
        }
        EXPECT_THROW((void)date.toUniversalTime(name), TimeZoneException);
    }
    EXPECT_THROW(Date::checkTimeZone(std::string("Europe/Berlin\0", 14)), TimeZoneException);
    EXPECT_THROW(Date::checkTimeZone("\xFF"), TimeZoneException);
    EXPECT_NO_THROW(Date::checkTimeZone(""));
}

TEST(Zone, AProcessOfAnUnknownZoneDoesNotStart) {
    {
        const host::HostProcess process;
        const auto message = [](const char* language) {
            core::Thread::setResourceLocale(core::Locale(language));
            return std::string(TimeZoneException("Mars").what());
        };
        EXPECT_EQ(message("ru"), "Часовой пояс «Mars» неизвестен.");
        EXPECT_EQ(message("en"), "The time zone “Mars” is not known.");
    }
    core::Settings settings;
    settings.part<core::DateSettings>().timeZone = "No/Such_Zone";
    EXPECT_THROW(host::HostProcess{settings}, TimeZoneException);
    EXPECT_EQ(core::current_process(), nullptr);
}

/// A zone file of two offsets, +1:00 and after the epoch +2:00, in the first version's narrow form and, where
/// a rule is given, in the wide one, too.
std::string zone_file(const std::optional<std::string>& rule) {
    using namespace std::string_literals;
    const auto header = [&](char version) {
        return "TZif"s + version + std::string(15, '\0') + std::string(15, '\0') + '\1' + "\0\0\0\2\0\0\0\3"s;
    };
    const std::string types = "\0\0\x0E\x10\0\0\0\0\x1C\x20\0\0ABC"s;
    std::string bytes = header(rule ? '2' : '\0') + "\0\0\0\0\1"s + types;
    if (rule)
        bytes += header('2') + "\0\0\0\0\0\0\0\0\1"s + types + '\n' + *rule + '\n';
    return bytes;
}

TEST(Zone, FilesOfEveryVersionAreRead) {
    Folder folder;
    const Date before(1969, 12, 31, 23, 59, 59);
    const Date after(1970, 1, 1);
    const Date summer(2300, 7, 1);
    for (const auto& [rule, hours] : {std::pair<std::optional<std::string>, int>(std::nullopt, 2),
                                      {"", 2},
                                      {"EET-2", 2},
                                      {"EET-2EEST,M3.5.0/3,M10.5.0/4", 3}}) {
        const std::string zone = folder.file(zone_file(rule));
        EXPECT_EQ(before.toLocalTime(zone) - before, DateSpan(core::kTicksPerHour));
        EXPECT_EQ(Date(1, 6, 1).toLocalTime(zone), Date(1, 6, 1, 1));
        EXPECT_EQ(after.toLocalTime(zone) - after, DateSpan(2 * core::kTicksPerHour));
        EXPECT_EQ(summer.toLocalTime(zone) - summer, DateSpan(hours * core::kTicksPerHour)) << *rule;
        EXPECT_EQ(summer.toLocalTime(":" + zone), summer.toLocalTime(zone));
        const EnvironmentVariable other("TZDIR", folder.path().c_str());
        EXPECT_EQ(summer.toLocalTime(fs::path(zone).filename()), summer.toLocalTime(zone));
    }
}

TEST(Zone, DamagedFilesAreRefusedOrHarmless) {
    Folder folder;
    const auto refused = [&](const std::string& bytes) {
        EXPECT_THROW(Date::checkTimeZone(folder.file(bytes)), TimeZoneException);
    };
    const std::string narrow = zone_file(std::nullopt);
    const std::string wide = zone_file("EET-2EEST,M3.5.0/3,M10.5.0/4");
    for (const std::string& whole : {narrow, wide})
        for (std::size_t size = 0; size < whole.size(); ++size)
            refused(whole.substr(0, size));
    refused("TZiF" + narrow.substr(4));
    refused(zone_file("EET-2EEST,M3.5.0/3"));
    const auto changed = [&](std::size_t from_end, const std::string& bytes) {
        std::string file = narrow;
        file.replace(file.size() - from_end, bytes.size(), bytes);
        return file;
    };
    refused(changed(16, "\2"));                           // no such type
    refused(changed(15, std::string("\0\1\x6D\xA0", 4))); // 26 hours
    refused(changed(15, "\xFF\xFE\x92\x60"));             // -26 hours
    EXPECT_NO_THROW(Date::checkTimeZone(folder.file(changed(15, std::string("\0\1\x6D\x9F", 4)))));
    fs::create_symlink(folder.path(), folder.path() / "loop");
    EXPECT_THROW(Date::checkTimeZone((folder.path() / "loop").string()), TimeZoneException);
    ASSERT_EQ(::mkfifo((folder.path() / "pipe").c_str(), 0600), 0);
    EXPECT_THROW(Date::checkTimeZone((folder.path() / "pipe").string()), TimeZoneException);

    std::mt19937 random(4);
    int read = 0;
    for (int round = 0; round < 1000; ++round) {
        std::string bytes = round % 2 == 0 ? narrow : wide;
        for (int i = 0; i < 2; ++i)
            bytes[random() % bytes.size()] = static_cast<char>(random());
        const std::string zone = folder.file(bytes);
        try {
            for (const Date date : {Date(1, 1, 3), Date(1970, 1, 1), Date(2400, 7, 1), Date(9999, 12, 29)}) {
                const auto offset = date.toLocalTime(zone) - date;
                ASSERT_LT(std::abs(offset.ticks()), 26 * core::kTicksPerHour);
                (void)date.toUniversalTime(zone);
            }
            ++read;
        } catch (const TimeZoneException&) {
        }
        fs::remove(zone);
    }
    EXPECT_GT(read, 50);
}

TEST(Zone, WithoutZoneFilesTheyComeFromICU) {
    Folder folder;
    const EnvironmentVariable empty("TZDIR", folder.path().c_str());
    const Date winter(2004, 1, 15);
    const Date summer(9876, 7, 15);
    EXPECT_EQ(winter.toLocalTime("Europe/Madrid"), Date(2004, 1, 15, 1));
    EXPECT_EQ(summer.toLocalTime("Europe/Madrid"), Date(9876, 7, 15, 2));
    EXPECT_EQ(Date(9876, 7, 15, 2).toUniversalTime("Europe/Madrid"), summer);
    EXPECT_EQ(Date(1971, 7, 15).toLocalTime("Europe/Madrid"), Date(1971, 7, 15, 1));
    EXPECT_EQ(Date(2371, 7, 15).toLocalTime("Europe/Madrid"), Date(2371, 7, 15, 2)) << "400 years later";
    EXPECT_EQ(winter.toLocalTime("Australia/Brisbane"), Date(2004, 1, 15, 10));
    EXPECT_THROW(Date::checkTimeZone("Europe/Nowhere"), TimeZoneException);
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

TEST(ZoneDeathTest, TheSystemsZoneIsThatOfTZ) {
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
