// SPDX-License-Identifier: Apache-2.0
// Zones of files, rules and names, as on every system.
#include "tests/support/environment.h"
#include "tests/support/new_folder.h"

#include <core/dates.h>
#include <core/runtime/threads/thread.h>
#include <core/runtime/utf8.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <random>

namespace {

using core::Date;
using core::DateSpan;
using core::TimeZoneException;
using support::EnvironmentVariable;

namespace fs = std::filesystem;

/// A folder that is gone at the end.
class Folder {
  public:
    Folder() = default;
    ~Folder() { fs::remove_all(path_); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    /// A file of these bytes. Each has a name of its own, since zones are read once.
    std::string file(const std::string& bytes) {
        const fs::path path = path_ / std::to_string(++count_);
        std::ofstream(path, std::ios::binary) << bytes;
        return path.generic_string();
    }
    [[nodiscard]] const fs::path& path() const { return path_; }

  private:
    fs::path path_ = support::new_folder("zones");
    int count_ = 0;
};

TEST(Zone, RulesWithoutDatesAreThoseOfTheUnitedStates) {
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
        const EnvironmentVariable other("TZDIR", folder.path().string().c_str());
        EXPECT_EQ(summer.toLocalTime(fs::path(zone).filename().string()), summer.toLocalTime(zone));
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
    EXPECT_THROW(Date::checkTimeZone(folder.path().generic_string()), TimeZoneException);

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
    const EnvironmentVariable empty("TZDIR", folder.path().string().c_str());
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

} // namespace
