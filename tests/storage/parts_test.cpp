// SPDX-License-Identifier: Apache-2.0
// The parts of a container, each by itself: chains of blocks, the table of inner files, attributes, open
// inner files. Together they read any container without the class that writes it.
#include "tests/support/storage_fixture.h"
#include "tests/support/storage_image.h"

#include <core/files/errors.h>
#include <core/storage/errors.h>

#include <cerrno>

namespace core {
namespace {

using test::Bytes;
using test::Model;

class Parts : public test::MemoryContainer {
  protected:
    [[nodiscard]] Bytes contentAt(std::uint64_t address) const {
        ChainInFile chain(layout_);
        chain.read(*file(), address, u"box");
        const Bytes content = chain.content(*file(), u"box");
        EXPECT_EQ(content.size(), chain.size());
        EXPECT_EQ(chain.address(), address);
        return content;
    }
};
INSTANTIATE_TEST_SUITE_P(Formats, Parts, test::kEveryFlatFormat, test::name_of_format);

TEST_P(Parts, ReadWhatAContainerHolds) {
    StorageRW storage = open();
    test::Random random(41);
    Model model;
    for (int round = 0; round < 40; ++round) {
        test::change(random, storage, model);
        StorageFilesType table(layout_);
        const Bytes content = contentAt(layout_.headerSize());
        ASSERT_TRUE(table.decode(content, false));
        EXPECT_EQ(table.encode(), content);
        EXPECT_LE(table.end(), file()->length());
        Model found;
        table.forEach([&](wstring_view name, const StorageFileEntry& entry) {
            EXPECT_EQ(table.find(name), entry);
            const auto info = StorageFileInfo::decode(contentAt(entry.attributes));
            ASSERT_TRUE(info);
            EXPECT_EQ(info->name, name);
            EXPECT_EQ(info->modified, storage.describe(name).modified);
            found[wstring(name)] = contentAt(entry.data);
        });
        ASSERT_EQ(found, model);
    }
}

TEST_P(Parts, AChainThatIsDamagedLeavesTheObjectAsItWas) {
    open().put(u"a", Bytes(1300, std::byte{5}));
    const auto bytes = raw();
    StorageFilesType table(layout_);
    ASSERT_TRUE(table.decode(contentAt(layout_.headerSize()), false));
    const std::uint64_t address = table.find(u"a").value().data;
    ChainInFile chain(layout_);
    EXPECT_EQ(chain.address(), layout_.null);
    chain.read(*file(), address, u"box");
    const std::uint64_t step = layout_.blockLength(kStorageBlockSize);
    const std::vector<ChainInFile::Block> blocks{
        {address, 512}, {address + step, 512}, {address + 2 * step, 512}};
    EXPECT_EQ(chain.blocks(), blocks);
    const auto refused = [&](auto call) {
        try {
            call();
        } catch (const StorageException& e) {
            return e.kind() == StorageException::Kind::badFormat && e.url() == u"box";
        }
        return false;
    };
    for (const std::uint64_t wrong :
         {std::uint64_t{0}, address + 1, std::uint64_t{bytes.size()}, layout_.null - 1})
        EXPECT_TRUE(refused([&] { chain.read(*file(), wrong, u"box"); })) << wrong;
    EXPECT_EQ(chain.blocks(), blocks);
    EXPECT_EQ(chain.size(), 1300U);
    EXPECT_EQ(chain.content(*file(), u"box"), Bytes(1300, std::byte{5}));
    file()->truncate(address + 2 * step + layout_.blockHeaderSize() + 1300 - 1024 - 1);
    EXPECT_TRUE(refused([&] { (void)chain.content(*file(), u"box"); })) << "the last byte is gone";
    chain.read(*file(), layout_.null, u"box");
    EXPECT_TRUE(chain.blocks().empty());
    EXPECT_EQ(chain.size(), 0U);
}

TEST_P(Parts, TheTableHoldsWhatAMapHolds) {
    struct Order {
        bool operator()(const wstring& a, const wstring& b) const { return compare_file_names(a, b) < 0; }
    };
    test::Random random(43);
    StorageFilesType table(layout_);
    std::map<wstring, StorageFileEntry, Order> model;
    table.setEnd(100000);
    for (int step = 0; step < 3000; ++step) {
        const wstring name = random.name() + wstring(random.below(3), u'n');
        const StorageFileEntry entry{layout_.null, layout_.emptyLength() + random.below(50000)};
        switch (random.below(8)) {
        case 0:
        case 1:
            EXPECT_EQ(table.remove(name), model.erase(name) == 1);
            break;
        case 2: { // there and back, or a copy that must not change with the original
            StorageFilesType other(table);
            EXPECT_TRUE(table.decode(table.encode(), false));
            other.set(u"copy", entry);
            EXPECT_FALSE(table.find(u"copy"));
            break;
        }
        default:
            table.set(name, entry);
            model[name] = entry;
        }
        if (step % 50 == 0) {
            auto expected = model.begin();
            table.forEach([&](wstring_view found, const StorageFileEntry& at) {
                ASSERT_NE(expected, model.end());
                EXPECT_EQ(found, expected->first);
                EXPECT_EQ(at, (expected++)->second);
            });
            EXPECT_EQ(expected, model.end());
        }
        const auto known = model.find(name);
        EXPECT_EQ(table.find(name), known == model.end() ? std::nullopt : std::optional(known->second));
    }
    const auto before = table.encode();
    EXPECT_THROW(table.set(wstring(StorageFilesType::kLongestName + 1, u'n'), {layout_.null, layout_.null}),
                 StorageException);
    EXPECT_EQ(table.encode(), before);
    EXPECT_EQ(table.end(), 100000U);
    const wstring longest(StorageFilesType::kLongestName, u'n');
    table.set(longest, {layout_.null, layout_.null});
    EXPECT_TRUE(table.find(longest));
}

TEST_P(Parts, AnUnsortedTableNeedsTheOption) {
    StorageFilesType table(layout_);
    table.set(u"a", {layout_.null, layout_.null});
    table.set(u"b", {layout_.null, layout_.null});
    Bytes content = table.encode();
    EXPECT_TRUE(StorageFilesType(layout_).decode(content, false));
    content[content.size() - 4] = std::byte{'c'};
    EXPECT_FALSE(StorageFilesType(layout_).decode(content, false));
    ASSERT_TRUE(table.decode(content, true)); // c, b
    table.set(u"c", {layout_.null, layout_.null});
    table.set(u"a", {layout_.null, layout_.null});
    std::vector<wstring> names;
    table.forEach([&](wstring_view name, const StorageFileEntry&) {
        names.emplace_back(name);
        EXPECT_TRUE(table.find(name));
    });
    EXPECT_EQ(names, (std::vector<wstring>{u"a", u"b", u"c"})) << "each name once, and in order";
    EXPECT_TRUE(StorageFilesType(layout_).decode(table.encode(), false));
    content[content.size() - 4] = std::byte{'b'};
    EXPECT_FALSE(StorageFilesType(layout_).decode(content, true)) << "a name twice";
    for (std::size_t size = 0; size < content.size(); ++size)
        EXPECT_EQ(StorageFilesType(layout_).decode(std::span(content).first(size), true), size == 0);
}

TEST_P(Parts, WhatStandsBehindANumberOfABlockHeaderDoesNotMatter) {
    const std::string header = "\r\n" + test::hex(3, layout_.digits()) + "_" +
                               test::hex(5, layout_.digits()) + std::string(1, '\0') +
                               test::hex(layout_.null, layout_.digits()) + "\xFF\r\n";
    const auto file = open_memory_file(create_memory_data());
    const std::uint64_t address = layout_.emptyLength();
    write_all_at(*file, address, test::bytes_of(header + "abcde"));
    ChainInFile chain(layout_);
    chain.read(*file, address, u"box");
    EXPECT_EQ(chain.content(*file, u"box"), test::bytes_of("abc"));
    write_all_at(*file, address + 1, test::bytes_of("\r"));
    EXPECT_THROW(chain.read(*file, address, u"box"), StorageException);
}

TEST_P(Parts, AFailureOfAChainTellsWhere) {
    const ChainInFileExc failure(4711);
    EXPECT_STREQ(failure.messageId(), messages::kStorageChain);
    ASSERT_EQ(failure.parameters().size(), 1U);
    EXPECT_EQ(failure.parameters()[0], u"4711");
    EXPECT_NE(std::string(failure.what()).find("4711"), std::string::npos) << failure.what();
}

TEST_P(Parts, AnOpenInnerFileKeepsItsContainerOpen) {
    std::optional<StorageRW> storage(open());
    const auto writer = make_object<FileWithBuffer2>(*storage, u"a", OpenMode::createNew);
    EXPECT_EQ(writer->name(), u"a");
    write_all(*writer, Bytes(1000, std::byte{1}));
    try {
        (void)make_object<FileWithBuffer2>(*storage, u"a", OpenMode::read);
        ADD_FAILURE() << "a writer that only reads";
    } catch (const FileException& e) {
        EXPECT_EQ(e.systemError(), EINVAL);
    }
    writer->flush();
    const auto reader = make_object<FileWithBuffer>(*storage, u"a");
    storage.reset();
    write_all(*writer, Bytes(5, std::byte{2}));
    EXPECT_EQ(writer->length(), 1005U);
    EXPECT_EQ(reader->length(), 1000U);
    EXPECT_EQ(read_whole(*reader), Bytes(1000, std::byte{1}));
    writer->close();
    EXPECT_EQ(open().get(u"a").size(), 1005U);
}

TEST(Storage64, HasTheWideLayoutThroughout) {
    const auto data = create_memory_data();
    EXPECT_TRUE(StorageRW64::createIfEmpty(*open_memory_file(data)));
    EXPECT_THROW(StorageRW64::create(*open_memory_file(data)), FileException);
    EXPECT_EQ(open_memory_file(data)->length(), kStorageLayout64.emptyLength());
    const Bytes content(4, std::byte{1});
    EXPECT_THROW(StorageRW narrow(open_memory_file(data)), StorageException);
    open_memory_file(data)->truncate(0);
    test::create_container(*open_memory_file(data), {&kStorageLayout64, 1});
    StorageRW64(open_memory_file(data)).put(u"a", content);
    EXPECT_EQ(StorageRW64(open_memory_file(data)).get(u"a"), content);
    ChainInFile64 chain;
    chain.read(*open_memory_file(data), kStorageLayout64.headerSize(), u"box");
    StorageFilesType64 table;
    ASSERT_TRUE(table.decode(chain.content(*open_memory_file(data), u"box"), false));
    chain.read(*open_memory_file(data), table.find(u"a").value().data, u"box");
    EXPECT_EQ(chain.content(*open_memory_file(data), u"box"), content);
    StorageRW64::replace(*open_memory_file(data));
    EXPECT_FALSE(StorageRW64(open_memory_file(data)).contains(u"a"));
}

TEST(StorageFileInfo, IsTheRecordOfTheFormat) {
    const StorageFileInfo info{Date(1), Date(0x0102030405), 7, u"Aж"};
    const Bytes record = info.encode();
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(record.data()), record.size()),
              std::string("\1\0\0\0\0\0\0\0\5\4\3\2\1\0\0\0\7\0\0\0A\0\x36\4\0\0\0\0", 28));
    EXPECT_EQ(StorageFileInfo::decode(record), info);
    EXPECT_EQ(StorageFileInfo::decode(std::span(record).first(24))->name, u"");
    EXPECT_FALSE(StorageFileInfo::decode(std::span(record).first(23)));
    Bytes far = record;
    far[7] = std::byte{1}; // a number that no date has
    EXPECT_GE(StorageFileInfo::decode(far)->created, Date(9999, 12, 31));
}

} // namespace
} // namespace core
