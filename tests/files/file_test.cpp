// SPDX-License-Identifier: Apache-2.0
#include "tests/support/fault_file.h"

#include <core/files.h>
#include <core/runtime.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <random>
#include <string>

namespace core {
namespace {

std::span<const std::byte> bytes_of(std::string_view text) {
    return std::as_bytes(std::span(text));
}

std::string text_of(IFile& file) {
    const std::vector<std::byte> bytes = read_whole(file);
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

class TempFolder {
  public:
    TempFolder() : path_((std::filesystem::temp_directory_path() / "core-test-XXXXXX").string()) {
        if (::mkdtemp(path_.data()) == nullptr)
            throw std::runtime_error("no temporary folder");
    }
    ~TempFolder() { std::filesystem::remove_all(path_); }
    [[nodiscard]] std::string operator/(std::string_view name) const {
        return path_ + "/" + std::string(name);
    }

  private:
    std::string path_;
};

template <class Call>
int reason_of(Call call) {
    try {
        call();
    } catch (const FileException& e) {
        EXPECT_NE(e.description().find(e.url()), wstring::npos) << e.what();
        return e.systemError();
    }
    return 0;
}

/// A file and a second opening of the same one, on every kind of disk there is.
struct Opened {
    InterfacePtr<IFile> first;
    InterfacePtr<IFile> second;
};

class EveryFile : public testing::TestWithParam<const char*> {
  protected:
    Opened open() {
        if (GetParam() == std::string_view("disk"))
            return {open_disk_file(folder_ / "f", OpenMode::createNew),
                    open_disk_file(folder_ / "f", OpenMode::readWrite)};
        if (GetParam() == std::string_view("memory")) {
            const auto data = create_memory_data();
            return {open_memory_file(data), open_memory_file(data)};
        }
        return {test::open_fault_file(disk_), test::open_fault_file(disk_)};
    }

    TempFolder folder_;
    test::FaultDisk disk_;
};
INSTANTIATE_TEST_SUITE_P(Kinds, EveryFile, testing::Values("disk", "memory", "fault"),
                         [](const auto& info) { return info.param; });

TEST_P(EveryFile, BehavesAsAStringOfBytesDoes) {
    const Opened file = open();
    std::string model;
    std::size_t position = 0;
    std::mt19937 random(7);
    for (int step = 0; step < 2000; ++step) {
        const std::size_t size = random() % 300;
        switch (random() % 7) {
        case 0: {
            const std::string text(size, static_cast<char>('a' + random() % 26));
            write_all(*file.first, bytes_of(text));
            if (size != 0 && position + size > model.size())
                model.resize(position + size);
            model.replace(position, size, text);
            position += size;
            break;
        }
        case 1: {
            std::string text(size, '\0');
            text.resize(file.first->read(text.data(), size));
            EXPECT_EQ(text, position < model.size() ? model.substr(position, size) : "");
            position += text.size();
            break;
        }
        case 2:
            position = size;
            EXPECT_EQ(file.first->seek(static_cast<std::int64_t>(size), SeekOrigin::begin), position);
            break;
        case 3:
            position += size;
            EXPECT_EQ(file.first->seek(static_cast<std::int64_t>(size), SeekOrigin::current), position);
            break;
        case 4: {
            const std::size_t back = std::min(size, model.size());
            position = model.size() - back;
            EXPECT_EQ(file.first->seek(-static_cast<std::int64_t>(back), SeekOrigin::end), position);
            break;
        }
        case 5:
            write_all_at(*file.first, size, bytes_of("positioned"));
            model.resize(std::max(model.size(), size + 10));
            model.replace(size, 10, "positioned");
            break;
        case 6:
            file.first->truncate(size);
            model.resize(size);
            break;
        }
        ASSERT_EQ(file.first->length(), model.size());
    }
    file.first->flush();
    EXPECT_EQ(text_of(*file.second), model);
    EXPECT_EQ(reason_of([&] { file.first->seek(-1, SeekOrigin::begin); }), EINVAL);
    EXPECT_EQ(reason_of([&] { file.first->seek(0, static_cast<SeekOrigin>(3)); }), EINVAL);
    EXPECT_EQ(file.first->seek(0, SeekOrigin::current), position) << "a failed seek moves nothing";
}

TEST_P(EveryFile, PositionsAreNeverCut) {
    const std::string_view kind = GetParam();
    if (kind == "fault")
        return;
    const Opened file = open();
    write_all(*file.first, bytes_of("01234567"));
    // Either the bytes stand where they were put, or the file refuses and stays as it was.
    std::vector<std::uint64_t> refused{kMaxFileLength + 1, ~std::uint64_t{0}};
    if (kind == "memory")
        refused.push_back(kMaxFileLength - 1);
    if (kind == "memory" && sizeof(std::size_t) < sizeof(std::uint64_t))
        refused.push_back((std::uint64_t{1} << 32) + 4);
    char byte = 'x';
    for (const std::uint64_t position : refused) {
        const int reason = reason_of([&] { file.first->writeAt(position, &byte, 1); });
        EXPECT_TRUE(reason == EFBIG || reason == ENOSPC) << position;
        EXPECT_NE(reason_of([&] { file.first->truncate(position); }), 0) << position;
        EXPECT_EQ(file.first->readAt(position, &byte, 1), 0U) << position;
        EXPECT_EQ(text_of(*file.second), "01234567");
    }
    if (kind == "disk") { // where a file may be full of holes
        for (const std::uint64_t position : {std::uint64_t{1} << 31, (std::uint64_t{1} << 32) + 4}) {
            EXPECT_EQ(file.first->writeAt(position, "y", 1), 1U);
            EXPECT_EQ(file.second->length(), position + 1);
            EXPECT_EQ(file.second->readAt(position, &byte, 1), 1U);
            EXPECT_EQ(byte, 'y');
            EXPECT_EQ(create_file_system()->findFile(file.first->url()).at(0).length, position + 1);
        }
        file.first->truncate((std::uint64_t{1} << 32) + 8);
        EXPECT_EQ(file.first->seek(-1, SeekOrigin::end), (std::uint64_t{1} << 32) + 7);
        file.first->truncate(8);
    }
    EXPECT_EQ(text_of(*file.second), "01234567");
}

TEST_P(EveryFile, LocksRegionsAgainstOtherOpenings) {
    const Opened file = open();
    const InterfacePtr<ISharedFile> a(file.first);
    const InterfacePtr<ISharedFile> b(file.second);
    ASSERT_TRUE(a && b);
    const std::uint64_t far = std::uint64_t{1} << 62;
    EXPECT_TRUE(a->tryLock(0, 16, LockKind::shared));
    EXPECT_TRUE(b->tryLock(8, 16, LockKind::shared));
    EXPECT_FALSE(a->tryLock(0, 16, LockKind::exclusive)) << "the failed try keeps the shared lock";
    EXPECT_FALSE(b->tryLock(0, 1, LockKind::exclusive));
    EXPECT_TRUE(a->tryLock(far, 1, LockKind::exclusive)) << "beyond the end of the file";
    EXPECT_FALSE(b->tryLock(far, 1, LockKind::shared));
    b->unlock(8, 4);
    EXPECT_FALSE(a->tryLock(0, 16, LockKind::exclusive)) << "4 bytes of 16 are still locked";
    b->unlock(0, 100);
    EXPECT_TRUE(a->tryLock(0, 16, LockKind::exclusive));
    a->unlock(4, 4);
    EXPECT_TRUE(b->tryLock(4, 4, LockKind::exclusive)) << "a hole in the middle of a lock";
    EXPECT_FALSE(b->tryLock(3, 1, LockKind::shared));
    EXPECT_TRUE(b->tryLock(kMaxFileLength - 1, 1, LockKind::shared));
    const std::pair<std::uint64_t, std::uint64_t> regions[] = {{0, 0},
                                                               {kMaxFileLength, 1},
                                                               {kMaxFileLength + 1, 1},
                                                               {1, kMaxFileLength},
                                                               {20, ~std::uint64_t{0} - 10}};
    for (const auto& [offset, length] : regions) {
        EXPECT_EQ(reason_of([&] { (void)a->tryLock(offset, length, LockKind::shared); }), EINVAL);
        EXPECT_EQ(reason_of([&] { a->unlock(offset, length); }), EINVAL);
    }
    EXPECT_FALSE(b->tryLock(0, 1, LockKind::shared)) << "nothing was given back";
    file.first->close();
    EXPECT_TRUE(b->tryLock(0, 16, LockKind::exclusive)) << "closing gives locks back";
}

TEST(DiskFile, OpensAsTheModeSays) {
    const TempFolder folder;
    const std::string path = folder / "a";
    EXPECT_EQ(reason_of([&] { (void)open_disk_file(path, OpenMode::read); }), ENOENT);
    EXPECT_EQ(reason_of([&] { (void)open_disk_file(path, OpenMode::readWrite); }), ENOENT);
    write_all(*open_disk_file(path, OpenMode::create), bytes_of("kept"));
    EXPECT_EQ(text_of(*open_disk_file(path, OpenMode::create)), "kept");
    EXPECT_EQ(reason_of([&] { (void)open_disk_file(path, OpenMode::createNew); }), EEXIST);
    EXPECT_EQ(reason_of([&] { open_disk_file(path, OpenMode::read)->truncate(0); }), EINVAL);
    EXPECT_EQ(open_disk_file(path, OpenMode::replace)->length(), 0U);
    EXPECT_EQ(reason_of([&] { (void)open_disk_file(folder / "", OpenMode::read); }), EISDIR);
    EXPECT_EQ(reason_of([&] { (void)open_disk_file(path + std::string("\0x", 2), OpenMode::read); }), EINVAL);
    const auto file = open_disk_file(path, OpenMode::read);
    file->close();
    file->close();
    char byte = 0;
    EXPECT_EQ(reason_of([&] { (void)file->read(&byte, 1); }), EBADF);
    EXPECT_EQ(reason_of([&] { file->flush(); }), EBADF);
}

TEST(FileIO, InsistsOnWholeTransfersAndReportsAFullDisk) {
    test::FaultDisk disk;
    disk.longestTransfer = 3;
    const auto file = test::open_fault_file(disk);
    write_all(*file, bytes_of("0123456789"));
    EXPECT_EQ(text_of(*file), "0123456789");
    disk.capacity = 12;
    EXPECT_EQ(reason_of([&] { write_all_at(*file, 8, bytes_of("abcdefgh")); }), ENOSPC);
    EXPECT_EQ(text_of(*file), "01234567abcd");
}

TEST(FileURL, CarriesAnyPathThereAndBack) {
    std::mt19937 random(3);
    for (int round = 0; round < 500; ++round) {
        std::string path;
        for (auto i = random() % 20; i > 0; --i)
            path.push_back(static_cast<char>(1 + random() % 255));
        EXPECT_EQ(file_path(file_url(path)), path);
    }
    EXPECT_EQ(file_url("/a b/ж%.txt"), u"file:///a%20b/%D0%B6%25.txt");
    EXPECT_EQ(file_path(u"/a b/ж%20"), "/a b/ж%20") << "a plain path is taken as it is";
    EXPECT_EQ(file_path(u"file:///100%"), "/100%");
    EXPECT_EQ(file_path(u"File:///a%20b"), "/a b") << "schemes have no case";
    URL url = split_url(u"lumstg:///a?x;NoSortedCheck;;y");
    split_options(url);
    EXPECT_EQ(url.scheme, u"lumstg");
    EXPECT_EQ(url.path, u"/a");
    EXPECT_EQ(url.options, (std::vector<wstring>{u"x", u"NoSortedCheck", u"y"}));
    EXPECT_TRUE(url.hasOption(u"NOSORTEDCHECK"));
    EXPECT_FALSE(url.hasOption(u"NoSorted"));
    EXPECT_EQ(split_url(u"not a://scheme").scheme, u"file");
}

/// The plain rule, without any cleverness.
bool matches_plainly(wstring_view name, wstring_view pattern) {
    if (pattern.empty())
        return name.empty();
    if (pattern[0] == u'*')
        return matches_plainly(name, pattern.substr(1)) ||
               (!name.empty() && matches_plainly(name.substr(1), pattern));
    return !name.empty() && (pattern[0] == u'?' || pattern[0] == name[0]) &&
           matches_plainly(name.substr(1), pattern.substr(1));
}

TEST(Wildcard, MatchesAsThePlainRuleDoes) {
    std::mt19937 random(11);
    const auto text = [&random](wstring_view letters, std::size_t length) {
        wstring result;
        for (; length > 0; --length)
            result.push_back(letters[random() % letters.size()]);
        return result;
    };
    int matches = 0;
    for (int round = 0; round < 20000; ++round) {
        const wstring name = text(u"ab", random() % 8);
        const wstring pattern = text(u"ab*?", random() % 6);
        ASSERT_EQ(matches_wildcard(name, pattern), matches_plainly(name, pattern));
        matches += matches_wildcard(name, pattern) ? 1 : 0;
    }
    EXPECT_GT(matches, 1000);
    EXPECT_TRUE(matches_wildcard(u"a😀b", u"a?b")) << "one character, two units";
    EXPECT_FALSE(matches_wildcard(wstring(10000, u'a'), wstring(u"*a*a*a*a*a*a*a*b"))) << "in bounded time";
}

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
        << "what is no text is told apart";
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
            const std::string beside = file_path(file.url());
            EXPECT_EQ(fs::status(beside).permissions(), fs::perms(0600)) << "not to be read meanwhile";
            write(file);
        });
        EXPECT_EQ(fs::status(path).permissions(), permissions);
    }
    const std::string named = file_path(create_temp_file_service()->createNamed());
    EXPECT_EQ(fs::status(named).permissions(), fs::perms(0600));
    fs::remove(named);
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
    const auto file = service->create();
    write_all(*file, bytes_of("x"));
    EXPECT_FALSE(std::filesystem::exists(file_path(file->url())));
    const wstring named = service->createNamed();
    const wstring other = service->createNamed();
    EXPECT_NE(named, other);
    EXPECT_TRUE(std::filesystem::remove(file_path(named)));
    EXPECT_TRUE(std::filesystem::remove(file_path(other)));
}

} // namespace
} // namespace core
