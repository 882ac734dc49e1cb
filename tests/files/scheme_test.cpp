// SPDX-License-Identifier: Apache-2.0
#include "tests/support/file_helpers.h"
#include "tests/support/hooked_file.h"

#include <cerrno>
#include <filesystem>
#include <limits>
#include <string>

namespace core {
namespace {

using test::bytes_of;
using test::reason_of;
using test::TempFolder;
using test::text_of;

class EveryScheme : public testing::TestWithParam<const char*> {
  protected:
    [[nodiscard]] wstring url(std::string_view name) const {
        return GetParam() == std::string_view("file") ? file_url(folder_ / name)
                                                      : u"MEM://" + from_utf8(name);
    }
    void put(std::string_view name, std::string_view text) {
        const auto file = system_->openURL(url(name), OpenMode::replace);
        write_all(*file, bytes_of(text));
        file->close();
    }
    std::string get(std::string_view name) { return text_of(*system_->openURL(url(name), OpenMode::read)); }
    std::string list(std::string_view pattern) {
        const bool disk = GetParam() == std::string_view("file"); // a pattern is not escaped
        std::string names;
        for (const FileInfo& info : system_->findFile(disk ? from_utf8(folder_ / pattern) : url(pattern)))
            names += to_utf8(info.name) + ":" + std::to_string(info.length) + " ";
        return names;
    }

    TempFolder folder_;
    InterfacePtr<IFileSystem> system_ = create_file_system();
};
INSTANTIATE_TEST_SUITE_P(Schemes, EveryScheme, testing::Values("file", "mem"),
                         [](const auto& info) { return info.param; });

TEST_P(EveryScheme, FindsCopiesMovesAndRemoves) {
    put("one.txt", "1");
    put("two.txt", "22");
    put("ж.dat", "");
    EXPECT_EQ(list("*"), "one.txt:1 two.txt:2 ж.dat:0 ");
    EXPECT_EQ(list("t*.txt"), "two.txt:2 ");
    EXPECT_EQ(list("?.dat"), "ж.dat:0 ");
    EXPECT_EQ(list("none"), "");
    system_->copyFile(url("two.txt"), url("ж.dat"));
    EXPECT_EQ(get("ж.dat"), "22");
    system_->moveFile(url("one.txt"), url("three.txt"));
    EXPECT_EQ(list("*"), "three.txt:1 two.txt:2 ж.dat:2 ");
    EXPECT_EQ(reason_of([&] { system_->copyFile(url("two.txt"), url("two.txt")); }), EEXIST);
    EXPECT_EQ(reason_of([&] { system_->moveFile(url("two.txt"), url("two.txt")); }), EEXIST);
    EXPECT_EQ(reason_of([&] { system_->moveFile(url("gone"), url("x")); }), ENOENT);
    EXPECT_EQ(reason_of([&] { system_->copyFile(url("gone"), url("x")); }), ENOENT);
    EXPECT_EQ(reason_of([&] { system_->remove(url("gone")); }), ENOENT);
    EXPECT_EQ(system_->remove(url("three.txt")), 1U);
    EXPECT_EQ(list("*"), "two.txt:2 ж.dat:2 ") << "failures left nothing behind";
}

TEST_P(EveryScheme, OpensAsTheModeSays) {
    const auto open = [&](OpenMode mode) { return system_->openURL(url("a"), mode); };
    EXPECT_EQ(reason_of([&] { (void)open(OpenMode::read); }), ENOENT);
    EXPECT_EQ(reason_of([&] { (void)open(OpenMode::readWrite); }), ENOENT);
    write_all(*open(OpenMode::createNew), bytes_of("kept"));
    EXPECT_EQ(reason_of([&] { (void)open(OpenMode::createNew); }), EEXIST);
    EXPECT_EQ(text_of(*open(OpenMode::create)), "kept");
    EXPECT_EQ(text_of(*open(OpenMode::readWrite)), "kept");
    const auto outlives = open(OpenMode::readWrite);
    EXPECT_EQ(system_->remove(url("a")), 1U);
    EXPECT_EQ(text_of(*outlives), "kept") << "its name is gone, the file is open";
    write_all(*open(OpenMode::replace), bytes_of("new"));
    EXPECT_EQ(open(OpenMode::replace)->length(), 0U);
    EXPECT_EQ(list("*"), "a:0 ");
}

TEST_P(EveryScheme, WritesAWholeFileOrNone) {
    put("a", "old");
    const auto broken = [](IFile& file) {
        write_all(file, bytes_of("half"));
        throw std::runtime_error("no more");
    };
    EXPECT_THROW(system_->writeFile(url("a"), broken), std::runtime_error);
    EXPECT_THROW(system_->writeFile(url("b"), broken), std::runtime_error);
    EXPECT_EQ(list("*"), "a:3 ");
    system_->writeFile(url("a"), [](IFile& file) { write_all(file, bytes_of("whole")); });
    EXPECT_EQ(get("a"), "whole");
    const std::string longest(255, 'n');
    system_->writeFile(url(longest), [](IFile&) {});
    EXPECT_EQ(list("*"), "a:5 " + longest + ":0 ") << "no longer name is needed on the way";
}

/// A file that cannot be closed.
class Unclosable : public test::HookedFile {
  public:
    using HookedFile::HookedFile;
    void close() override { throw_file_error(messages::kFileWrite, url(), ENOSPC); }
};

/// A scheme that says no more than it must; its files lie in memory.
class PlainScheme : public IFileScheme {
  public:
    using Interfaces = InterfaceList<IFileScheme>;
    explicit PlainScheme(IFileSystem& files) : files_(files.findScheme(u"mem")) {}
    const wstring& schemeName() const noexcept override { return name_; }
    URL parseURL(const wstring& url) const override { return split_url(url); }
    InterfacePtr<IFile> openURL(const wstring& url, OpenMode mode) override {
        return SCOM_InternalClass<Unclosable>::create(files_->openURL(url, mode), test::FileHooks());
    }
    std::vector<FileInfo> findFile(const wstring& pattern) override { return files_->findFile(pattern); }
    std::size_t remove(const wstring& pattern) override { return files_->remove(pattern); }
    void copyFile(const wstring& from, const wstring& to) override { files_->copyFile(from, to); }
    void moveFile(const wstring& from, const wstring& to) override { files_->moveFile(from, to); }

