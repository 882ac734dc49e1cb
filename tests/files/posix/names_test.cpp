// SPDX-License-Identifier: Apache-2.0
// Names with any byte, permissions, links and disks of their own, as systems of POSIX have them.
#include "tests/support/file_helpers.h"

#include <filesystem>
#include <random>
#include <string>
#include <system_error>

namespace core {
namespace {

using test::bytes_of;
using test::TempFolder;
using test::text_of;

TEST(DiskScheme, AnEscapedWildcardIsACharacter) {
    const TempFolder folder;
    const auto system = create_file_system();
    for (const char* const name : {"a*1", "ab1",
                                   "a\xFF"
                                   "1",
                                   "a\xFE"
                                   "1",
                                   "a?1"})
        (void)open_disk_file(folder / name, OpenMode::createNew);
    const wstring at = file_url(folder / "");
    const auto names = [&](const wstring& pattern) {
        std::string all;
        for (const FileInfo& info : system->findFile(at + pattern))
            all += file_path(info.url).substr((folder / "").size()) + " ";
        return all;
    };
    EXPECT_EQ(names(u"a%2A*"), "a*1 ");
    EXPECT_EQ(names(u"*%3F?"), "a?1 ");
    EXPECT_EQ(names(u"a%FE*"), "a\xFE"
                               "1 ")
        << "names that are not text are told apart";
    EXPECT_EQ(names(u"a*"), "a*1 a?1 ab1 a\xFE"
                            "1 a\xFF"
                            "1 ");
    EXPECT_EQ(system->remove(at + u"a%2a?"), 1U);
    EXPECT_EQ(names(u"a?1"), "a?1 ab1 a\xFE"
                             "1 a\xFF"
                             "1 ");
}

TEST(DiskScheme, WhatReplacesAFileKeepsItsPermissions) {
    namespace fs = std::filesystem;
    const TempFolder folder;
    const auto system = create_file_system();
    const std::string path = folder / "a";
    const auto write = [](IFile& file) { write_all(file, bytes_of("new")); };
    system->writeFile(file_url(path), write);
    for (const fs::perms permissions : {fs::perms(0600), fs::perms(0664), fs::perms(0755)}) {
        fs::permissions(path, permissions);
        system->writeFile(file_url(path), [&](IFile& file) {
            for (const auto& entry : fs::directory_iterator(fs::path(path).parent_path())) {
                if (entry.path() != path) { // where a file cannot be without a name
                    EXPECT_EQ(entry.status().permissions(), fs::perms(0600)) << "not to be read meanwhile";
                }
            }
            write(file);
        });
        EXPECT_EQ(fs::status(path).permissions(), permissions);
    }
    const std::string named = file_path(create_temp_file_service()->createNamed());
    EXPECT_EQ(fs::status(named).permissions(), fs::perms(0600));
    fs::remove(named);
}

TEST(DiskScheme, ALinkIsRemovedWhereverItLeads) {
    const TempFolder folder;
    std::filesystem::create_symlink("nowhere", folder / "link");
    EXPECT_EQ(create_file_system()->remove(file_url(folder / "link")), 1U);
    EXPECT_FALSE(std::filesystem::is_symlink(folder / "link"));
}

TEST(TempFileService, MakesFilesWithoutAName) {
    const auto file = create_temp_file_service()->create();
    write_all(*file, bytes_of("x"));
    EXPECT_FALSE(std::filesystem::exists(file_path(file->url())));
}

TEST(FileURL, CarriesAnyBytesThereAndBack) {
    std::mt19937 random(3);
    for (int round = 0; round < 500; ++round) {
        std::string path;
        for (auto i = random() % 20; i > 0; --i)
            path.push_back(static_cast<char>(1 + random() % 255));
        EXPECT_EQ(file_path(file_url(path)), path);
    }
}

TEST(DiskScheme, MovesBetweenDisks) {
    namespace fs = std::filesystem;
    const TempFolder folder;
    const std::string other = "/dev/shm/core-move-" + fs::path(folder / "").parent_path().filename().string();
    const auto system = create_file_system();
    write_all(*open_disk_file(folder / "a", OpenMode::createNew), bytes_of("moved"));
    std::error_code error;
    fs::create_hard_link(folder / "a", other, error);
    if (error != std::errc::cross_device_link)
        GTEST_SKIP() << "one disk";
    system->moveFile(file_url(folder / "a"), file_url(other));
    EXPECT_FALSE(fs::exists(folder / "a"));
    EXPECT_EQ(text_of(*open_disk_file(other, OpenMode::read)), "moved");
    fs::remove(other);
}

} // namespace
} // namespace core
