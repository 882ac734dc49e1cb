// SPDX-License-Identifier: Apache-2.0
// A container by itself: what it holds, what it refuses, and how it lies in its file.
#include "tests/support/storage_fixture.h"

#include <core/files/errors.h>
#include <core/storage/errors.h>

namespace core {
namespace {

using test::Bytes;
using test::bytes_of;
using test::kind_of;
using test::message_of;
using test::Model;
using test::ReplacedClock;

using Kind = StorageException::Kind;

class Storage : public test::MemoryContainer {};
INSTANTIATE_TEST_SUITE_P(Formats, Storage, test::kEveryFormat, test::name_of_format);

TEST_P(Storage, HoldsWhatAModelHolds) {
    test::Random random(5);
    Model model;
    for (int round = 0; round < 20; ++round) {
        StorageRW storage = open();
        for (int i = 0; i < 15; ++i)
            test::change(random, storage, model);
        ASSERT_EQ(test::contents(storage), model);
        if (round % 5 == 4) {
            storage.compact();
            ASSERT_EQ(test::contents(storage), model) << "after compacting";
            EXPECT_EQ(storage.info().freeBytes, 0U);
            EXPECT_EQ(storage.info().fileLength, storage.info().end);
        }
        const StorageCheck check = storage.check();
        EXPECT_TRUE(check.isClean()) << to_utf8(check.problems.at(0).text());
        ASSERT_EQ(test::contents(open()), model) << "opened again";
    }
}

TEST_P(Storage, BeginsAsAnEmptyTable) {
    const Bytes bytes = raw();
    const std::string text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const bool wide = layout_.width == 8;
    EXPECT_EQ(text.substr(0, 2 * layout_.width + 8),
              wide ? std::string("\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\0\2\0\0\0\0\0\0\0\0\0\0\0\0\0\0", 24)
                   : std::string("\xFF\xFF\xFF\x7F\0\2\0\0\0\0\0\0\0\0\0\0", 16));
    EXPECT_EQ(text.substr(layout_.headerSize(), layout_.blockHeaderSize()),
              wide ? "\r\n0000000000000000 0000000000000200 ffffffffffffffff \r\n"
                   : "\r\n00000000 00000200 7fffffff \r\n");
    EXPECT_EQ(bytes.size(), layout_.headerSize() + layout_.blockHeaderSize() + 512);
    EXPECT_TRUE(test::contents(open()).empty());
    EXPECT_THROW(StorageRW::create(*open_memory_file(data_), layout_), FileException)
        << "not over what is there";
}

TEST_P(Storage, CountsCommitsThatChangedSomething) {
    StorageRW storage = open();
    const auto bytes = bytes_of("content");
    EXPECT_EQ(storage.changeCounter(), 0U);
    storage.put(u"a", bytes);
    storage.put(u"b", bytes);
    EXPECT_EQ(storage.changeCounter(), 2U);
    const Bytes before = raw();
    storage.open(u"a", OpenMode::readWrite)->close();
    (void)storage.get(u"a");
    EXPECT_EQ(storage.removeAll(u"none*"), 0U);
    storage.begin();
    storage.commit();
    EXPECT_EQ(raw(), before) << "nothing was changed, so nothing was written";
    {
        StorageTransaction rolledBack(storage);
        storage.put(u"c", bytes);
        EXPECT_TRUE(storage.contains(u"c"));
    }
    EXPECT_FALSE(storage.contains(u"c"));
    EXPECT_EQ(kind_of([&] { storage.remove(u"c"); }), Kind::fileNotFound);
    EXPECT_EQ(storage.changeCounter(), 2U);
    {
        StorageTransaction transaction(storage);
        storage.put(u"c", bytes);
        storage.remove(u"a");
        storage.rename(u"b", u"d");
        EXPECT_THROW(storage.begin(), StorageException);
        transaction.commit();
    }
    EXPECT_EQ(storage.changeCounter(), 3U) << "one commit, however many changes";
    EXPECT_EQ(test::contents(storage), (Model{{u"c", bytes}, {u"d", bytes}}));
}

TEST_P(Storage, FindsByPatternInTheOrderOfFoldedNames) {
    StorageRW storage = open();
    for (const wchar* name :
         {u"b.txt", u"A.txt", u"a.txt", u"", u"Ж.txt", u"ж.dat", u"straße", u"STRASSE", u"z"})
        storage.put(name, bytes_of("12345"));
    const auto names = [&](wstring_view pattern) {
        std::vector<wstring> result;
        for (const StorageFound& found : storage.find(pattern)) {
            EXPECT_EQ(found.size, 5U);
            result.push_back(found.name);
        }
        return result;
    };
    EXPECT_EQ(names(u"*"), (std::vector<wstring>{u"", u"A.txt", u"a.txt", u"b.txt", u"STRASSE", u"straße",
                                                 u"z", u"ж.dat", u"Ж.txt"}));
    EXPECT_EQ(names(u"?.txt"), (std::vector<wstring>{u"A.txt", u"a.txt", u"b.txt", u"Ж.txt"}));
    EXPECT_EQ(names(u""), (std::vector<wstring>{u""}));
    EXPECT_EQ(names(u"none*"), std::vector<wstring>{});
    EXPECT_EQ(storage.removeAll(u"*.txt"), 4U);
    EXPECT_EQ(storage.find().size(), 5U);
}

TEST_P(Storage, KeepsTimesOfFiles) {
    ReplacedClock clock;
    StorageRW storage = open();
    const auto times = [&](wstring_view name) {
        const StorageFound found = storage.find(name).at(0);
        return std::pair(found.created.toXMLString(), found.modified.toXMLString());
    };
    storage.put(u"a", bytes_of("1"));
    clock.time += std::chrono::hours(1);
    storage.put(u"a", bytes_of("2"));
    EXPECT_EQ(times(u"a"), std::pair(wstring(u"1971-01-01T00:00:00"), wstring(u"1971-01-01T01:00:00")));
    clock.time += std::chrono::hours(1);
    storage.rename(u"a", u"b");
    EXPECT_EQ(times(u"b").second, u"1971-01-01T01:00:00") << "a new name is not a new content";
    storage.copy(u"b", u"c");
    EXPECT_EQ(times(u"c").first, u"1971-01-01T02:00:00");
    storage.setTimes(u"c", Date(2001, 2, 3), Date(2004, 5, 6));
    EXPECT_EQ(times(u"c"), std::pair(wstring(u"2001-02-03T00:00:00"), wstring(u"2004-05-06T00:00:00")));
    EXPECT_EQ(storage.get(u"c"), bytes_of("2"));
}

TEST_P(Storage, RefusesSourceAsDestinationAndWhatIsMissing) {
    StorageRW storage = open();
    storage.setRootURL(u"root/");
    storage.put(u"a", {});
    EXPECT_EQ(kind_of([&] { storage.copy(u"a", u"a"); }), Kind::isDestination);
    EXPECT_EQ(kind_of([&] { storage.rename(u"a", u"a"); }), Kind::isDestination);
    EXPECT_EQ(kind_of([&] { storage.copy(u"x", u"y"); }), Kind::fileNotFound);
    EXPECT_EQ(kind_of([&] { storage.rename(u"x", u"a"); }), Kind::fileNotFound);
    EXPECT_EQ(kind_of([&] { storage.setTimes(u"x", {}, {}); }), Kind::fileNotFound);
    EXPECT_EQ(kind_of([&] { (void)storage.open(u"x", OpenMode::read); }), Kind::fileNotFound);
    EXPECT_EQ(kind_of([&] { (void)storage.open(u"x", OpenMode::readWrite); }), Kind::fileNotFound);
    EXPECT_THROW((void)storage.open(u"a", OpenMode::createNew), FileException);
    EXPECT_EQ(message_of([&] { (void)storage.get(u"x"); }),
              message_text(messages::kStorageFileNotFound) + u" 'root/x'");
    EXPECT_EQ(storage.find().size(), 1U);
    storage.rename(u"a", u"A");
    EXPECT_TRUE(storage.contains(u"A") && !storage.contains(u"a")) << "another case is another name";
    StorageRW reader = open({.readOnly = true});
    EXPECT_THROW(reader.put(u"b", {}), StorageException);
    EXPECT_EQ(test::contents(reader), (Model{{u"A", {}}}));
}

TEST_P(Storage, AnErrorSaysWhichContainerOrFile) {
    ReplacedClock clock;
    StorageRW storage(open_memory_file(data_), layout_, {}, u"test:///box");
    StorageRW other(open_memory_file(data_), layout_, {.readOnly = true}, u"test:///other");
    storage.setRootURL(u"box/");
    const auto held = storage.open(u"a", OpenMode::create);
    const auto urlOf = [](auto call) {
        try {
            call();
        } catch (const StorageException& e) {
            EXPECT_NE(e.description().find(e.url()), wstring::npos);
            return e.url();
        }
        return wstring();
    };
    EXPECT_EQ(urlOf([&] { storage.put(u"a", {}); }), u"box/a");
    EXPECT_EQ(urlOf([&] { other.put(u"b", {}); }), u"test:///other");
    storage.begin();
    EXPECT_EQ(urlOf([&] { storage.begin(); }), u"test:///box");
    EXPECT_EQ(urlOf([&] { open().put(u"b", {}); }), open_memory_file(data_)->url());
    storage.rollback();
    EXPECT_EQ(urlOf([&] { held->close(); }), u"box/a");
}

TEST_P(Storage, RewritesOnlyWhatComesBeforeAChange) {
    StorageRW storage = open();
    storage.put(u"a", Bytes(512 * 1000));
    const auto address = [&] { return storage.info().pieces; };
    const auto before = address();
    const auto file = storage.open(u"a", OpenMode::readWrite);
    write_all_at(*file, 512 * 10, bytes_of("x"));
    file->close();
    std::uint64_t kept = 0;
    for (const StorageInfo::Piece& piece : address()) {
        if (piece.use == StorageUse::content)
            kept = std::max(kept, piece.length);
    }
    EXPECT_EQ(kept, (1000 - 11) * layout_.blockLength(512)) << "the rest stayed where it was";
    EXPECT_EQ(storage.get(u"a")[5120], std::byte{'x'});
}

TEST_P(Storage, LargeFilesStayTogetherAndSmallOnesFillTheHoles) {
    StorageRW storage = open();
    const auto name = [](int i) { return u"file" + wstring(1, static_cast<wchar>(u'A' + i)); };
    for (int i = 0; i < 40; ++i)
        storage.put(name(i), Bytes(512 * 10));
    for (int i = 0; i < 40; i += 2)
        storage.remove(name(i)); // holes of ten blocks, and some for attributes
    const StorageInfo before = storage.info();
    storage.put(u"small", Bytes(512 * 62));
    EXPECT_EQ(storage.info().fileLength, before.fileLength)
        << "63 blocks, one for the attributes, fit into the holes";
    EXPECT_GE(storage.info().fragments, before.fragments + 6);
    storage.remove(u"small");
    storage.put(u"large", Bytes(512 * 63));
    EXPECT_EQ(storage.info().fragments, before.fragments + 1) << "64 blocks lie in one piece";
    EXPECT_GT(storage.info().fileLength, before.fileLength);
    storage.put(u"guard", Bytes(1));
    storage.put(u"another", Bytes(512 * 63));
    const std::uint64_t longest = storage.info().fileLength;
    storage.remove(u"large");
    storage.put(u"again", Bytes(512 * 63));
    EXPECT_EQ(storage.info().fileLength, longest) << "the hole that is long enough is taken";
    storage.put(u"more", Bytes(512 * 63));
    EXPECT_GT(storage.info().fileLength, longest) << "there is no other";
    EXPECT_TRUE(storage.check().isClean());
}

TEST_P(Storage, UsesFreeSpaceAgainAndGivesTheEndBack) {
    StorageRW storage = open();
    std::uint64_t most = 0;
    for (int round = 0; round < 50; ++round) {
        for (int i = 0; i < 10; ++i)
            storage.put(u"file" + wstring(1, static_cast<wchar>(u'0' + i)),
                        Bytes(700 * static_cast<std::size_t>(i)));
        if (round == 2)
            most = storage.info().fileLength;
        // The trees take space in one piece, which may be somewhere else each time.
        EXPECT_LE(storage.info().fileLength, most == 0 ? 1000000 : most + 4 * layout_.blockLength(512))
            << "round " << round;
    }
    EXPECT_EQ(storage.removeAll(u"*"), 10U);
    EXPECT_EQ(raw().size(), layout_.emptyLength()) << "as long as a new one";
}

TEST_P(Storage, RefusesWhatTheLayoutCannotAddress) {
    StorageRW storage = open();
    storage.put(u"a", bytes_of("kept"));
    const wstring longest(StorageFilesType::kLongestName, u'n');
    storage.put(longest, {});
    EXPECT_EQ(open().names().size(), 2U) << "it is read back, too";
    storage.remove(longest);
    EXPECT_NE(message_of([&] { storage.put(longest + u"n", {}); }).find(longest + u"n"), wstring::npos);
    EXPECT_NE(message_of([&] { storage.rename(u"a", longest + u"n"); }), u"");
    const Bytes before = raw();
    if (layout_.width == 4) {
        const auto file = storage.open(u"big", OpenMode::create);
        EXPECT_THROW(write_all_at(*file, std::uint64_t{2} << 30, bytes_of("x")), StorageException);
        EXPECT_THROW(file->truncate(std::uint64_t{2} << 30), StorageException);
        write_all(*file, bytes_of("still usable"));
        EXPECT_EQ(file->length(), 12U);
        file->close();
        storage.remove(u"big");
    }
    const auto file = storage.open(u"big", OpenMode::create);
    EXPECT_THROW(write_all_at(*file, ~std::uint64_t{0} - 5, bytes_of("x")), StorageException);
    EXPECT_EQ(test::contents(storage), (Model{{u"a", bytes_of("kept")}}));
}

} // namespace
} // namespace core
