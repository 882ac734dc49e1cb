// SPDX-License-Identifier: Apache-2.0
// One place that is damaged or cannot be read costs what lies there: everything else is listed, read, checked
// and compacted.
#include "tests/support/bad_sector.h"
#include "tests/support/fault_container.h"

#include <core/storage/errors.h>

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

namespace core {
namespace {

using test::Bytes;
using test::FaultDisk;
using test::Model;

class OneFault : public test::FaultContainer {};
INSTANTIATE_TEST_SUITE_P(Formats, OneFault, test::kEveryFormat, test::name_of_format);

/// A sector that cannot be read costs the files that lie there, and a part of the table where that lies
/// there: the others are found and read, and a check names what is damaged.
TEST_P(OneFault, ASectorThatCannotBeReadCostsWhatLiesThere) {
    std::size_t opened = 0;
    for (std::uint64_t bad = 1024; bad < disk_.bytes.size(); bad += 512) {
        const auto file = make_object<test::BadSector>(disk_.bytes, bad);
        const auto storage = [&]() -> std::optional<StorageRW> {
            try {
                return StorageRW(file, layout_);
            } catch (const Exception&) { // the table begins there
                return std::nullopt;
            }
        }();
        if (!storage)
            continue;
        ++opened;
        std::vector<StorageProblem> problems;
        std::size_t damaged = 0;
        for (const StorageFound& found : storage->find(u"*", problems)) {
            EXPECT_TRUE(found.damaged || found.size == model_.at(found.name).size()) << bad;
            try {
                EXPECT_EQ(storage->get(found.name), model_.at(found.name)) << bad;
                EXPECT_EQ(read_whole(*StorageRW(*storage).open(found.name, OpenMode::read)),
                          model_.at(found.name));
                damaged += found.damaged ? 1 : 0;
            } catch (const StorageException& e) {
                EXPECT_EQ(e.kind(), StorageException::Kind::badFormat);
                ++damaged;
            }
        }
        EXPECT_LE(damaged, 3U) << "one sector holds parts of three files at most: " << bad;
        const StorageCheck check = storage->check();
        EXPECT_TRUE(damaged + problems.size() == 0 || !check.isClean()) << bad;
        EXPECT_EQ(storage->names().size(), storage->count());
        (void)storage->info();
    }
    EXPECT_GT(opened, 50U);
}

/// A node of the tree that is damaged costs the files below it, and nothing else ends with an error.
TEST_P(OneFault, ANodeOfTheTableCostsWhatIsBelowIt) {
    if (format_.table == 1)
        GTEST_SKIP() << "its table has no nodes";
    FaultDisk disk;
    create_container(*test::open_fault_file(disk), format_);
    constexpr std::size_t kFiles = 1000;
    const auto name = [](std::size_t i) { return u"file" + from_utf8(std::to_string(100000 + i)); };
    {
        StorageRW storage(test::open_fault_file(disk), layout_);
        const StorageTransaction all(storage);
        for (std::size_t i = 0; i < kFiles; ++i)
            storage.put(name(i), Bytes(10, static_cast<std::byte>(i)));
        storage.commit();
    }
    const std::string_view text(reinterpret_cast<const char*>(disk.bytes.data()), disk.bytes.size());
    const std::string leaf = "file" + std::string(4, '\0'); // the kind, the level
    std::size_t nodes = 0;
    for (auto at = text.find(leaf); at != std::string_view::npos; at = text.find(leaf, at + 1)) {
        ++nodes;
        FaultDisk other;
        other.bytes = disk.bytes;
        other.bytes[at + 300] ^= std::byte{1};
        StorageRW storage(test::open_fault_file(other), layout_);
        const StorageCheck check = storage.check();
        ASSERT_EQ(check.problems.size(), 1U);
        EXPECT_EQ(check.problems[0].kind, StorageProblem::Kind::damagedTable);
        EXPECT_EQ(check.problems[0].address, at - 8 - layout_.blockHeaderSize());
        EXPECT_FALSE(check.problems[0].text().empty());
        std::vector<StorageProblem> problems;
        const auto found = storage.find(u"*", problems);
        EXPECT_EQ(problems.size(), 1U);
        EXPECT_LT(found.size(), kFiles);
        ASSERT_GT(found.size(), kFiles - 100);
        EXPECT_EQ(check.files, found.size());
        EXPECT_EQ(storage.info().files, found.size());
        for (const StorageFound& file : found)
            EXPECT_EQ(storage.get(file.name).size(), 10U);
        EXPECT_EQ(test::kind_of([&] { (void)storage.find(); }), StorageException::Kind::badFormat)
            << "a part must not be taken for the whole";
        // Files below other nodes can be changed, and nothing of this one is lost by it.
        storage.put(found[found.size() * (nodes % 7) / 7].name, Bytes(20));
        other.bytes[at + 300] ^= std::byte{1};
        const StorageRW mended(test::open_fault_file(other), layout_);
        EXPECT_EQ(mended.find().size(), kFiles);
        EXPECT_TRUE(mended.check().isClean());
    }
    EXPECT_GT(nodes, 5U);
}

TEST_P(OneFault, CompactingFillsTheSpaceInFrontOfADamagedFile) {
    for (const wchar name : {u'd', u'g'}) { // the last file is "g"
        FaultDisk disk;
        create_container(*test::open_fault_file(disk), format_);
        {
            StorageRW storage(test::open_fault_file(disk), layout_);
            storage.begin();
            for (wchar c = u'a'; c < u'h'; ++c)
                storage.put(wstring(1, c), Bytes(5000, std::byte(c)));
            storage.commit();
            storage.compact();
            storage.remove(u"a"); // another file fits there, to the last byte
        }
        const Bytes content(512, std::byte(name));
        const auto place = std::search(disk.bytes.begin(), disk.bytes.end(), content.begin(), content.end());
        ASSERT_NE(place, disk.bytes.end());
        *(place + static_cast<std::ptrdiff_t>(layout_.blockLength(512) - layout_.blockHeaderSize())) =
            std::byte{'x'}; // the header of the second block
        const std::size_t before = disk.bytes.size();
        StorageRW damaged(test::open_fault_file(disk), layout_);
        EXPECT_EQ(damaged.compact().damaged, std::vector<wstring>{wstring(1, name)});
        EXPECT_EQ(damaged.info().freeBytes, name == u'd' ? 0U : 12 * layout_.blockLength(512));
        EXPECT_LE(disk.bytes.size(), before) << "no node has moved behind";
    }
}

TEST_P(OneFault, AContentThatIsReadInPiecesHasItsChecksum) {
    if (format_.table == 1)
        GTEST_SKIP() << "it has no checksums";
    FaultDisk disk;
    create_container(*test::open_fault_file(disk), format_);
    StorageRW storage(test::open_fault_file(disk), layout_);
    storage.put(u"a", Bytes(3'000'000, std::byte{'d'}));
    const auto read = [&] {
        const auto file = StorageRW(test::open_fault_file(disk), layout_).open(u"a", OpenMode::read);
        for (std::byte piece[1000]; file->read(piece, sizeof piece) != 0;) {
        }
    };
    EXPECT_NO_THROW(read());
    const Bytes content(512, std::byte{'d'});
    *std::search(disk.bytes.begin(), disk.bytes.end(), content.begin(), content.end()) = std::byte{'x'};
    EXPECT_EQ(test::kind_of(read), StorageException::Kind::badFormat);
}

TEST_P(OneFault, CompactingGoesAroundADamagedFile) {
    FaultDisk disk;
    create_container(*test::open_fault_file(disk), format_);
    Model model;
    {
        StorageRW storage(test::open_fault_file(disk), layout_);
        storage.begin();
        for (wchar c = u'a'; c < u'q'; ++c)
            storage.put(wstring(1, c),
                        model[wstring(1, c)] = Bytes(c % 3 == 0 ? 200000 : 5000, std::byte(c)));
        storage.commit(); // each file in one piece
        for (const wchar c : {u'b', u'c', u'd', u'h', u'l'}) {
            storage.remove(wstring(1, c));
            model.erase(wstring(1, c));
        }
    }
    const std::uint64_t before = disk.bytes.size();
    const Bytes content = model.at(u"g");
    const auto place =
        std::search(disk.bytes.begin(), disk.bytes.end(), content.begin(), content.begin() + 512);
    ASSERT_NE(place, disk.bytes.end());
    const std::uint64_t block = static_cast<std::uint64_t>(place - disk.bytes.begin()) +
                                3 * layout_.blockLength(512) - layout_.blockHeaderSize();
    disk.bytes.at(block) = std::byte{'x'}; // the header of the fourth block
    const Bytes damaged(disk.bytes.begin() + static_cast<std::ptrdiff_t>(block),
                        disk.bytes.begin() +
                            static_cast<std::ptrdiff_t>(block + 5 * layout_.blockLength(512)));
    model.erase(u"g");
    StorageRW storage(test::open_fault_file(disk), layout_);
    EXPECT_EQ(storage.compact().damaged, std::vector<wstring>{u"g"});
    for (const auto& [name, bytes] : model)
        EXPECT_EQ(storage.get(name), bytes);
    EXPECT_TRUE(
        std::equal(damaged.begin(), damaged.end(), disk.bytes.begin() + static_cast<std::ptrdiff_t>(block)))
        << "what is left of it can still be salvaged";
    EXPECT_LT(disk.bytes.size(), before - 200000) << "the others have moved";
    if (format_.table == 1)
        EXPECT_EQ(test::kind_of([&] { (void)storage.get(u"g"); }), StorageException::Kind::badFormat);
    else
        EXPECT_EQ(storage.get(u"g"), content) << "it is read past its headers";
    storage.remove(u"g");
    EXPECT_TRUE(storage.compact().damaged.empty());
    EXPECT_EQ(test::contents(storage), model);
    EXPECT_TRUE(storage.check().isClean());
    EXPECT_EQ(storage.info().freeBytes, 0U);
}

} // namespace
} // namespace core
