// SPDX-License-Identifier: Apache-2.0
#include "tests/support/fault_file.h"
#include "tests/support/file_helpers.h"
#include "tests/support/sanitizers.h"

#include <core/runtime/internal_class.h>

#include <cerrno>
#include <limits>
#include <random>
#include <string>
#include <utility>

namespace core {
namespace {

using test::bytes_of;
using test::reason_of;
using test::TempFolder;
using test::text_of;

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
        if (GetParam() == std::string_view("shared")) {
            const wstring url = u"shm://file test " + to_string(new_guid());
            const auto system = create_file_system();
            auto first = system->openURL(url, OpenMode::createNew);
            return {std::move(first), system->openURL(url, OpenMode::readWrite)};
        }
        if (GetParam() == std::string_view("memory")) {
            const auto data = create_memory_data();
            return {open_memory_file(data), open_memory_file(data)};
        }
        return {test::open_fault_file(disk_), test::open_fault_file(disk_)};
    }

    TempFolder folder_;
    test::FaultDisk disk_;
};
INSTANTIATE_TEST_SUITE_P(Kinds, EveryFile, testing::Values("disk", "memory", "shared", "fault"),
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
    if (kind == "memory" && !test::kAddressSanitizer)
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
    for (const auto& region : regions) {
        EXPECT_EQ(reason_of([&] { (void)a->tryLock(region.first, region.second, LockKind::shared); }),
                  EINVAL);
        EXPECT_EQ(reason_of([&] { a->unlock(region.first, region.second); }), EINVAL);
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

TEST_P(EveryFile, SeeksWithinWhatAFileCanBe) {
    const Opened file = open();
    write_all(*file.first, bytes_of("0123"));
    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(file.first->seek(-4, SeekOrigin::current), 0U);
    EXPECT_EQ(reason_of([&] { file.first->seek(-1, SeekOrigin::current); }), EINVAL);
    EXPECT_EQ(reason_of([&] { file.first->seek(-5, SeekOrigin::end); }), EINVAL);
    EXPECT_EQ(file.first->seek(kMost, SeekOrigin::begin), kMaxFileLength);
    EXPECT_EQ(reason_of([&] { file.first->seek(1, SeekOrigin::current); }), EINVAL);
    EXPECT_EQ(reason_of([&] { file.first->seek(std::numeric_limits<std::int64_t>::min(), SeekOrigin::end); }),
              EINVAL);
    char byte = 0;
    EXPECT_EQ(file.first->read(&byte, 1), 0U);
    EXPECT_EQ(file.first->seek(0, SeekOrigin::current), kMaxFileLength);
    EXPECT_EQ(file.first->write(&byte, 0), 0U);
    char bytes[10];
    EXPECT_EQ(file.first->readAt(kMaxFileLength - 1, bytes, 10), 0U);
}

/// A file that says that it is longer or shorter than it is.
class Liar : public FileImpl {
  public:
    using Interfaces = InterfaceList<IFile>;

    Liar(std::size_t size, std::uint64_t said) : FileImpl(u"liar"), bytes_(size, 'x'), said_(said) {}
    std::size_t readAt(std::uint64_t position, void* buffer, std::size_t count) override {
        return position < bytes_.size() ? bytes_.copy(static_cast<char*>(buffer), count, position) : 0;
    }
    std::size_t writeAt(std::uint64_t, const void*, std::size_t) override { return 0; }
    std::uint64_t length() override { return said_; }
    void truncate(std::uint64_t) override {}
    void flush() override {}
    void close() override {}

  private:
    std::string bytes_;
    std::uint64_t said_;
};

TEST(FileIO, BelievesTheBytesAndNotTheLength) {
    for (const std::size_t size : {std::size_t{0}, std::size_t{10}, std::size_t{700000}}) {
        for (const std::uint64_t said : {std::uint64_t{0}, std::uint64_t{size}, std::uint64_t{1} << 50}) {
            EXPECT_EQ(text_of(*make_object<Liar>(size, said)), std::string(size, 'x'));
            const auto copy = open_memory_file(create_memory_data());
            EXPECT_EQ(copy_bytes(*make_object<Liar>(size, said), *copy), size);
            EXPECT_EQ(text_of(*copy), std::string(size, 'x'));
        }
    }
    EXPECT_EQ(reason_of([] { write_all_at(*make_object<Liar>(1U, 1U), 0, bytes_of("x")); }), ENOSPC);
    EXPECT_EQ(reason_of([] { write_all(*make_object<Liar>(1U, 1U), bytes_of("x")); }), ENOSPC);
}

} // namespace
} // namespace core
