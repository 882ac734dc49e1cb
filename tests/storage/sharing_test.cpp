// SPDX-License-Identifier: Apache-2.0
// A container in several hands: open inner files, other handles, threads.
#include "tests/support/hooked_file.h"
#include "tests/support/storage_crowd.h"
#include "tests/support/storage_fixture.h"

#include <core/files/errors.h>
#include <core/storage/errors.h>

#include <atomic>
#include <stdexcept>
#include <thread>

namespace core {
namespace {

using test::Bytes;
using test::bytes_of;
using test::message_of;
using test::Model;
using test::ReplacedClock;

class Sharing : public test::MemoryContainer {};
INSTANTIATE_TEST_SUITE_P(Formats, Sharing, test::kEveryFormat, test::name_of_format);

TEST_P(Sharing, HoldsWhatAModelHoldsWhoeverElseHasFilesOpen) {
    for (unsigned seed = 1; seed <= 6; ++seed) {
        StorageRW::replace(*open_memory_file(data_), layout_);
        test::Random random(seed);
        test::Crowd crowd([&] { return open_memory_file(data_); }, layout_, random);
        for (int step = 0; step < 80; ++step) {
            ASSERT_NO_THROW(crowd.step()) << "seed " << seed << " step " << step;
            ASSERT_NO_THROW(crowd.check()) << "seed " << seed << " step " << step;
        }
    }
}

TEST_P(Sharing, LetsOneWriteAFileAndLeavesReadersTheOldOne) {
    StorageRW storage = open();
    const Bytes old(200000, std::byte{1});
    storage.put(u"a", old);
    storage.put(u"other", old);
    const auto reader = storage.open(u"a", OpenMode::read);
    const auto bystander = storage.open(u"other", OpenMode::read);
    Bytes part(10);
    EXPECT_EQ(reader->read(part.data(), 10), 10U);
    const auto writer = storage.open(u"a", OpenMode::readWrite);
    write_all_at(*writer, 100000, bytes_of("new"));
    EXPECT_EQ(storage.get(u"a"), old) << "not visible before it is closed";
    EXPECT_EQ(read_all_at(*reader, 150000, part), 10U);
    EXPECT_FALSE(message_of([&] { (void)storage.open(u"a", OpenMode::create); }).empty());
    EXPECT_FALSE(message_of([&] { storage.remove(u"a"); }).empty());
    EXPECT_FALSE(message_of([&] { storage.rename(u"other", u"a"); }).empty());
    EXPECT_FALSE(message_of([&] { storage.rename(u"a", u"b"); }).empty());
    writer->flush();
    EXPECT_NE(storage.get(u"a"), old) << "a flush publishes";
    write_all_at(*writer, 0, bytes_of("more"));
    writer->close();
    EXPECT_EQ(storage.get(u"a")[0], std::byte{'m'});
    EXPECT_EQ(read_whole(*reader), old) << "whole, whatever becomes of the file";
    storage.compact();
    EXPECT_EQ(read_all_at(*bystander, 190000, part), 10U) << "moved, but the same";
    storage.remove(u"other");
    storage.put(u"more", Bytes(900000, std::byte{5}));
    EXPECT_EQ(read_whole(*bystander), old) << "removed";
    reader->close();
    EXPECT_THROW((void)reader->read(part.data(), 1), FileException);
    EXPECT_THROW((void)bystander->write(part.data(), 1), FileException);
}

TEST_P(Sharing, GivesUpAFileThatAnExceptionLetsGoOf) {
    StorageRW storage = open();
    storage.put(u"a", bytes_of("old"));
    try {
        const auto file = storage.open(u"a", OpenMode::replace);
        write_all(*file, Bytes(100000));
        throw std::runtime_error("no more");
    } catch (const std::runtime_error&) {
    }
    EXPECT_EQ(storage.get(u"a"), bytes_of("old"));
    write_all(*storage.open(u"a", OpenMode::replace), bytes_of("let go of without a word"));
    EXPECT_EQ(storage.get(u"a"), bytes_of("let go of without a word"));
    const auto unconcerned = storage.open(u"a", OpenMode::replace);
    write_all(*unconcerned, bytes_of("new"));
    storage.rollback(); // of no changes that were begun
    unconcerned->close();
    EXPECT_EQ(storage.get(u"a"), bytes_of("new"));
    const auto late = storage.open(u"b", OpenMode::create);
    storage.begin();
    storage.put(u"c", {});
    storage.rollback();
    EXPECT_THROW(late->close(), StorageException) << "the rollback took it back, too";
    EXPECT_FALSE(storage.contains(u"b"));
    EXPECT_TRUE(storage.check().isClean());
}

TEST_P(Sharing, TakingBackConcernsWhatWasChangedAlone) {
    StorageRW storage = open();
    const Bytes old(200000, std::byte{1});
    storage.put(u"a", old);
    storage.put(u"b", old);
    const auto bystander = storage.open(u"a", OpenMode::read);
    Bytes part(10);
    storage.begin();
    storage.put(u"b", {});
    const auto reader = storage.open(u"b", OpenMode::read);
    const auto writer = storage.open(u"c", OpenMode::create);
    write_all(*writer, old);
    storage.rollback();
    EXPECT_EQ(read_all_at(*bystander, 150000, part), 10U);
    EXPECT_EQ(storage.get(u"b"), old);
    storage.put(u"d", old); // while what the writer had written is free again
    EXPECT_EQ(read_all_at(*bystander, 50000, part), 10U);
    EXPECT_THROW(writer->close(), StorageException);
    storage.put(u"e", old);
    EXPECT_TRUE(storage.check().isClean());
    EXPECT_EQ(test::contents(storage), (Model{{u"a", old}, {u"b", old}, {u"d", old}, {u"e", old}}));
}

TEST_P(Sharing, IsReplacedInItsTurn) {
    ReplacedClock clock;
    StorageRW storage = open();
    storage.put(u"a", Bytes(5000));
    storage.begin();
    EXPECT_THROW(StorageRW::replace(*open_memory_file(data_), layout_), StorageException);
    storage.rollback();
    EXPECT_TRUE(storage.contains(u"a"));
    StorageRW::replace(*open_memory_file(data_), layout_);
    EXPECT_EQ(raw().size(), layout_.emptyLength());
    EXPECT_EQ(storage.find().size(), 0U) << "who has it open sees it";
    storage.put(u"c", Bytes(5000));
    EXPECT_EQ(test::contents(open()), (Model{{u"c", Bytes(5000)}}));
}

TEST_P(Sharing, SharesTheFileWithOtherOpenContainers) {
    ReplacedClock clock;
    StorageRW a = open();
    StorageRW b = open();
    a.commit(); // no transaction, no effect
    a.put(u"x", bytes_of("1"));
    EXPECT_EQ(b.get(u"x"), bytes_of("1"));
    b.put(u"x", bytes_of("2"));
    EXPECT_EQ(a.get(u"x"), bytes_of("2"));

    const auto secondsOf = [&](const auto& call) {
        const auto before = clock.time;
        EXPECT_NE(message_of(call), u"");
        return std::chrono::duration<double>(clock.time - before).count();
    };
    a.begin();
    EXPECT_NEAR(secondsOf([&] { b.put(u"z", {}); }), 20, 0.1) << "the turn is not given up";
    a.rollback();
    {
        const InterfacePtr<ISharedFile> other(file());
        ASSERT_TRUE(other->tryLock(0, layout_.headerSize(), LockKind::exclusive));
        const int before = clock.sleeps;
        EXPECT_NEAR(secondsOf([&] { (void)b.get(u"x"); }), 20, 0.1) << "a commit that does not end";
        EXPECT_NEAR(clock.sleeps - before, 1000, 2) << "50 times a second";
    }
    b.put(u"z", {});
    {
        const StorageReading reading(a);
        EXPECT_NE(message_of([&] { b.put(u"late", {}); }), u"") << "a commit waits for readers";
        EXPECT_FALSE(a.contains(u"late"));
        const InterfacePtr<ISharedFile> other(file());
        for (std::uint64_t byte = 0; byte < layout_.headerSize(); ++byte)
            EXPECT_FALSE(other->tryLock(byte, 1, LockKind::exclusive))
                << "a reader holds the header: " << byte;
        EXPECT_TRUE(other->tryLock(layout_.headerSize(), 2, LockKind::exclusive)) << "and nothing more";
    }
    b.put(u"late", {});
    EXPECT_EQ(test::contents(a), test::contents(b));
    EXPECT_TRUE(a.check().isClean());
}

TEST_P(Sharing, AFileIsWrittenBesideWhatOthersCommit) {
    StorageRW a = open();
    StorageRW b = open();
    a.put(u"hole", Bytes(100000));
    a.put(u"base", Bytes(300000, std::byte{1}));
    a.remove(u"hole");
    const auto written = a.open(u"new", OpenMode::create);
    const auto changed = a.open(u"base", OpenMode::readWrite);
    write_all(*written, Bytes(2000000, std::byte{2}));
    write_all_at(*changed, 1000, bytes_of("here"));
    for (int i = 0; i < 20; ++i)
        (i % 2 == 0 ? a : b).put(wstring(1, static_cast<wchar>(u'a' + i)), Bytes(20000, std::byte(i)));
    b.compact(); // what lies under the changed file moves
    EXPECT_FALSE(b.contains(u"new"));
    EXPECT_TRUE(b.check().isClean());
    written->flush();
    EXPECT_EQ(b.get(u"new"), Bytes(2000000, std::byte{2}));
    EXPECT_EQ(b.get(u"base"), Bytes(300000, std::byte{1}));
    write_all_at(*written, 0, bytes_of("more"));
    written->close();
    changed->close();
    Bytes expected(300000, std::byte{1});
    std::copy_n(bytes_of("here").begin(), 4, expected.begin() + 1000);
    EXPECT_EQ(b.get(u"base"), expected);
    EXPECT_EQ(b.get(u"new")[3], std::byte{'e'});
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(a.get(wstring(1, static_cast<wchar>(u'a' + i))), Bytes(20000, std::byte(i)));
    EXPECT_TRUE(a.check().isClean());
    EXPECT_EQ(a.info().fileLength, a.info().end) << "what was reserved is given back";
}

TEST_P(Sharing, AShortPutNeedNotWaitForALongWalk) {
    ReplacedClock clock;
    StorageRW other = open();
    for (int i = 0; i < 40; ++i)
        other.put(u"file" + wstring(1, static_cast<wchar>(u'0' + i)), Bytes(100000, std::byte(i)));
    int reads = 0;
    int puts = 0;
    const auto meanwhile = [&] {
        if (++reads < 10 || puts == 10) // the first ones look the state up, for which all others wait
            return;
        other.put(u"file1", Bytes(90000 + static_cast<std::size_t>(reads)));
        ++puts;
    };
    StorageRW storage(make_object<test::HookedFile>(file(), test::FileHooks{.read = meanwhile}), layout_);
    const auto lettingIn = [&](const auto& walk) {
        reads = puts = 0;
        walk();
        EXPECT_EQ(puts, 10);
        EXPECT_EQ(clock.sleeps, 0);
    };
    lettingIn([&] { EXPECT_TRUE(storage.check().isClean()); });
    lettingIn([&] { EXPECT_EQ(storage.info().files, 40U); });
    other.put(u"large", Bytes(5000000, std::byte{1}));
    lettingIn([&] { EXPECT_EQ(storage.get(u"large"), Bytes(5000000, std::byte{1})); });
    EXPECT_TRUE(other.check().isClean());
}

TEST_P(Sharing, AMoveLetsOthersInAndMovesWhatIsThereInTheEnd) {
    for (const bool changes : {false, true}) {
        ReplacedClock clock;
        StorageRW other = open();
        other.put(u"large", Bytes(3000000, std::byte{1}));
        int reads = 0;
        const auto meanwhile = [&] {
            if (++reads == 12)
                other.put(changes ? u"large" : u"small", Bytes(2000000, std::byte{2}));
        };
        StorageRW source(make_object<test::HookedFile>(file(), test::FileHooks{.read = meanwhile}), layout_);
        const auto data = create_memory_data();
        StorageRW::create(*open_memory_file(data), layout_);
        StorageRW target(open_memory_file(data), layout_);
        target.put(u"moved", Bytes(10));
        reads = 0;
        target.moveFrom(source, u"large", u"moved");
        EXPECT_GT(reads, 12);
        EXPECT_EQ(clock.sleeps, 0);
        EXPECT_EQ(target.get(u"moved"),
                  changes ? Bytes(2000000, std::byte{2}) : Bytes(3000000, std::byte{1}));
        EXPECT_FALSE(other.contains(u"large"));
        EXPECT_TRUE(other.check().isClean());
        EXPECT_TRUE(target.check().isClean());
        EXPECT_EQ(target.info().fileLength, target.info().end) << "what was begun is given back";
        target.begin();
        EXPECT_NE(message_of([&] { target.moveFrom(other, u"small", u"x"); }), u"");
        target.rollback();
    }
}

TEST_P(Sharing, TwoWritersOfAFileLoseNoChangeUnnoticed) {
    StorageRW a = open();
    StorageRW b = open();
    a.put(u"x", bytes_of("old"));
    const auto first = a.open(u"x", OpenMode::replace);
    const auto second = b.open(u"x", OpenMode::replace);
    write_all(*first, Bytes(100000, std::byte{1}));
    write_all(*second, Bytes(100000, std::byte{2}));
    second->close();
    first->close();
    EXPECT_EQ(b.get(u"x"), Bytes(100000, std::byte{1})) << "the last one wins";

    const auto editor = a.open(u"x", OpenMode::readWrite);
    const auto late = a.open(u"y", OpenMode::createNew);
    write_all_at(*editor, 50000, bytes_of("edit"));
    b.put(u"x", bytes_of("meanwhile"));
    b.put(u"y", bytes_of("meanwhile"));
    EXPECT_THROW(editor->close(), StorageException) << "it would take the other change back";
    EXPECT_THROW(late->close(), FileException);
    EXPECT_EQ(test::contents(a), (Model{{u"x", bytes_of("meanwhile")}, {u"y", bytes_of("meanwhile")}}));

    const auto gone = a.open(u"x", OpenMode::readWrite);
    write_all_at(*gone, 0, bytes_of("M"));
    b.remove(u"x");
    EXPECT_THROW(gone->close(), StorageException);
    EXPECT_FALSE(a.contains(u"x"));
    EXPECT_TRUE(a.check().isClean());
}

TEST_P(Sharing, NoReaderGetsHalfOfEachOfTwoFiles) {
    StorageRW a = open();
    StorageRW b = open();
    {
        StorageTransaction transaction(a);
        a.put(u"x", Bytes(200000, std::byte{1}));
        a.put(u"y", Bytes(200000, std::byte{2}));
        transaction.commit();
    }
    const auto reader = b.open(u"y", OpenMode::read);
    Bytes part(10);
    ASSERT_EQ(read_all_at(*reader, 0, part), 10U);
    a.rename(u"x", u"y"); // of the same size, written by the same commit
    EXPECT_EQ(read_whole(*reader), Bytes(200000, std::byte{2}));
}

TEST_P(Sharing, SpaceIsReusedBesideReaders) {
    StorageRW storage = open();
    StorageRW other = open();
    const auto contentOf = [](int file, int round) {
        return Bytes(static_cast<std::size_t>(2000 + file * 500), static_cast<std::byte>(file + round));
    };
    const auto writeAll = [&](int round) {
        for (int file = 0; file < 40; ++file)
            storage.put(u"file" + wstring(1, static_cast<wchar>(u'0' + file)), contentOf(file, round));
    };
    writeAll(0);
    const std::uint64_t length = storage.info().fileLength;
    const auto own = storage.open(u"file0", OpenMode::read);
    const auto others = other.open(u"fileC", OpenMode::read); // the 20th
    for (int round = 1; round <= 10; ++round)
        writeAll(round);
    EXPECT_LT(storage.info().fileLength, length + length / 4);
    EXPECT_EQ(read_whole(*own), contentOf(0, 0));
    EXPECT_EQ(read_whole(*others), contentOf(19, 0));
    storage.removeAll(u"*");
    EXPECT_EQ(read_whole(*others), contentOf(19, 0)) << "nothing is cut off that somebody reads";
    others->close();
    storage.put(u"last", {});
    EXPECT_LT(storage.info().fileLength, 20000U);
}

TEST_P(Sharing, WhoHasAReplacedContainerOpenSeesTheNewOne) {
    StorageRW old = open();
    old.put(u"x", Bytes(1000, std::byte{1}));
    StorageRW::replace(*open_memory_file(data_), layout_);
    open().put(u"y", Bytes(1000, std::byte{2})); // the same blocks, the same number of commits
    EXPECT_GT(open().changeCounter(), 1U);
    EXPECT_FALSE(old.contains(u"x"));
    old.put(u"z", {});
    EXPECT_EQ(test::contents(open()), (Model{{u"y", Bytes(1000, std::byte{2})}, {u"z", {}}}));
}

TEST_P(Sharing, ReadingKeepsOthersFromCommittingAcrossOwnChanges) {
    ReplacedClock clock;
    StorageRW a = open();
    StorageRW b = open();
    const auto isBusy = [&] { return !message_of([&] { b.put(u"b", {}); }).empty(); };
    {
        const StorageReading outer(a);
        const StorageReading inner(a);
        a.put(u"a", {}); // its own reading does not wait for itself
        EXPECT_TRUE(isBusy()) << "still reading after the commit";
    }
    EXPECT_FALSE(isBusy());
    {
        auto writer = a.open(u"c", OpenMode::create);
        const StorageReading reading(a);
        EXPECT_TRUE(isBusy());
        writer->close();
        EXPECT_TRUE(isBusy()) << "still reading after the turn";
        EXPECT_EQ(b.find().size(), 3U) << "others may read";
    }
    EXPECT_FALSE(isBusy());
    EXPECT_EQ(test::contents(a), (Model{{u"a", {}}, {u"b", {}}, {u"c", {}}}));
}

TEST_P(Sharing, ThreadsShareOneHandle) {
    StorageRW storage = open();
    constexpr int kRounds = 200;
    const auto contentOf = [](int round) {
        return Bytes(100 + 37 * static_cast<std::size_t>(round % 50), static_cast<std::byte>(round));
    };
    storage.put(u"a", contentOf(0));
    std::atomic<bool> wrong = false;
    const auto read = [&] {
        for (int i = 0; i < kRounds; ++i) {
            const Bytes bytes =
                i % 2 == 0 ? storage.get(u"a") : read_whole(*storage.open(u"a", OpenMode::read));
            wrong = wrong || bytes.empty() || bytes != Bytes(bytes.size(), bytes[0]);
        }
    };
    std::thread readers[] = {std::thread(read), std::thread(read)};
    std::thread other([&] {
        for (int round = 1; round <= kRounds; ++round) {
            const auto file = storage.open(u"b", OpenMode::replace);
            write_all(*file, contentOf(round));
            file->close();
        }
    });
    for (int round = 1; round <= kRounds; ++round)
        storage.put(u"a", contentOf(round));
    for (std::thread& thread : readers)
        thread.join();
    other.join();
    EXPECT_FALSE(wrong);
    EXPECT_EQ(test::contents(storage), (Model{{u"a", contentOf(kRounds)}, {u"b", contentOf(kRounds)}}));
    EXPECT_EQ(storage.changeCounter(), 1U + 2 * kRounds);
    EXPECT_TRUE(storage.check().isClean());
}

TEST_P(Sharing, IsMadeOnceWhoeverElseTries) {
    const auto data = create_memory_data();
    const auto first = open_memory_file(data);
    const InterfacePtr<ISharedFile> locks(first);
    constexpr std::uint64_t kTurn = std::uint64_t{1} << 62;
    ASSERT_TRUE(locks->tryLock(kTurn, 1, LockKind::exclusive));
    // The other one comes while the file is empty, and gets on when a file has been committed.
    bool made = true;
    std::thread other([&] { made = StorageRW::createIfEmpty(*open_memory_file(data), layout_); });
    write_all_at(*first, 0, raw());
    locks->unlock(kTurn, 1);
    StorageRW storage(first, layout_);
    storage.put(u"a", bytes_of("kept"));
    other.join();
    EXPECT_FALSE(made);
    EXPECT_EQ(test::contents(storage), (Model{{u"a", bytes_of("kept")}}));
}

} // namespace
} // namespace core
