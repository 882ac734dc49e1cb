// SPDX-License-Identifier: Apache-2.0
// The C++ code of docs/files.md, compiled from the page itself, does what its sentences say.
#include "tests/support/file_helpers.h"

#include <thread>

std::vector<core::wstring> archive(core::IFileSystem& files, const core::wstring& report,
                                   const core::wstring& to);
std::uint64_t next_number(core::IFile& counter);

namespace core {
namespace {

TEST(FilesPage, ItsFunctionsDoWhatItSays) {
    const test::TempFolder folder;
    const auto files = create_file_system();
    const auto write = [](IFile& file) { write_all(file, test::bytes_of("x")); };
    files->makeFolder(file_url(folder / "report/data"));
    files->writeFile(file_url(folder / "report/a b.txt"), write);
    files->writeFile(file_url(folder / "report/data/ж"), write);
    const wstring to = file_url(folder / "archive");
    const std::vector<wstring> names{u"a b.txt", u"data", u"ж"};
    EXPECT_EQ(archive(*files, file_url(folder / "report/a b.txt"), to), names);
    EXPECT_THROW(archive(*files, file_url(folder / "report/a b.txt"), to), FileException);

    const wstring url = u"shm://page test " + to_string(new_guid());
    const auto first = files->openURL(url, OpenMode::create);
    const auto second = files->openURL(url, OpenMode::create);
    std::thread other([&] {
        for (int i = 0; i < 100; ++i)
            (void)next_number(*second);
    });
    for (int i = 0; i < 100; ++i)
        (void)next_number(*first);
    other.join();
    EXPECT_EQ(next_number(*first), 201U);
}

} // namespace
} // namespace core
