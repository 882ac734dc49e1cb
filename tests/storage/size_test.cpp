// SPDX-License-Identifier: Apache-2.0
// What the size of a container costs: a commit writes what changed, and compacting needs room for a step.
#include "tests/support/fault_file.h"
#include "tests/support/memory_peak.h"
#include "tests/support/storage_fixture.h"

#include <core/runtime/threads/errors.h>

#include <algorithm>
#include <numeric>

namespace core {
namespace {

using test::Bytes;
using test::FaultDisk;
using test::Model;

wstring name_of(std::size_t i) {
    return u"folder/file" + from_utf8(std::to_string(100000 + i));
}

class Sizes : public test::InFormats {
  protected:
    [[nodiscard]] StorageRW open() { return StorageRW(test::open_fault_file(disk_), layout_); }
    void fill(std::size_t files, std::size_t size) {
        test::create_container(*test::open_fault_file(disk_), format_);
        StorageRW storage = open();
        StorageTransaction transaction(storage);
        for (std::size_t i = 0; i < files; ++i)
            storage.put(name_of(i), Bytes(size, static_cast<std::byte>(i)));
        transaction.commit();
    }

    FaultDisk disk_;
};
INSTANTIATE_TEST_SUITE_P(Formats, Sizes, test::kEveryFormat, test::name_of_format);

TEST_P(Sizes, ACommitWritesWhatChanged) {
    if (format_.table == 1)
        GTEST_SKIP() << "its table is written as a whole";
    fill(20000, 700);
    StorageRW storage = open();
    test::Random random(9);
    disk_.recording = true;
    for (int round = 0; round < 60; ++round) {
        disk_.trace.clear();
        const wstring name = name_of(random.below(25000));
        if (storage.contains(name) && round % 3 == 0)
            storage.remove(name);
        else
            storage.put(name, Bytes(700));
        const auto written = std::accumulate(
            disk_.trace.begin(), disk_.trace.end(), std::size_t{0},
            [](std::size_t sum, const FaultDisk::Event& event) { return sum + event.bytes.size(); });
        EXPECT_LE(written, std::size_t{64} << 10) << "round " << round;
    }
    const std::uint64_t before = disk_.calls;
    EXPECT_EQ(open().get(name_of(19999)).size(), 700U);
    EXPECT_LE(disk_.calls - before, 12U) << "opening reads the way to one file";
    EXPECT_TRUE(open().check().isClean());
}

TEST_P(Sizes, CompactingNeedsRoomForOneStep) {
    constexpr std::size_t kSize = 60000;
    fill(200, kSize);
    Model model;
    {
        StorageRW storage = open();
        for (std::size_t i = 0; i < 200; i += 3) {
            storage.remove(name_of(i));
            storage.put(name_of(i) + u"x", Bytes(i)); // small ones in the holes
        }
        model = test::contents(storage);
    }
    const std::vector<std::byte> disk = disk_.bytes;
    const std::uint64_t least = std::uint64_t{1} << 20; // of a step
    for (const std::uint64_t room : {std::uint64_t{0}, least / 2, 2 * least}) {
        disk_.bytes = disk;
        disk_.capacity = disk.size() + room;
        StorageRW storage = open();
        bool done = true;
        try {
            storage.compact();
        } catch (const FileException&) {
            done = false;
        }
        EXPECT_TRUE(done || room < 2 * least);
        ASSERT_EQ(test::contents(open()), model);
        EXPECT_TRUE(open().check().isClean());
        if (done) {
            EXPECT_EQ(open().info().freeBytes, 0U);
            EXPECT_EQ(open().info().fileLength, open().info().end);
        }
        disk_.capacity = FaultDisk::kNever;
    }
}

TEST_P(Sizes, CompactingTellsHowFarItIsAndCanBeStopped) {
    fill(100, 100000);
    StorageRW storage = open();
    for (std::size_t i = 0; i < 100; i += 2)
        storage.remove(name_of(i));
    const Model model = test::contents(storage);
    StopSource stop;
    CompactOptions options;
    options.stop = stop.token();
    std::uint64_t before = 0;
    int steps = 0;
    options.progress = [&](std::uint64_t done, std::uint64_t total) {
        EXPECT_LE(before, done);
        EXPECT_LE(done, total);
        before = done;
        if (++steps == 3)
            stop.request();
        EXPECT_EQ(open().count(), 50U) << "others are let in";
    };
    EXPECT_THROW(storage.compact(options), ThreadDeath);
    EXPECT_EQ(steps, 3);
    EXPECT_EQ(test::contents(storage), model);
    EXPECT_TRUE(storage.check().isClean());
    options.stop = {};
    EXPECT_TRUE(storage.compact(options).damaged.empty());
    EXPECT_GT(steps, 5);
    EXPECT_EQ(test::contents(storage), model);
    EXPECT_EQ(storage.info().freeBytes, 0U);
}

TEST_P(Sizes, NamesAreHadWithoutReadingFiles) {
    fill(2000, 600);
    const StorageRW storage = open();
    const std::uint64_t before = disk_.calls;
    EXPECT_EQ(storage.count(), 2000U);
    const std::vector<wstring> names = storage.names(u"*1000?7");
    EXPECT_LT(disk_.calls - before, 100U);
    const auto found = storage.find(u"*1000?7");
    EXPECT_EQ(names.size(), 10U);
    EXPECT_TRUE(std::equal(names.begin(), names.end(), found.begin(), found.end(),
                           [](const auto& name, const auto& file) { return name == file.name; }));
}

/// A writer holds what is free in memory, and little more.
TEST_P(Sizes, AFreeRangeTakesLittleMemory) {
    if (format_.table == 1)
        GTEST_SKIP() << "what is free is not believed at once";
    constexpr std::size_t kRanges = 10000;
    fill(2 * kRanges, 10);
    {
        StorageRW storage = open();
        StorageTransaction transaction(storage);
        for (std::size_t i = 0; i < 2 * kRanges; i += 2)
            storage.remove(name_of(i));
        transaction.commit();
    }
    ASSERT_GE(open().info().freeRanges, kRanges / 2);
    StorageRW storage = open();
    (void)storage.contains(name_of(1));
    const ::test::MemoryPeak memory;
    storage.put(name_of(1), Bytes(10));
    EXPECT_LT(memory.bytes() / kRanges, 100U);
}

/// Two programs take turns among many holes: each finds out what the other changed, and no more than that.
TEST_P(Sizes, AChangeByOthersCostsWhatChanged) {
    if (format_.table == 1)
        GTEST_SKIP() << "its list of free space is read as a whole";
    constexpr std::size_t kFiles = 8000;
    fill(kFiles, 10);
    test::Random random(12);
    StorageRW writers[] = {open(), open()};
    Model model = test::contents(writers[0]);
    writers[0].begin();
    for (std::size_t i = 0; i < kFiles; i += 2) {
        writers[0].remove(name_of(i));
        model.erase(name_of(i));
    }
    writers[0].commit();
    for (int round = 0; round < 300; ++round) {
        StorageRW& writer = writers[random.below(2)];
        const ::test::MemoryPeak memory;
        for (std::size_t i = random.below(round % 50 == 49 ? 500 : 3); i > 0; --i) {
            const wstring name = name_of(random.below(kFiles));
            if (writer.contains(name)) {
                writer.remove(name);
                model.erase(name);
            } else {
                writer.put(name, model[name] = Bytes(random.below(1500), static_cast<std::byte>(round)));
            }
        }
        if (round > 10 && round % 50 != 49) {
            EXPECT_LT(memory.bytes(), std::size_t{200} << 10) << "round " << round;
        }
        if (round % 50 == 40) {
            EXPECT_TRUE(open().check().isClean()) << "round " << round;
        }
    }
    EXPECT_GT(open().info().freeRanges, 1000U);
    writers[0].compact();
    EXPECT_TRUE(writers[1].check().isClean());
    EXPECT_EQ(test::contents(writers[1]), model);
}

TEST_P(Sizes, EveryBitInUseIsWatched) {
    if (format_.table == 1)
        GTEST_SKIP() << "it has no checksums";
    fill(90, 20);
    open().put(u"large", Bytes(2000, std::byte{7}));
    open().removeAll(u"*file10001*");
    const StorageInfo info = open().info();
    ASSERT_NE(info.freeBytes, 0U);
    test::Random random(10);
    for (const StorageInfo::Piece& piece : info.pieces) {
        if (piece.use == StorageUse::free)
            continue;
        for (std::uint64_t at = piece.address; at < piece.address + piece.length;
             at += 1 + random.below(40)) {
            std::byte& byte = disk_.bytes[static_cast<std::size_t>(at)];
            const std::byte bit{static_cast<unsigned char>(1U << random.below(8))};
            byte ^= bit;
            bool isNamed = true;
            try {
                isNamed = !open().check().isClean();
            } catch (const StorageException&) { // names the container
            }
            EXPECT_TRUE(isNamed) << at;
            byte ^= bit;
        }
    }
    EXPECT_TRUE(open().check().isClean());
}

} // namespace
} // namespace core
