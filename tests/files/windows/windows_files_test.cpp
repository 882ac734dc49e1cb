// SPDX-License-Identifier: Apache-2.0
#include "tests/support/file_helpers.h"

#include <windows.h>

#include <cerrno>
#include <string>

// What files do on Windows beside what they do everywhere.
namespace core {
namespace {

using test::reason_of;
using test::TempFolder;
using test::text_of;

TEST(WindowsPaths, AreWrittenWithSlashesAndComeBackFromUrls) {
    EXPECT_EQ(file_url("C:\\a b\\c"), u"file:///C:/a%20b/c");
    EXPECT_EQ(file_path(u"file:///C:/a%20b/c"), "C:/a b/c");
    EXPECT_EQ(file_path(u"C:\\a b\\c"), "C:/a b/c");
    EXPECT_EQ(file_path(file_url("\\\\server\\share\\x")), "//server/share/x");
    EXPECT_EQ(file_path(file_url("a\\b")), "a/b");
    EXPECT_EQ(file_path(file_url("/rooted")), "/rooted");
}

TEST(WindowsPaths, OfNamesThatMeanSomethingElseAreRefused) {
    for (const char* const path :
         {"con", "x/NUL.txt", "COM1", "lpt9 .x", "a.", "b ", "c:/x/aux", "name:stream"})
        EXPECT_EQ(reason_of([path] { (void)open_disk_file(path, OpenMode::read); }), EINVAL) << path;
    for (const char* const path :
         {"console", "com", "com10", "a.b", "..", "c:/x", "\\\\.\\NUL", "//server/x"})
        EXPECT_NO_THROW(require_whole_path(path)) << path;
}

TEST(WindowsPaths, MayBeLong) {
    const TempFolder folder;
    std::string deep = folder / "deep";
    for (int level = 0; level < 8; ++level)
        deep += '/' + std::string(60, 'n');
    const auto system = create_file_system();
    system->makeFolder(file_url(deep));
    const auto file = open_disk_file(deep + "/f", OpenMode::createNew);
    EXPECT_EQ(file->write("1", 1), 1U);
    file->close();
    EXPECT_EQ(system->describe(file_url(deep + "/f")).value().length, 1U);
    system->removeFolder(file_url(folder / "deep"));
}

/// One file, open three times.
class WindowsLocks : public testing::Test {
  protected:
    static bool lock(IFile& file, std::uint64_t offset, std::uint64_t length, LockKind kind) {
        return dynamic_cast<ISharedFile&>(file).tryLock(offset, length, kind);
    }
    static void unlock(IFile& file, std::uint64_t offset, std::uint64_t length) {
        dynamic_cast<ISharedFile&>(file).unlock(offset, length);
    }

