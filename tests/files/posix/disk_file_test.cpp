// SPDX-License-Identifier: Apache-2.0
#include "tests/support/file_helpers.h"

#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

namespace core {
namespace {

using test::bytes_of;
using test::reason_of;
using test::TempFolder;

TEST(DiskFile, ReadsAPipeFromItsBeginningToItsEnd) {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    ASSERT_EQ(::write(ends[1], "abcdef", 6), 6);
    const auto file = open_disk_file("/proc/self/fd/" + std::to_string(ends[0]), OpenMode::read);
    ::close(ends[1]);
    char bytes[4];
    EXPECT_EQ(file->read(bytes, 4), 4U);
    EXPECT_EQ(std::string(bytes, 4), "abcd");
    EXPECT_THROW((void)file->readAt(0, bytes, 1), FileException) << "what has passed is gone";
    EXPECT_EQ(file->read(bytes, 4), 2U);
    EXPECT_EQ(std::string(bytes, 2), "ef");
    EXPECT_EQ(file->read(bytes, 4), 0U);
    ::close(ends[0]);
}

TEST(DiskFile, ALimitOfItsLengthIsAnErrorAndNoSignal) {
    const TempFolder folder;
    const std::string path = folder / "f";
    const auto written = [&path] {
        const struct rlimit limit = {1000, RLIM_INFINITY};
        if (::setrlimit(RLIMIT_FSIZE, &limit) != 0)
            return 2;
        const auto file = open_disk_file(path, OpenMode::createNew);
        const std::string text(3000, 'x');
        bool right = reason_of([&] { write_all(*file, bytes_of(text)); }) == EFBIG && file->length() == 1000;
        right = right && reason_of([&] { file->truncate(1001); }) == EFBIG;
        file->truncate(10);
        file->truncate(1000);
        const struct rlimit more = {2000, RLIM_INFINITY};
        right = right && ::setrlimit(RLIMIT_FSIZE, &more) == 0 && file->writeAt(1999, "y", 1) == 1;
        const struct rlimit none = {RLIM_INFINITY, RLIM_INFINITY}; // for the counts of a build with counters
        right = right && ::setrlimit(RLIMIT_FSIZE, &none) == 0;
        return right ? 0 : 1;
    };
    EXPECT_EXIT(::_exit(written()), testing::ExitedWithCode(0), "");
}

class FileBesideTest : public testing::Test {
  protected:
    void save(const std::string& text) {
        files_->writeFile(file_url(path_), [&](IFile& file) { write_all(file, bytes_of(text)); });
    }
    [[nodiscard]] std::string saved() const { return test::text_of(*open_disk_file(path_, OpenMode::read)); }
    [[nodiscard]] std::size_t names() const {
        const std::filesystem::directory_iterator all(std::filesystem::path(path_).parent_path());
        return static_cast<std::size_t>(std::distance(begin(all), end(all)));
    }

    TempFolder folder_;
    InterfacePtr<IFileSystem> files_ = create_file_system();
    std::string path_ = folder_ / "a";
    std::string beside_ = folder_ / ".core-a"; // what a kill leaves, just before a file is replaced
};

TEST_F(FileBesideTest, WhatAKillLeftIsOutOfTheWay) {
    save("old");
    write_all(*open_disk_file(beside_, OpenMode::createNew), bytes_of("killed"));
    save("new");
    EXPECT_EQ(saved(), "new");
    EXPECT_EQ(names(), 1U);
    std::filesystem::create_directory(beside_);
    save("newer");
    EXPECT_EQ(saved(), "newer");
    EXPECT_TRUE(std::filesystem::is_directory(beside_)) << "it was left by nobody here";
    EXPECT_EQ(names(), 2U);
}

TEST_F(FileBesideTest, SaversOfOneFileDoNotDisturbEachOther) {
    save("new");
    std::vector<std::thread> savers;
    for (char c = 'a'; c < 'e'; ++c) {
        savers.emplace_back([this, c] {
            for (int i = 0; i < 100; ++i)
                EXPECT_NO_THROW(save(std::string(1000, c)));
        });
    }
    for (int i = 0; i < 1000; ++i) {
        const std::string text = saved();
        ASSERT_TRUE(text == "new" || text == std::string(1000, text.at(0)));
    }
    for (std::thread& saver : savers)
        saver.join();
    EXPECT_EQ(names(), 1U);
}

} // namespace
} // namespace core
