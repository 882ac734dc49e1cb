// SPDX-License-Identifier: Apache-2.0
// Containers that the library would not write but must read: blocks of all sizes in any order. And what a
// check says of each thing that can be wrong.
#include "core/storage/little_endian.h"
#include "tests/support/storage_fixture.h"
#include "tests/support/storage_image.h"

#include <core/files/disk_file.h>
#include <core/files/url.h>
#include <core/runtime/utf8.h>

#include <functional>
#include <numeric>
#include <set>
#include <string>
#include <tuple>

namespace core {
namespace {

using test::Bytes;
using test::Model;
using test::StorageImage;

using Fault = StorageProblem::Kind;

class Image : public test::MemoryContainer {
  protected:
    using MemoryContainer::open;
    StorageRW open(const Bytes& bytes) {
        data_ = create_memory_data();
        write_all(*file(), bytes);
        return MemoryContainer::open();
    }
    [[nodiscard]] bool isRefused(std::function<void()> call) const {
        return test::kind_of(call) == StorageException::Kind::badFormat;
    }
    void expectWhole(const StorageRW& storage, const Model& model) {
        for (const StorageProblem& problem : storage.check().problems)
            ADD_FAILURE() << to_utf8(problem.text());
        EXPECT_EQ(test::contents(storage), model);
    }