  private:
    InterfacePtr<IFileScheme> files_;
    wstring name_ = u"plain";
};

TEST(PlainSchemeTest, AFileThatCannotBeClosedLeavesNothing) {
    const auto system = create_file_system();
    system->registerScheme(make_object<PlainScheme>(*system).get());
    EXPECT_EQ(reason_of([&] {
                  system->writeFile(u"plain://a", [](IFile& file) { write_all(file, bytes_of("half")); });
              }),
              ENOSPC);
    EXPECT_TRUE(system->findFile(u"mem://*").empty());
}

TEST(DiskScheme, APathWithAZeroByteIsNoOtherPath) {
    const TempFolder folder;
    const auto system = create_file_system();
    const wstring kept = file_url(folder / "a");
    write_all(*open_disk_file(folder / "a", OpenMode::createNew), bytes_of("kept"));
    const wstring plain = from_utf8(folder / "a") + wstring(u"\0b", 2);
    for (const wstring& cut : {kept + u"%00b", plain, kept + u"%00*", file_url(folder / "") + u"%00*"}) {
        EXPECT_EQ(reason_of([&] { (void)system->openURL(cut, OpenMode::create); }), EINVAL);
        EXPECT_EQ(reason_of([&] { (void)system->findFile(cut); }), EINVAL);
        EXPECT_EQ(reason_of([&] { system->remove(cut); }), EINVAL);
        EXPECT_EQ(reason_of([&] { system->moveFile(cut, kept + u"2"); }), EINVAL);
        EXPECT_EQ(reason_of([&] { system->moveFile(kept, cut); }), EINVAL);
        EXPECT_EQ(reason_of([&] { system->copyFile(cut, kept + u"2"); }), EINVAL);
        EXPECT_EQ(reason_of([&] { system->copyFile(kept, cut); }), EINVAL);
    }
    EXPECT_EQ(system->findFile(file_url(folder / "") + u"*").size(), 1U);
}

TEST(FileTime, StaysWithinTheCalendar) {
    EXPECT_EQ(unix_date(0), kUnixEpoch);
    EXPECT_EQ(unix_date(15'000'000'000), Date(2445, 5, 1, 2, 40, 0)) << "more nanoseconds than 64 bits hold";
    EXPECT_GE(unix_date(std::numeric_limits<std::int64_t>::max()), Date(9999, 12, 31));
    EXPECT_EQ(unix_date(std::numeric_limits<std::int64_t>::min()), Date());
}

TEST(FileSystem, CarriesFilesBetweenSchemes) {
    const TempFolder folder;
    const auto system = create_file_system();
    write_all(*system->openURL(u"mem://a", OpenMode::create), bytes_of("across"));
    system->moveFile(u"mem://a", file_url(folder / "b"));
    EXPECT_TRUE(system->findFile(u"mem://*").empty());
    EXPECT_EQ(text_of(*open_disk_file(folder / "b", OpenMode::read)), "across");
    EXPECT_EQ(reason_of([&] { (void)system->openURL(u"nowhere://a", OpenMode::read); }), ENOTSUP);
    const auto info = system->findFile(from_utf8(folder / "b"));
    ASSERT_EQ(info.size(), 1U);
    EXPECT_LT((universal_now() - info[0].modified).ticks(), kTicksPerHour);
}

TEST(FileSystem, ARegisteredSchemeReplacesTheOneOfItsName) {
    const auto system = create_file_system();
    const auto other = create_file_system()->findScheme(u"mem");
    const auto old = system->findScheme(u"MEM");
    ASSERT_NE(other, old);
    system->registerScheme(other.get());
    EXPECT_EQ(system->findScheme(u"mem"), other);
    system->revokeScheme(u"Mem");
    EXPECT_FALSE(system->findScheme(u"mem"));
}

TEST(TempFileService, MakesFilesThatVanish) {
    const auto service = create_temp_file_service();
    auto file = service->create();
    write_all(*file, bytes_of("x"));
    const std::string path = file_path(file->url());
    file.reset();
    EXPECT_FALSE(std::filesystem::exists(path));
    const wstring named = service->createNamed();
    const wstring other = service->createNamed();
    EXPECT_NE(named, other);
    EXPECT_TRUE(std::filesystem::remove(file_path(named)));
    EXPECT_TRUE(std::filesystem::remove(file_path(other)));
}

TEST(DiskScheme, TellsFoldersFromFiles) {
    namespace fs = std::filesystem;
    const TempFolder folder;
    const auto system = create_file_system();
    fs::create_directory(folder / "sub");
    (void)open_disk_file(folder / "sub/x", OpenMode::createNew);
    write_all(*open_disk_file(folder / "file", OpenMode::createNew), bytes_of("123"));
    const auto found = system->findFile(file_url(folder / "") + u"*");
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].name, u"file");
    EXPECT_EQ(found[0].length, 3U);
    EXPECT_FALSE(found[0].isFolder);
    EXPECT_EQ(found[1].name, u"sub");
    EXPECT_EQ(found[1].length, 0U);
    EXPECT_TRUE(found[1].isFolder);
    EXPECT_EQ(system->remove(file_url(folder / "") + u"*"), 1U) << "folders stay";
    EXPECT_TRUE(fs::is_directory(folder / "sub"));
    EXPECT_EQ(reason_of([&] { system->remove(file_url(folder / "sub")); }), ENOTEMPTY);
    EXPECT_TRUE(system->findFile(file_url(folder / "missing/") + u"*").empty());
    EXPECT_EQ(reason_of([&] { (void)system->findFile(file_url(folder / "sub/x/") + u"*"); }), ENOTDIR);
    EXPECT_EQ(reason_of([&] { system->moveFile(file_url(folder / "sub/x"), file_url(folder / "no/x")); }),
              ENOENT);
    EXPECT_EQ(reason_of([&] { system->writeFile(file_url(folder / "sub"), [](IFile&) {}); }), EISDIR);
    EXPECT_EQ(system->findFile(file_url(folder / "") + u"*").size(), 1U) << "no file beside is left";
}

} // namespace
} // namespace core
