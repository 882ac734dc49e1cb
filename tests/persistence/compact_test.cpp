// SPDX-License-Identifier: Apache-2.0
// The compact form and the streams: what one form holds the other one holds; pieces of any size read the
// same; data that is cut, changed, longer or of another version is refused and never believed.
#include "tests/support/new_folder.h"
#include "tests/support/rounds.h"
#include "tests/support/value_samples.h"

#include <core/files/disk_file.h>
#include <core/files/file_io.h>
#include <core/files/memory_file.h>
#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/persistence.h>

#include <filesystem>
#include <fstream>

namespace {

using namespace script;
using Bytes = std::vector<std::byte>;
using test::ValueSamples;

class Compact : public script::Test {
  protected:
    /// Reads with pieces of up to `piece` bytes.
    static GenericValue read_in_pieces(const Bytes& bytes, std::size_t piece) {
        StreamInStorage storage([left = std::span(bytes), piece](std::span<std::byte> room) mutable {
            const std::size_t count = std::min({room.size(), left.size(), piece});
            std::copy_n(left.begin(), count, room.begin());
            left = left.subspan(count);
            return count;
        });
        GenericValue value = GenericValue::deserialize(&storage);
        storage.finish();
        return value;
    }
    static Bytes written(const GenericValue& value, StoredForm form) {
        const InterfacePtr<IFile> file = open_memory_file(create_memory_data());
        write_value(*file, value, form);
        return read_whole(*file);
    }
    static Bytes bytes_of(std::initializer_list<int> tail) {
        Bytes bytes = {std::byte{0xC1}, std::byte{'c'}, std::byte{'f'}, std::byte{1}};
        for (const int byte : tail)
            bytes.push_back(static_cast<std::byte>(byte));
        return bytes;
    }
};

TEST_F(Compact, HoldsWhatTheBraceListHolds) {
    for (unsigned seed = 0; seed < 400; ++seed) {
        const GenericValue value = ValueSamples(seed).any();
        const wstring list = text(value);
        const Bytes bytes = value.toBytes();
        const GenericValue read = GenericValue::fromBytes(bytes);
        ASSERT_EQ(text(read), list) << seed;
        ASSERT_EQ(read.toBytes(), bytes) << seed << ": and what text drops";
        ASSERT_EQ(text(GenericValue::fromBytes(GenericValue::fromString(list).toBytes())),
                  text(GenericValue::fromString(list)))
            << seed;
        const std::size_t piece = 1 + seed % 40;
        ASSERT_EQ(read_in_pieces(bytes, piece).toBytes(), bytes) << seed;
        ASSERT_EQ(written(value, StoredForm::compact), bytes) << seed;
        const Bytes utf8 = written(value, StoredForm::text);
        ASSERT_EQ(std::string(reinterpret_cast<const char*>(utf8.data()), utf8.size()), to_utf8(list))
            << seed;
        ASSERT_EQ(text(read_in_pieces(utf8, piece)), list) << seed;
    }
}

TEST_F(Compact, KeepsPartsOfASecond) {
    const Date date(2024, 2, 29, 12, 30, 1);
    const GenericValue exact(Date(date.ticks() + 1));
    EXPECT_TRUE(GenericValue::fromBytes(exact.toBytes()).equals(exact));
    EXPECT_TRUE(GenericValue::fromString(text(exact)).equals(date)) << "unlike the brace list";
}

TEST_F(Compact, ThatIsCutOrGoesOnIsRefused) {
    for (const unsigned seed : {3U, 17U, 42U, 77U}) {
        const GenericValue array = make(u"Array");
        for (int i = 0; i < 4; ++i)
            call(array, u"Add", {ValueSamples(seed + static_cast<unsigned>(i)).any(2)});
        Bytes bytes = array.toBytes();
        const std::size_t step = 1 + bytes.size() / support::rounds<std::size_t>(2000);
        for (std::size_t size = 0; size < bytes.size(); size += step) {
            const Bytes cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
            EXPECT_THROW(static_cast<void>(GenericValue::fromBytes(cut)), ListStreamException) << size;
            EXPECT_THROW(static_cast<void>(read_in_pieces(cut, 7)), ListStreamException) << size;
        }
        bytes.push_back(std::byte{0});
        EXPECT_THROW(static_cast<void>(GenericValue::fromBytes(bytes)), ListStreamException);
        EXPECT_THROW(static_cast<void>(read_in_pieces(bytes, 7)), ListStreamException);
    }
    EXPECT_EQ(failure<ListStreamException>([] {
                  return GenericValue::fromBytes(bytes_of({0xC6, 0x80}));
              }),
              message_text("IDS_COMPACT_MALFORMED", {u"6"}))
        << "with the place";
}

TEST_F(Compact, ThatIsChangedIsReadOrRefused) {
    std::mt19937 random(5);
    for (unsigned seed = 0; seed < 60; ++seed) {
        const Bytes bytes = ValueSamples(seed).table(1).toBytes();
        for (int round = 0; round < 200; ++round) {
            Bytes changed = bytes;
            changed[4 + random() % (changed.size() - 4)] = static_cast<std::byte>(random());
            try {
                const GenericValue value = GenericValue::fromBytes(changed);
                ASSERT_EQ(text(GenericValue::fromBytes(value.toBytes())), text(value)) << seed;
            } catch (const Exception&) { // malformed, or another class
            }
        }
    }
}

TEST_F(Compact, CountsAreNotBelieved) {
    const auto huge = {0xC6, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F};
    for (const int token : {0xC9, 0xCA, 0xCB, 0xCC, 0xD5}) {
        Bytes bytes = bytes_of({token});
        for (const int byte : {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x3F, 1, 2})
            bytes.push_back(static_cast<std::byte>(byte));
        EXPECT_THROW(static_cast<void>(GenericValue::fromBytes(bytes)), ListStreamException) << token;
        EXPECT_THROW(static_cast<void>(read_in_pieces(bytes, 3)), ListStreamException) << token;
    }
    // An array, a table, a list of values: each with more elements than there are.
    for (const wchar* type : {u"Array", u"Map", u"ValueTable", u"ValueList"}) {
        Bytes bytes = make(type).toBytes();
        const auto zero = std::find(bytes.rbegin(), bytes.rend(), std::byte{0});
        ASSERT_NE(zero, bytes.rend());
        const auto at = bytes.erase(zero.base() - 1);
        std::vector<std::byte> count;
        for (const int byte : huge)
            count.push_back(static_cast<std::byte>(byte));
        bytes.insert(at, count.begin(), count.end());
        EXPECT_THROW(static_cast<void>(GenericValue::fromBytes(bytes)), ListStreamException);
    }
}

TEST_F(Compact, OtherVersionsAreRefusedByName) {
    Bytes bytes = GenericValue(5).toBytes();
    EXPECT_EQ(bytes, bytes_of({5}));
    bytes[3] = std::byte{2};
    EXPECT_EQ(failure<VersionException>([&] { return GenericValue::fromBytes(bytes); }),
              message_text("IDS_COMPACT_VERSION", {u"2", u"1"}));
    bytes[2] = std::byte{'x'};
    EXPECT_THROW(static_cast<void>(GenericValue::fromBytes(bytes)), ListStreamException);
}

TEST_F(Compact, IsAsDeepAsTheBraceList) {
    GenericValue value = make(u"Array");
    for (int depth = 1; depth < Nesting::kMaxDepth; ++depth) {
        const GenericValue outer = make(u"Array");
        call(outer, u"Add", {value});
        value = outer;
    }
    EXPECT_EQ(text(GenericValue::fromBytes(value.toBytes())), text(value));
    const GenericValue outer = make(u"Array");
    call(outer, u"Add", {value});
    const wstring tooDeep = message_text("IDS_NESTING_TOO_DEEP", {u"1000"});
    EXPECT_EQ(failure<ListStreamException>([&] { return outer.toBytes(); }), tooDeep);
    Bytes hostile = bytes_of({});
    const Bytes one = [] {
        const GenericValue array = make(u"Array");
        call(array, u"Add", {make(u"Array")});
        return array.toBytes();
    }();
    // The head of an array of one element whose class id is known: it may stand in itself for ever.
    hostile.insert(hostile.end(), one.begin() + 4, one.begin() + 4 + 1 + 17 + 2);
    for (int i = 0; i < 100'000; ++i)
        hostile.insert(hostile.end(),
                       {std::byte{0xD3}, std::byte{0xD1}, std::byte{0}, std::byte{0xC1}, std::byte{1}});
    EXPECT_EQ(failure<ListStreamException>([&] { return GenericValue::fromBytes(hostile); }), tooDeep);
}

/// One datum of each type that lists are written of.
struct Fields {
    bool truth = true;
    std::int8_t small = -5;
    std::uint64_t large = std::numeric_limits<std::uint64_t>::max();
    std::int64_t least = std::numeric_limits<std::int64_t>::min();
    float half = 0.5F;
    double big = 1e300;
    GUID id = "b0be78f2-0ee6-4d31-a3bb-77dd32ba5bec"_guid;
    Numeric number = Numeric::fromString("-0.05");
    Date date{2024, 2, 29};
    wstring text = u"text";
    Bytes data = Bytes(5, std::byte{7});

    static auto plain(auto& self) {
        return std::tie(self.truth, self.small, self.large, self.least, self.half, self.big, self.id,
                        self.number, self.date, self.text);
    }
    void put(ListOutStream& out) const {
        out.putBeginOfList();
        std::apply([&](const auto&... field) { (out.put(field), ...); }, plain(*this));
        out.put(u"terminated\0behind", 17);
        out.putBytes(data);
    }
    void get(ListInStream& in) {
        wchar buffer[11];
        in.getBeginOfList();
        std::apply([&](auto&... field) { (in.get(field), ...); }, plain(*this));
        in.get(buffer, 11);
        in.get(data);
        EXPECT_EQ(wstring_view(buffer), u"terminated");
    }
    bool operator==(const Fields& other) const { return plain(*this) == plain(other) && data == other.data; }
};

TEST_F(Compact, CarriesEveryToken) {
    Bytes bytes;
    StreamOutStorage out(StoredForm::compact, [&](std::span<const std::byte> part) {
        bytes.insert(bytes.end(), part.begin(), part.end());
    });
    ListOutStream& list = out.listStream();
    Fields().put(list);
    Fields().put(list); // what an old reader skips
    list.putBeginOfList();
    list.putEndOfList();
    list.put(GUID{.data1 = 7});
    list.putEndOfList();
    list.putEndOfList();
    list.put(GUID{.data1 = 7});
    EXPECT_THROW(list.putBare(u"+5"), ListStreamException);
    out.finish();

    StreamInStorage storage(bytes);
    ListInStream& in = storage.listStream();
    Fields read{false, 0, 0, 0, 0, 0, {}, {}, {}, {}, {}};
    read.get(in);
    EXPECT_EQ(read, Fields());
    EXPECT_TRUE(in.getComma());
    in.skipListContent();
    EXPECT_FALSE(in.getComma());
    in.getEndOfList();
    in.get(read.id);
    EXPECT_EQ(read.id.data1, 7U) << "an id that was skipped is known";
    storage.finish();
}

TEST_F(Compact, RefusesTokensOfAnotherType) {
    bool truth = false;
    for (const auto& wrong : {bytes_of({0x81, 'a'}), bytes_of({0xC7, 0}), bytes_of({2})}) {
        StreamInStorage storage(wrong);
        EXPECT_THROW(storage.listStream().get(truth), ListStreamException);
    }
    const Bytes negative = bytes_of({0xC7, 0});
    StreamInStorage number(negative);
    std::uint64_t large = 0;
    EXPECT_THROW(number.listStream().get(large), ListStreamException) << "a sign where none may be";
    const Bytes text = bytes_of({0x84, 'l', 'o', 'n', 'g'});
    StreamInStorage storage(text);
    wchar buffer[4];
    EXPECT_THROW(storage.listStream().get(buffer, 4), ListStreamException);
}

TEST_F(Compact, CarriesFailures) {
    for (const StoredForm form : {StoredForm::compact, StoredForm::text}) {
        Bytes bytes;
        StreamOutStorage out(form, [&](std::span<const std::byte> part) {
            bytes.insert(bytes.end(), part.begin(), part.end());
        });
        const ListStreamException cause(u"inner");
        Exception outer(u"outer", wrap_exception(cause).get());
        wrap_exception(outer).query<IPersistableObject>()->serialize(&out);
        out.finish();
        StreamInStorage in(bytes);
        const StoredFailure read = in.getFailure({});
        in.finish();
        EXPECT_EQ(in.form(), form);
        EXPECT_EQ(read.description, u"outer");
        ASSERT_TRUE(read.cause);
        EXPECT_EQ(read.cause->exception().description(), u"inner");
    }
}

/// A value with its compact form, as the first version wrote it.
TEST_F(Compact, GoldenFilesAreReadForEver) {
    std::size_t files = 0;
    for (const auto& entry :
         std::filesystem::directory_iterator(CORE_SOURCE_DIR "/tests/persistence/golden")) {
        if (entry.path().extension() != ".compact")
            continue;
        std::ifstream list(std::filesystem::path(entry.path()).replace_extension(".txt"), std::ios::binary);
        const std::string expected{std::istreambuf_iterator<char>(list), {}};
        const auto file = open_disk_file(entry.path().string(), OpenMode::read);
        const GenericValue value = read_value(*file);
        EXPECT_EQ(to_utf8(text(value)), expected) << entry.path();
        EXPECT_EQ(value.toBytes(), read_whole(*file)) << entry.path();
        ++files;
    }
    EXPECT_GE(files, 2U);
}

/// An example is a block of lines: bytes in hexadecimal digits, two blanks, what they mean.
TEST_F(Compact, LooksAsItsPageShows) {
    std::ifstream page(CORE_SOURCE_DIR "/docs/compact-format.md");
    Bytes bytes;
    std::string list;
    std::string* into = nullptr;
    std::string dump;
    for (std::string line; std::getline(page, line);) {
        if (line == "```")
            into = nullptr;
        if (into != nullptr)
            *into += line + '\n';
        if (line == "```hex")
            into = &dump;
        if (line == "```list")
            into = &list;
    }
    std::istringstream lines(dump);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream digits(line.substr(0, line.find("  ")));
        for (std::string byte; digits >> byte;)
            bytes.push_back(static_cast<std::byte>(std::stoi(byte, nullptr, 16)));
    }
    const GenericValue value = GenericValue::fromString(from_utf8(list));
    EXPECT_EQ(value.toBytes(), bytes);
    EXPECT_EQ(to_utf8(text(GenericValue::fromBytes(bytes))) + '\n', list);
}

TEST_F(Compact, ReadsTheSameForSomebodyElse) {
    if (std::system("python3 -c pass 2>/dev/null") != 0)
        GTEST_SKIP() << "no python3";
    const std::filesystem::path folder = support::new_folder("compact");
    const std::string in = (folder / "values").string();
    const std::string out = in + ".txt";
    std::ofstream bytes(in, std::ios::binary);
    std::vector<wstring> expected;
    for (unsigned seed = 1000; seed < 1200; ++seed) {
        const GenericValue value = ValueSamples(seed).any();
        const Bytes form = value.toBytes();
        bytes << form.size() << '\n';
        bytes.write(reinterpret_cast<const char*>(form.data()), std::ssize(form));
        expected.push_back(text(value));
    }
    bytes.close();
    ASSERT_EQ(
        std::system(
            ("python3 -B " CORE_SOURCE_DIR "/tests/persistence/compact.py <" + in + " >" + out).c_str()),
        0);
    std::ifstream lists(out, std::ios::binary);
    for (std::size_t i = 0; i < expected.size(); ++i) {
        std::size_t size = 0;
        lists >> size;
        lists.get();
        std::string pairs(2 * size, '\0');
        lists.read(pairs.data(), std::ssize(pairs));
        wstring list;
        for (std::size_t at = 0; at < pairs.size(); at += 2) // the lower byte first, whatever the host does
            list += static_cast<wchar>(static_cast<unsigned char>(pairs[at]) |
                                       static_cast<unsigned char>(pairs[at + 1]) << 8);
        ASSERT_EQ(list, expected[i]) << 1000 + i;
    }
    std::filesystem::remove_all(folder);
}

} // namespace