    TempFolder folder_;
    InterfacePtr<IFile> first_ = open_disk_file(folder_ / "f", OpenMode::createNew);
    InterfacePtr<IFile> second_ = open_disk_file(folder_ / "f", OpenMode::readWrite);
};

TEST_F(WindowsLocks, KeepNobodyFromReadingAndWriting) {
    ASSERT_TRUE(lock(*first_, 0, 10, LockKind::exclusive));
    EXPECT_EQ(second_->writeAt(0, "hello", 5), 5U);
    EXPECT_EQ(text_of(*second_), "hello");
}

TEST_F(WindowsLocks, ArePutTogetherAndDividedAsElsewhere) {
    ASSERT_TRUE(lock(*first_, 0, 10, LockKind::exclusive));
    EXPECT_TRUE(lock(*first_, 0, 10, LockKind::exclusive));
    unlock(*first_, 1, 9);
    EXPECT_TRUE(lock(*second_, 1, 9, LockKind::exclusive));
    EXPECT_FALSE(lock(*second_, 0, 1, LockKind::exclusive));
    unlock(*second_, 0, kMaxFileLength);
    unlock(*first_, 0, kMaxFileLength);

    ASSERT_TRUE(lock(*first_, 0, 24, LockKind::shared));
    unlock(*first_, 10, 4);
    EXPECT_TRUE(lock(*second_, 10, 4, LockKind::exclusive));
    EXPECT_FALSE(lock(*second_, 9, 1, LockKind::exclusive));
    EXPECT_FALSE(lock(*second_, 14, 10, LockKind::exclusive));
    unlock(*second_, 0, kMaxFileLength);
    EXPECT_TRUE(lock(*first_, 5, 30, LockKind::exclusive)); // over a part, which goes up, and a gap
    EXPECT_TRUE(lock(*second_, 0, 5, LockKind::shared));
    EXPECT_FALSE(lock(*second_, 34, 1, LockKind::shared));
}

TEST_F(WindowsLocks, ChangeTheirKindOrStayAsTheyWere) {
    ASSERT_TRUE(lock(*first_, 0, 1, LockKind::exclusive));
    ASSERT_TRUE(lock(*first_, 0, 1, LockKind::shared));
    ASSERT_TRUE(lock(*second_, 0, 1, LockKind::shared));
    EXPECT_FALSE(lock(*first_, 0, 1, LockKind::exclusive));
    EXPECT_FALSE(lock(*second_, 0, 1, LockKind::exclusive)); // the first still has its shared one
    unlock(*second_, 0, 1);
    EXPECT_TRUE(lock(*first_, 0, 1, LockKind::exclusive));
    EXPECT_FALSE(lock(*second_, 0, 1, LockKind::shared));
    first_->close();
    EXPECT_TRUE(lock(*second_, 0, kMaxFileLength, LockKind::exclusive));
}

TEST_F(WindowsLocks, ReachToTheLastByteThatAFileCanHave) {
    constexpr std::uint64_t kFar = std::uint64_t{1} << 61;
    for (const std::uint64_t offset : {kFar / 2 - 1, kFar, kMaxFileLength - 1}) {
        ASSERT_TRUE(lock(*first_, offset, 1, LockKind::exclusive)) << offset;
        EXPECT_FALSE(lock(*second_, offset, 1, LockKind::exclusive)) << offset;
        EXPECT_TRUE(lock(*second_, 7, 1, LockKind::exclusive)) << offset;
        unlock(*second_, 0, kMaxFileLength);
        EXPECT_FALSE(lock(*second_, 0, kMaxFileLength, LockKind::shared)) << offset;
        unlock(*first_, offset, 1);
        EXPECT_TRUE(lock(*second_, 0, kMaxFileLength, LockKind::shared)) << offset;
        unlock(*second_, 0, kMaxFileLength);
    }
    EXPECT_EQ(reason_of([&] { (void)lock(*first_, kFar - 1, 1, LockKind::shared); }), EINVAL);
}

TEST(WindowsFiles, AreLockedAsAWholeAlsoInSharedMemory) {
    const auto system = create_file_system();
    const wstring url = u"shm://" + to_string(new_guid());
    const auto first = system->openURL(url, OpenMode::createNew);
    ASSERT_TRUE(dynamic_cast<ISharedFile&>(*first).tryLock(0, kMaxFileLength, LockKind::exclusive));
    const auto second = system->openURL(url, OpenMode::read); // marks its use
    EXPECT_FALSE(dynamic_cast<ISharedFile&>(*second).tryLock(5, 1, LockKind::shared));
}

TEST(WindowsFiles, AreRenamedAndRemovedWhileOthersHaveThemOpen) {
    const TempFolder folder;
    const auto system = create_file_system();
    const auto write = [&](const char* name, std::string_view text) {
        system->writeFile(file_url(folder / name),
                          [&](IFile& file) { write_all(file, test::bytes_of(text)); });
    };
    write("target", "old");
    write("source", "new");
    const auto open = open_disk_file(folder / "target", OpenMode::read);
    // Over an open file, where the disk can; else all is as it was.
    const int refused = reason_of([&] { write("target", "newer"); });
    EXPECT_TRUE(refused == 0 || refused == EACCES) << refused;
    EXPECT_EQ(text_of(*open), "old");
    EXPECT_EQ(text_of(*open_disk_file(folder / "target", OpenMode::read)), refused == 0 ? "newer" : "old");
    // An open one goes to another name, and goes.
    const auto source = open_disk_file(folder / "source", OpenMode::read);
    system->moveFile(file_url(folder / "source"), file_url(folder / "moved"));
    EXPECT_EQ(text_of(*source), "new");
    system->remove(file_url(folder / "moved"));
    EXPECT_EQ(text_of(*source), "new");
}

TEST(WindowsFiles, ThatAreReadOnlyHaveNoRightToWrite) {
    constexpr unsigned kToWrite = 0222;
    const TempFolder folder;
    const auto system = create_file_system();
    open_disk_file(folder / "f", OpenMode::createNew)->close();
    const wstring url = file_url(folder / "f");
    EXPECT_EQ(system->describe(url).value().permissions & kToWrite, kToWrite);
    system->setAttributes(url, {.permissions = 0444});
    EXPECT_EQ(system->describe(url).value().permissions & kToWrite, 0U);
    EXPECT_NE(::GetFileAttributesA((folder / "f").c_str()) & FILE_ATTRIBUTE_READONLY, 0U);
    system->setAttributes(url, {.permissions = 0666});
}

} // namespace
} // namespace core
