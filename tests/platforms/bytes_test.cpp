// SPDX-License-Identifier: Apache-2.0
// What is stored has the same bytes on every machine, whatever its byte order and the width of its words.
// Everything is written, read, changed and written again, and compared with what one machine noted in
// bytes.txt.
#include "tests/support/storage_fixture.h"
#include "tests/support/value_samples.h"

#include <core/documents.h>
#include <core/streams.h>

#include <fstream>
#include <iterator>
#include <map>

namespace {

using namespace script;
using test::Bytes;

/// FNV-1a of 64 bits over everything that it is given.
class Digest {
  public:
    void add(std::span<const std::byte> bytes) {
        for (const std::byte byte : bytes)
            digest_ = (digest_ ^ std::to_integer<std::uint64_t>(byte)) * 0x100000001B3;
    }
    void add(std::string_view text) { add(std::as_bytes(std::span(text))); }
    [[nodiscard]] std::string text() const { return test::hex(digest_, 16); }

  private:
    std::uint64_t digest_ = 0xCBF29CE484222325;
};

/// What one machine noted, by name.
std::map<std::string, std::string> noted() {
    std::map<std::string, std::string> digests;
    std::ifstream file(CORE_SOURCE_DIR "/tests/platforms/bytes.txt");
    for (std::string name, digest; file >> name >> digest;)
        digests[name] = digest;
    return digests;
}

void expect_noted(const std::string& name, const Digest& digest) {
    EXPECT_EQ(noted()[name], digest.text()) << name;
}

class SameBytes : public script::Test {};

TEST_F(SameBytes, ContainersInEveryFormat) {
    const test::ReplacedClock clock;
    for (const test::Format& format : test::kFormats) {
        const auto data = create_memory_data();
        test::create_container(*open_memory_file(data), format);
        Digest digest;
        test::Random random(7);
        test::Model model;
        for (int step = 0; step < 120; ++step) {
            StorageRW storage(open_memory_file(data), *format.layout);
            wstring name = random.name(); // one draw a statement: a compiler chooses the order within one
            name += u"/" + string_intto(random.below(20));
            if (random.below(4) == 0 && model.erase(name) != 0) {
                storage.remove(name);
            } else {
                const std::size_t size = random.size();
                storage.put(name, model[name] = random.bytes(size));
            }
            if (step % 40 == 39)
                storage.compact();
            digest.add(read_whole(*open_memory_file(data)));
        }
        StorageRW storage(open_memory_file(data), *format.layout);
        EXPECT_TRUE(test::contents(storage) == model);
        EXPECT_TRUE(storage.check().isClean());
        expect_noted("container-" + test::name_of_format({format, 0}), digest);
    }
}

TEST_F(SameBytes, ValuesInEveryForm) {
    Digest lists;
    Digest compact;
    for (unsigned seed = 0; seed < 300; ++seed) {
        const GenericValue value = test::ValueSamples(seed).any();
        const std::string list = to_utf8(text(value));
        const Bytes bytes = value.toBytes();
        EXPECT_EQ(to_utf8(text(GenericValue::fromBytes(bytes))), list) << seed;
        lists.add(list);
        compact.add(bytes);
    }
    expect_noted("lists", lists);
    expect_noted("compact", compact);
}

// A column keeps each text once, or the texts of all rows; it decides while it grows, and what it writes
// shows it.
TEST_F(SameBytes, TablesAsTheyGrow) {
    const auto table = create_value_table();
    for (const wchar* const name : {u"Number", u"Text", u"Date", u"Any"})
        table->addColumn(name);
    Digest digest;
    for (std::int64_t i = 0; i < 80'000; ++i) {
        const Value cells[] = {Numeric(i) / 8, string_intto(i < 20'000 ? i / 2 : i),
                               Date(1, 1, 1) + DateSpan(i * i), i % 3 == 0 ? Value(i) : Value(i % 3 == 1)};
        table->appendRow(cells);
        if (i % 20'000 == 19'999)
            digest.add(GenericValue(table.query<IValue>()).toBytes());
    }
    expect_noted("tables", digest);
}

TEST_F(SameBytes, TextsInEveryEncoding) {
    for (const char* name : {"UTF-8", "UTF-16LE", "UTF-16BE", "UTF-32LE", "windows-1251"}) {
        const Encoding encoding(from_utf8(name));
        Digest digest;
        for (const wstring_view text :
             {u"ASCII alone, of some length, so that many units go at once\r\n",
              u"Имя вишни, за которым ещё много слов без латинских букв\n", u"abc"}) {
            const std::string bytes = encode_text(text, encoding);
            EXPECT_EQ(decode_text(std::as_bytes(std::span(bytes)), encoding), text) << name;
            digest.add(bytes);
        }
        expect_noted(name, digest);
    }
}

// As bytes.txt has the digests of what one machine made of them.
TEST_F(SameBytes, ContainersThatOneMachineWroteChangedOnAnother) {
    const test::ReplacedClock clock;
    for (const char* const name : {"hello32", "hello32-tree", "names64", "names64-tree", "deep32-tree"}) {
        const auto data = create_memory_data();
        const std::string file = std::string(CORE_SOURCE_DIR "/tests/storage/golden/") + name + ".st";
        copy_bytes(*open_disk_file(file, OpenMode::read), *open_memory_file(data));
        const bool wide = std::string_view(name).starts_with("names64");
        StorageRW storage(open_memory_file(data), wide ? kStorageLayout64 : kStorageLayout32);
        test::Model model = test::contents(storage);
        const wstring first = model.begin()->first;
        storage.put(first, model[first] = Bytes(3000, std::byte{'c'}));
        storage.put(u"Новый", model[u"Новый"] = Bytes(10, std::byte{'n'}));
        storage.remove(model.rbegin()->first);
        model.erase(std::prev(model.end()));
        Digest digest;
        digest.add(read_whole(*open_memory_file(data)));
        storage.compact();
        digest.add(read_whole(*open_memory_file(data)));
        EXPECT_TRUE(test::contents(storage) == model) << name;
        EXPECT_TRUE(storage.check().isClean()) << name;
        expect_noted(std::string(name) + "-changed", digest);
    }
}

TEST_F(SameBytes, TextsThatAreReadChangedAndWrittenBack) {
    for (const char* name : {"UTF-8", "UTF-16LE", "UTF-16BE", "UTF-32LE", "windows-1251"}) {
        const Encoding encoding(from_utf8(name));
        const auto data = create_memory_data();
        TextWriter first(open_memory_file(data), {.encoding = encoding});
        first.write(u"Имя вишни, ASCII\r\nsecond line\n");
        first.finish();
        TextManager document;
        TextReader reader(open_memory_file(data), {.encoding = encoding});
        read_document(document, reader);
        document.insert(4, u"новой ");
        document.remove({document.text().size() - 6, document.text().size() - 2});
        const auto changed = create_memory_data();
        TextWriter second(open_memory_file(changed), {.encoding = encoding});
        write_document(document.text(), second);
        second.finish();
        Digest digest;
        digest.add(read_whole(*open_memory_file(data)));
        digest.add(read_whole(*open_memory_file(changed)));
        expect_noted(std::string(name) + "-changed", digest);
    }
}

} // namespace