    const std::uint64_t step_ = layout_.blockLength(512);
    const std::uint64_t null_ = layout_.null;
};
INSTANTIATE_TEST_SUITE_P(Formats, Image, test::kEveryFlatFormat, test::name_of_format);

TEST_P(Image, BlocksOfAllSizesAreReadAndChanged) {
    test::Random random(47);
    for (int round = 0; round < 40; ++round) {
        StorageImage image(layout_);
        Model model;
        for (int i = 0; i < 4; ++i) {
            const wstring name(1, static_cast<wchar>(u'a' + i));
            std::vector<std::size_t> sizes;
            for (std::size_t blocks = 1 + random.below(12); blocks > 0; --blocks) {
                const std::size_t kinds[] = {0, 1, random.below(512), 512, 512, 512, 513, random.below(5000)};
                sizes.push_back(kinds[random.below(std::size(kinds))]);
            }
            if (random.below(4) == 0)
                sizes.push_back(300000); // more than is read at once
            const std::size_t capacity = std::accumulate(sizes.begin(), sizes.end(), std::size_t{0});
            // The last blocks may be left over.
            const std::size_t spare =
                random.below(3) == 0 ? random.below(capacity + 1) : random.below(sizes.back() + 1);
            model[name] = random.bytes(capacity - spare);
            image.file(name, image.chain(model[name], sizes, random.below(2) == 0 ? 0 : random.below(40)));
        }
        const Bytes bytes = image.finish();
        StorageRW storage = open(bytes);
        expectWhole(storage, model);
        for (auto& [name, content] : model) {
            if (random.below(3) == 0)
                continue;
            const auto file = storage.open(name, OpenMode::readWrite);
            if (random.below(2) == 0) { // somewhere, so that blocks behind it may stay
                const std::size_t position = random.below(content.size() + 1);
                const Bytes piece = random.bytes(std::min(content.size() - position, random.below(900)));
                write_all_at(*file, position, piece);
                std::copy(piece.begin(), piece.end(),
                          content.begin() + static_cast<std::ptrdiff_t>(position));
            } else {
                test::edit(random, *file, content);
            }
            file->close();
            expectWhole(storage, model);
        }
        storage.rename(u"a", u"renamed");
        model[u"renamed"] = std::move(model[u"a"]);
        model.erase(u"a");
        storage.remove(u"b");
        model.erase(u"b");
        expectWhole(storage, model);
        storage.compact();
        expectWhole(storage, model);
        expectWhole(open(Bytes(raw())), model);
    }
}

/// The only thing that a check finds wrong, as a tuple of what it says.
auto only_problem(const StorageRW& storage) {
    const StorageCheck check = storage.check();
    if (check.problems.size() != 1)
        return std::tuple(Fault{}, std::uint64_t{check.problems.size()}, std::uint64_t{0}, std::string());
    const StorageProblem& problem = check.problems[0];
    EXPECT_FALSE(check.isClean());
    return std::tuple(problem.kind, problem.address, problem.length, to_utf8(problem.text()));
}

TEST_P(Image, ACheckFindsBytesThatNobodyHas) {
    const Bytes content(700, std::byte{1});
    const auto number = [](std::uint64_t n) { return std::to_string(n); };
    StorageImage middle(layout_);
    middle.file(u"a", middle.chain(content, {512, 512}));
    const std::uint64_t hole = middle.block(0, {}, 13, null_); // of no chain
    const std::uint64_t length = layout_.blockLength(13);
    EXPECT_EQ(only_problem(open(middle.finish())), std::tuple(Fault::lost, hole, length,
                                                              "At " + number(hole) + ": " + number(length) +
                                                                  " bytes are neither in use nor free."));
    StorageImage behind(layout_);
    behind.file(u"a", behind.chain(content, {1024}));
    const Bytes bytes = behind.finish(5);
    const StorageRW storage = open(bytes);
    EXPECT_EQ(std::get<0>(only_problem(storage)), Fault::lost);
    EXPECT_EQ(std::get<1>(only_problem(storage)), bytes.size() - 5);
    EXPECT_EQ(std::get<2>(only_problem(storage)), 5U);
    EXPECT_EQ(storage.get(u"a"), content) << "and harms nobody";
}

TEST_P(Image, ACheckFindsBytesThatTwoHave) {
    const Bytes content(512, std::byte{1});
    StorageImage shared(layout_);
    const std::uint64_t data = shared.chain(content, {512});
    shared.file(u"a", data);
    shared.file(u"b", data);
    StorageRW both = open(shared.finish());
    StorageCheck check = both.check();
    ASSERT_EQ(check.problems.size(), 1U);
    EXPECT_EQ(check.problems[0].kind, Fault::overlap);
    EXPECT_EQ(check.problems[0].address, data);
    EXPECT_EQ(check.problems[0].length, step_);
    EXPECT_EQ(check.problems[0].use, StorageUse::content);
    EXPECT_EQ(check.problems[0].otherUse, StorageUse::content);
    EXPECT_NE(check.problems[0].name, check.problems[0].otherName);
    const std::string text = to_utf8(check.problems[0].text());
    EXPECT_TRUE(text.find("“a”") != std::string::npos && text.find("“b”") != std::string::npos) << text;
    both.remove(u"a");
    both.put(u"c", Bytes(512, std::byte{2}));
    EXPECT_EQ(both.get(u"b"), content) << "what it shared with another is not used again";
    both.remove(u"b");
    EXPECT_EQ(std::get<0>(only_problem(both)), Fault::lost);

    // What a file begins with is free: to write there would take it from the file.
    for (const bool attributes : {true, false}) {
        StorageImage stolen(layout_);
        const std::uint64_t first = attributes ? stolen.attributes(u"a") : stolen.chain(content, {512});
        const std::uint64_t end = stolen.end();
        stolen.entry(u"a", {attributes ? first : null_, attributes ? null_ : first});
        stolen.free(first, end - first);
        StorageRW storage = open(stolen.finish());
        check = storage.check();
        ASSERT_EQ(check.problems.size(), 1U);
        EXPECT_EQ(check.problems[0].kind, Fault::overlap);
        EXPECT_EQ(check.problems[0].length, end - first);
        const Bytes kept = storage.get(u"a");
        storage.put(u"c", Bytes(10));
        EXPECT_EQ(storage.get(u"a"), kept);
        EXPECT_TRUE(storage.check().isClean()) << "what is free is known better by now";
    }
    // The data area of a block holds the next one.
    StorageImage inside(layout_);
    const std::uint64_t outer = inside.block(600, {}, 512, null_);
    inside.header(outer + layout_.blockHeaderSize() + 100, 0, 100, null_);
    inside.header(outer, 600, 512, outer + layout_.blockHeaderSize() + 100);
    inside.file(u"a", outer);
    StorageRW folded = open(inside.finish());
    EXPECT_TRUE(isRefused([&] { (void)folded.get(u"a"); }));
    EXPECT_EQ(folded.check().problems.at(0).kind, Fault::damagedContent);
    folded.remove(u"a");
    EXPECT_EQ(std::get<0>(only_problem(folded)), Fault::lost) << "nobody knows what the file had";
}

TEST_P(Image, ACheckFindsWhatCannotBeRead) {
    StorageImage other(layout_);
    other.entry(u"a", {other.attributes(u"b"), null_});
    StorageRW named = open(other.finish());
    EXPECT_EQ(std::get<0>(only_problem(named)), Fault::damagedAttributes);
    EXPECT_TRUE(named.describe(u"a").damaged);
    EXPECT_TRUE(named.get(u"a").empty()) << "the content itself is there";

    StorageImage small(layout_);
    const std::uint64_t record = small.chain(Bytes(23), {23});
    small.entry(u"a", {record, null_});
    EXPECT_EQ(std::get<1>(only_problem(open(small.finish()))), record) << "a record of 23 bytes";

    StorageImage cut(layout_);
    const std::uint64_t first = cut.block(513, {}, 512, null_);
    cut.file(u"a", first);
    StorageRW shortened = open(cut.finish());
    EXPECT_EQ(std::get<0>(only_problem(shortened)), Fault::damagedContent);
    EXPECT_EQ(std::get<1>(only_problem(shortened)), first);

    // Ranges that are not in order, empty, in front of the blocks, or behind the end.
    const std::uint64_t begin = layout_.emptyLength();
    using Ranges = std::vector<std::pair<std::uint64_t, std::uint64_t>>;
    for (const Ranges& ranges :
         {Ranges{{begin + 50, 10}, {begin, 10}}, Ranges{{begin, 10}, {begin + 9, 10}}, Ranges{{begin, 0}},
          Ranges{{begin - 1, 5}}, Ranges{{begin, 1000000}}, Ranges{{1000000, 1}}}) {
        StorageImage image(layout_);
        const Bytes space(100);
        (void)image.block(0, space, 100, null_);
        for (const auto& [address, length] : ranges)
            image.free(address, length);
        image.file(u"a", null_);
        StorageRW storage = open(image.finish());
        EXPECT_EQ(storage.check().problems.at(0).kind, Fault::lost);
        EXPECT_EQ(storage.check().problems.at(1).kind, Fault::damagedFreeChain);
        EXPECT_EQ(test::contents(storage), (Model{{u"a", {}}})) << "reading needs no free space";
        storage.put(u"b", {});
        EXPECT_TRUE(storage.check().isClean()) << "the chains say what is free";
    }
}

TEST_P(Image, BytesThatOnlyFillABlockUpAreNotMissed) {
    const auto image = [&](std::uint64_t data) {
        StorageImage made(layout_);
        made.file(u"a", data);
        (void)made.finish(static_cast<std::int64_t>(step_));
        return made;
    };
    const std::uint64_t data = image(layout_.emptyLength()).end() - step_; // the last block of the container
    StorageImage last = image(data);
    last.header(data, 100, 512, null_);
    Bytes bytes = last.bytes();
    bytes.resize(data + layout_.blockHeaderSize() + 100);
    EXPECT_EQ(open(bytes).get(u"a").size(), 100U);
    EXPECT_EQ(std::get<3>(only_problem(open(bytes))), "");
    bytes.pop_back();
    EXPECT_EQ(std::get<0>(only_problem(open(bytes))), Fault::damagedContent);
}

TEST_P(Image, ATableBehindTheEndThatItNamesIsRefused) {
    for (const std::int64_t behind : {0, -1}) {
        StorageImage image(layout_);
        image.file(u"a", image.chain(Bytes(10), {512}));
        const Bytes bytes = image.finish(behind);
        EXPECT_EQ(isRefused([&] { (void)open(bytes); }), behind != 0);
    }
}

TEST_P(Image, TheUseOfTheFileIsToldToTheLastByte) {
    StorageRW storage = open();
    for (int i = 0; i < 20; ++i)
        storage.put(wstring(1, static_cast<wchar>(u'a' + i)), Bytes(700));
    storage.remove(u"c");
    const StorageInfo info = storage.info();
    const Bytes bytes = raw();
    EXPECT_EQ(info.firstWord, load_number(bytes.data(), layout_.width));
    EXPECT_EQ(info.secondWord, 512U);
    EXPECT_EQ(info.changeCounter, 21U);
    EXPECT_EQ(info.fileLength, bytes.size());
    EXPECT_EQ(info.end, bytes.size());
    EXPECT_EQ(info.files, 19U);
    EXPECT_EQ(info.contentBytes, 19U * 700);
    EXPECT_EQ(info.blocks, storage.check().blocks);
    std::uint64_t at = 0;
    std::uint64_t free = 0;
    std::set<StorageUse> uses;
    for (const StorageInfo::Piece& piece : info.pieces) {
        EXPECT_EQ(piece.address, at);
        at += piece.length;
        free += piece.use == StorageUse::free ? piece.length : 0;
        uses.insert(piece.use);
    }
    EXPECT_EQ(at, info.end);
    EXPECT_EQ(free, info.freeBytes);
    EXPECT_EQ(uses.size(), 6U) << "all there are";
    // Each use and each kind of damage has words of its own.
    std::set<std::string> texts;
    for (const StorageUse use : uses)
        texts.insert(to_utf8(StorageProblem{.kind = Fault::overlap, .use = use, .name = u"n"}.text()));
    for (const Fault kind :
         {Fault::damagedFreeChain, Fault::damagedAttributes, Fault::damagedContent, Fault::lost})
        texts.insert(to_utf8(StorageProblem{.kind = kind, .address = 77, .name = u"n"}.text()));
    EXPECT_EQ(texts.size(), 10U);
}

TEST_P(Image, AFileWithoutAttributesHasItsNameAndNoTimes) {
    StorageImage image(layout_);
    const Bytes content(10, std::byte{1});
    image.entry(u"a", {null_, image.chain(content, {10})});
    StorageRW storage = open(image.finish());
    expectWhole(storage, {{u"a", content}});
    EXPECT_EQ(storage.describe(u"a").created, Date());
    EXPECT_EQ(storage.describe(u"a").modified, Date());
    storage.put(u"a", {});
    EXPECT_NE(storage.describe(u"a").created, Date()) << "known from now on";
    expectWhole(storage, {{u"a", {}}});
}

TEST_P(Image, AFileThatIsCutBehindTheContainersBackIsDamaged) {
    const Bytes content(400000, std::byte{1});
    StorageImage large(layout_);
    const std::uint64_t data = large.chain(content, {400000});
    large.file(u"a", data);
    StorageRW storage = open(large.finish());
    const auto reader = storage.open(u"a", OpenMode::read);
    // Everything is read while it is there; then the large block loses its end.
    EXPECT_EQ(storage.get(u"a"), content);
    file()->truncate(data + 300000);
    EXPECT_TRUE(isRefused([&] { (void)storage.get(u"a"); }));
    EXPECT_TRUE(isRefused([&] { (void)read_whole(*reader); }));
}

/// A container that ends a few blocks before the last address. Its file has no bytes where nothing lies.
TEST(FullContainer, TakesWhatFitsAndRefusesTheRest) {
    const StorageLayout& layout = kStorageLayout32;
    const auto withContentAt = [&](std::uint64_t data) {
        StorageImage image(layout);
        image.file(u"a", data);
        return image.finish();
    };
    const std::uint64_t data = withContentAt(layout.null).size();
    Bytes bytes = withContentAt(data);
    const std::uint64_t end = layout.limit() - 12 * layout.blockLength(512);
    constexpr std::size_t kRest = 4 * (2 + 3) + 2; // the table's count and end, one row, a name of one unit
    store_number(bytes.data() + bytes.size() - kRest + 4, end, 4);
    const auto temp = create_temp_file_service();
    const auto file = open_disk_file(file_path(temp->createNamed()), OpenMode::readWrite);
    write_all(*file, bytes);
    const std::string block = "\r\n" + test::hex(1, 8) + " " +
                              test::hex(end - data - layout.blockHeaderSize(), 8) + " 7fffffff \r\n";
    write_all_at(*file, data, std::as_bytes(std::span(block)));
    file->truncate(end);
    StorageRW storage(file, layout);
    const auto put = [&](std::size_t blocks) {
        const wstring name(1, static_cast<wchar>(u'a' + storage.find().size()));
        return test::message_of([&] { storage.put(name, Bytes(blocks * 512)); });
    };
    const wstring refused = message_text("IDS_STERROR_TOOLARGE", {shown_url(storage.url())});
    EXPECT_EQ(put(20), refused);
    EXPECT_EQ(put(100), refused);
    const auto writer = storage.open(u"w", OpenMode::create);
    const std::byte one{1};
    EXPECT_EQ(test::message_of([&] { write_all_at(*writer, layout.limit(), std::span(&one, 1)); }), refused);
    writer->close();
    std::size_t files = storage.find().size();
    while (put(1).empty())
        ASSERT_LT(++files, 12U);
    EXPECT_GT(files, 3U);
    EXPECT_EQ(put(1), refused);
    EXPECT_EQ(storage.find().size(), files);
    EXPECT_EQ(StorageRW(file, layout).find().size(), files);
    EXPECT_LE(file->length(), layout.limit());
}

} // namespace
} // namespace core
