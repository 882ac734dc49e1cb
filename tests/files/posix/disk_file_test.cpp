// SPDX-License-Identifier: Apache-2.0
#include "tests/support/file_helpers.h"

#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <string>

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

} // namespace
} // namespace core
