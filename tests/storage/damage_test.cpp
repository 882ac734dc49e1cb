// SPDX-License-Identifier: Apache-2.0
// What a damaged container holds: the caller gets an error that says so, in bounded time, and nothing more is
// damaged.
#include "tests/support/fault_container.h"
#include "tests/support/rounds.h"
#include "tests/support/storage_damage.h"

#include <core/storage/errors.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <string_view>

namespace core {
namespace {

using test::Bytes;
using test::FaultDisk;
using test::Model;

class Damaged : public test::FaultContainer {
  protected:
    /// Whatever the bytes are: opening, reading and changing says that the format is bad, or works. Returns
    /// whether anything was found to be wrong. What fails its checks is not written to.
    bool survives(const Bytes& bytes) {
        FaultDisk disk;
        disk.bytes = bytes;
        bool wrong = false;
        const auto attempt = [&](auto call) {
            try {
                call();
            } catch (const StorageException& e) {
                EXPECT_EQ(e.kind(), StorageException::Kind::badFormat) << e.what();
                EXPECT_TRUE(e.url().starts_with(u"fault://disk")) << e.what();
                wrong = true;
            }
        };
        attempt([&] {
            StorageRW storage(test::open_fault_file(disk), layout_);
            attempt([&] { wrong = !storage.check().isClean() || wrong; });
            attempt([&] { (void)test::contents(storage); });
            attempt([&] { (void)storage.info(); });
            std::vector<wstring> names;
            attempt([&] {
                for (const StorageFound& found : storage.find())
                    names.push_back(found.name);
            });
            for (const wstring& name : names)
                attempt([&] { (void)read_whole(*storage.open(name, OpenMode::read)); });
            EXPECT_EQ(disk.bytes, bytes);
        });
        if (!wrong)
            return false;
        attempt([&] {
            StorageRW storage(test::open_fault_file(disk), layout_);
            storage.put(u"kept", Bytes(10));
            storage.removeAll(u"*");
            storage.compact();
        });
        return true;
    }
    /// The bytes of the container with the text at `offset` replaced.
    Bytes with(std::uint64_t offset, std::string_view text) {
        Bytes bytes = disk_.bytes;
        for (std::size_t i = 0; i < text.size(); ++i)
            bytes.at(offset + i) = static_cast<std::byte>(text[i]);
        return bytes;
    }
    [[nodiscard]] Bytes raw(std::uint64_t number) const {
        Bytes bytes(layout_.width);
        for (std::byte& b : bytes) {
            b = static_cast<std::byte>(number);
            number >>= 8;
        }
        return bytes;
    }
    [[nodiscard]] std::string hex(std::uint64_t number) const { return test::hex(number, layout_.digits()); }
};
INSTANTIATE_TEST_SUITE_P(Formats, Damaged, test::kEveryFlatFormat, test::name_of_format);

/// The same for both layouts of the table.
class DamagedAny : public Damaged {};
INSTANTIATE_TEST_SUITE_P(Formats, DamagedAny, test::kEveryFormat, test::name_of_format);

TEST_P(Damaged, IsFoundInBlockHeaders) {
    // "kept" is found by its size; its blocks follow each other.
    const std::string mark = "\r\n" + hex(5000) + " ";
    const auto* const text = reinterpret_cast<const char*>(disk_.bytes.data());
    const auto first = std::string_view(text, disk_.bytes.size()).find(mark);
    ASSERT_NE(first, std::string_view::npos);
    const std::uint64_t block = first + layout_.blockLength(512);
    ASSERT_EQ(text[block], '\r');
    const std::size_t digits = layout_.digits();
    const std::uint64_t size = block + 3 + digits;
    const std::uint64_t next = size + digits + 1;
    EXPECT_FALSE(survives(disk_.bytes));
    EXPECT_FALSE(survives(with(block + 2, std::string(digits, 'F'))))
        << "the chain's size counts in its first block";
    EXPECT_FALSE(survives(with(size + digits - 3, "2"))) << "the same digit";
    Bytes upper = disk_.bytes;
    for (std::size_t i = 0; i < digits; ++i) {
        std::byte& digit = upper.at(next + i);
        if (digit >= std::byte{'a'})
            digit &= std::byte{0xDF};
    }
    EXPECT_FALSE(survives(upper)) << "digits may be upper case";
    EXPECT_TRUE(survives(with(next, " "))) << "a blank is no digit";
    EXPECT_TRUE(survives(with(next, "\x80")));
    EXPECT_TRUE(survives(with(next, "g")));
    EXPECT_TRUE(survives(with(block, "\n\r")));
    EXPECT_TRUE(survives(with(next + digits + 1, "\r\r")));
    EXPECT_TRUE(survives(with(next, hex(block)))) << "a circle of one";
    EXPECT_TRUE(survives(with(next, hex(first)))) << "a circle of two";
    EXPECT_TRUE(survives(with(next, hex(layout_.null)))) << "shorter than the size";
    EXPECT_TRUE(survives(with(next, hex(disk_.bytes.size() + 5)))) << "outside";
    EXPECT_TRUE(survives(with(next, hex(layout_.null - 1))));
    EXPECT_TRUE(survives(with(next, hex(0)))) << "the header is no block";
    EXPECT_TRUE(survives(with(size, hex(disk_.bytes.size())))) << "a data area beyond the end";
    EXPECT_TRUE(survives(with(size, hex(layout_.null))));
    EXPECT_TRUE(survives(with(size, hex(0)))) << "no data: shorter than the size";
    EXPECT_TRUE(survives(with(first + 2, hex(layout_.null)))) << "a huge chain";
}

/// A container of many files whose chains have blocks in common: each begins with a block of its own and goes
/// on with the same long tail.
TEST_P(Damaged, ManyChainsOverTheSameBlocksTakeTheTimeOfOne) {
    constexpr std::uint64_t kFiles = 3000;
    constexpr std::uint64_t kTail = 6000;
    const std::uint64_t step = layout_.blockLength(0);
    StorageFilesType table(layout_);
    const std::uint64_t tableEnd = layout_.emptyLength() + layout_.blockLength(kFiles * 40);
    const std::uint64_t tail = tableEnd + kFiles * step;
    table.setEnd(tail + 2 * kTail * step);
    for (std::uint64_t i = 0; i < kFiles; ++i)
        table.set(from_utf8(std::to_string(i)), {layout_.null, tableEnd + i * step});
    const Bytes content = table.encode();
    Bytes bytes(table.end());
    const auto put = [&](std::uint64_t at, std::string_view text) {
        for (const char c : text)
            bytes.at(at++) = static_cast<std::byte>(c);
    };
    const auto header = [&](std::uint64_t at, std::uint64_t chain, std::uint64_t size, std::uint64_t next) {
        put(at, "\r\n" + hex(chain) + " " + hex(size) + " " + hex(next) + " \r\n");
    };
    std::copy_n(disk_.bytes.begin(), layout_.emptyLength(), bytes.begin());
    const Bytes null = raw(layout_.null); // nothing is free
    std::copy(null.begin(), null.end(), bytes.begin());
    header(layout_.headerSize(), content.size(), 512, layout_.emptyLength());
    header(layout_.emptyLength(), 0, kFiles * 40, layout_.null);
    std::copy(content.begin() + 512, content.end(),
              bytes.begin() + static_cast<std::ptrdiff_t>(layout_.emptyLength() + layout_.blockHeaderSize()));
    for (std::uint64_t i = 0; i < kFiles; ++i)
        header(tableEnd + i * step, 0, 0, tail);
    for (std::uint64_t i = 0; i < kTail; ++i) // with gaps, so that no two blocks are one run
        header(tail + 2 * i * step, 0, 0, i + 1 < kTail ? tail + 2 * (i + 1) * step : layout_.null);

    FaultDisk disk;
    disk.bytes = bytes;
    StorageRW storage(test::open_fault_file(disk), layout_);
    disk.calls = 0;
    const StorageCheck check = storage.check();
    EXPECT_FALSE(check.isClean());
    EXPECT_EQ(check.files, kFiles);
    EXPECT_LT(check.blocks, 100 * kTail);
    const std::uint64_t checked = disk.calls;
    EXPECT_EQ(storage.removeAll(u"*"), kFiles);
    EXPECT_LT(disk.calls, 3 * checked);
    StorageRW again(test::open_fault_file(disk), layout_);
    again.put(u"a", Bytes(10));
    EXPECT_TRUE(again.check().isClean());
    EXPECT_LT(disk.bytes.size(), bytes.size());
}

TEST_P(Damaged, IsSaidOnceAndReadInBoundedTime) {
    FaultDisk disk;
    create_container(*test::open_fault_file(disk), format_);
    const Bytes large(2 << 20, std::byte{1});
    {
        StorageRW storage(test::open_fault_file(disk), layout_);
        storage.put(u"large", large);
        storage.put(u"small", Bytes(3000));
    }
    const auto entries = [&] {
        ChainInFile chain(layout_);
        StorageFilesType table(layout_);
        const auto file = test::open_fault_file(disk);
        chain.read(*file, layout_.headerSize(), u"");
        EXPECT_TRUE(table.decode(chain.content(*file, u""), false));
        return std::pair(table.find(u"large").value(), table.find(u"small").value());
    }();
    const test::Vandal vandal(disk.bytes, layout_);
    const std::uint64_t step = layout_.blockLength(512);
    const auto check = [&](const Bytes& bytes) {
        FaultDisk other;
        other.bytes = bytes;
        StorageRW storage(test::open_fault_file(other), layout_);
        other.calls = 0;
        EXPECT_EQ(storage.find().size(), 2U);
        EXPECT_LT(other.calls, 20U) << "a record of a gigabyte would take more";
        return storage.check();
    };
    // A block that follows itself.
    Bytes bytes = disk.bytes;
    vandal.link(bytes, entries.second.data + step, entries.second.data + step);
    StorageCheck found = check(bytes);
    ASSERT_EQ(found.problems.size(), 2U);
    EXPECT_EQ(found.problems[0].kind, StorageProblem::Kind::damagedContent);
    EXPECT_EQ(found.problems[0].address, entries.second.data + step);
    EXPECT_EQ(found.problems[1].kind, StorageProblem::Kind::lost);
    EXPECT_EQ(found.problems[1].length, 4 * step);
    // A file that goes on as another, block by block in another order.
    bytes = disk.bytes;
    for (std::uint64_t i = 1; i < 3900; i += 2) // so that neighbours are not one piece
        vandal.link(bytes, entries.first.data + i * step, entries.first.data + (i + 2) * step);
    vandal.link(bytes, entries.second.data, entries.first.data + step);
    found = check(bytes);
    EXPECT_LE(found.problems.size(), 4U) << "each fault once, however many blocks it touches";
    // Attributes that are the content of a large file.
    bytes = disk.bytes;
    const Bytes from = raw(entries.second.attributes);
    const auto row = std::search(bytes.begin() + static_cast<std::ptrdiff_t>(layout_.emptyLength()),
                                 bytes.end(), from.begin(), from.end());
    ASSERT_NE(row, bytes.end());
    const Bytes to = raw(entries.first.data);
    std::copy(to.begin(), to.end(), row);
    found = check(bytes);
    EXPECT_EQ(std::count_if(found.problems.begin(), found.problems.end(),
                            [](const auto& problem) {
                                return problem.kind == StorageProblem::Kind::damagedAttributes;
                            }),
              1);
}

TEST_P(Damaged, AHugeSizeIsNotBelieved) {
    const auto file = create_temp_file(std::filesystem::temp_directory_path().string());
    const std::string mark = "\r\n" + hex(5000) + " ";
    Bytes bytes = disk_.bytes;
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const std::size_t kept = text.find(mark);
    const std::uint64_t huge = layout_.width == 8 ? std::uint64_t{1} << 42 : 0x7FFF0000;
    write_all_at(*file, 0, bytes);
    file->truncate(huge + (std::uint64_t{1} << 12)); // full of holes
    const std::string number = hex(huge - (1 << 20));
    write_all_at(*file, kept + 2, std::as_bytes(std::span(number)));
    // The end of the container stands behind the number of files, in the second block of the table.
    const std::uint64_t second = std::stoull(
        std::string(text.substr(layout_.headerSize() + 4 + 2 * layout_.digits(), layout_.digits())), nullptr,
        16);
    write_all_at(*file, second + layout_.blockHeaderSize() + layout_.width, raw(huge));
    const StorageRW storage(file, layout_);
    const auto refused = [&](auto call) {
        try {
            call();
        } catch (const StorageException& e) {
            return e.kind() == StorageException::Kind::badFormat;
        } catch (const FileException& e) { // it is not even looked at where memory could not address it
            return e.systemError() == EFBIG && huge > Bytes().max_size();
        }
        return false;
    };
    EXPECT_TRUE(refused([&] { (void)storage.get(u"kept"); }));
}

TEST_P(Damaged, IsFoundWhereverBytesAreFlippedOrCutOff) {
    test::Random random(17);
    int found = 0;
    for (int round = 0; round < 3000; ++round) {
        Bytes bytes = disk_.bytes;
        // Mostly where it matters: headers, table, free chain.
        const std::size_t limit = random.below(2) == 0 ? 200 : bytes.size();
        for (std::size_t i = random.below(4) + 1; i > 0; --i)
            bytes[random.below(limit)] = static_cast<std::byte>(random.engine());
        if (random.below(10) == 0)
            bytes.resize(random.below(bytes.size()));
        found += survives(bytes) ? 1 : 0;
    }
    EXPECT_GT(found, 500);
}

/// Changes made to a damaged container one after the other, each by a program of its own: none that answers
/// success takes a file away that could be read.
TEST_P(DamagedAny, NoChangeThatSucceedsCostsASoundFile) {
    std::size_t succeeded = 0;
    /// Makes one change; `sound` is what can be read afterwards when it succeeds.
    const auto change = [&](FaultDisk& disk, test::Random& random, Model& sound) {
        const wstring name =
            random.below(2) == 0 ? random.name() : wstring(1, static_cast<wchar>(u'a' + random.below(26)));
        const Bytes content = random.bytes(random.size());
        Model after = sound;
        after.erase(name);
        StorageRW storage(test::open_fault_file(disk), layout_);
        switch (random.below(4)) {
        case 0:
            storage.remove(name);
            break;
        case 1: {
            const auto file = storage.open(name, OpenMode::replace);
            write_all_at(*file, 0, content);
            file->close();
            after[name] = content;
            break;
        }
        case 2:
            storage.rename(name, u"new name");
            after.erase(u"new name");
            break;
        default:
            storage.put(name, content);
            after[name] = content;
        }
        sound = std::move(after);
        ++succeeded;
    };
    const auto visit = [&](test::DamagedContainer& damaged) {
        for (int step = 0; step < 6; ++step) {
            try {
                change(damaged.disk, damaged.random, damaged.sound);
            } catch (const StorageException&) {
            }
            Model found = test::readable(damaged.disk.bytes, layout_, damaged.sound);
            for (const auto& [file, bytes] : damaged.sound)
                ASSERT_EQ(found[file], bytes) << damaged.where << ", step " << step << ": " << to_utf8(file);
        }
    };
    const unsigned seeds = support::rounds(100U, 300U);
    test::for_each_damage(disk_.bytes, layout_, model_, seeds, visit);
    EXPECT_GT(succeeded, 10 * seeds);
}

TEST_P(Damaged, OtherLayoutsAndOtherFilesAreRefused) {
    const StorageLayout& other = layout_.width == 4 ? kStorageLayout64 : kStorageLayout32;
    const auto refused = [](const Bytes& bytes, const StorageLayout& layout) {
        FaultDisk disk;
        disk.bytes = bytes;
        try {
            const StorageRW storage(test::open_fault_file(disk), layout, {}, u"lumstg:///there");
        } catch (const StorageException& e) {
            return e.kind() == StorageException::Kind::badFormat && e.url() == u"lumstg:///there";
        }
        return false;
    };
    EXPECT_TRUE(refused(disk_.bytes, other));
    EXPECT_TRUE(refused({}, layout_));
    EXPECT_TRUE(refused(Bytes(15), layout_));
    EXPECT_TRUE(refused(Bytes(100000), layout_));
}

} // namespace
} // namespace core
