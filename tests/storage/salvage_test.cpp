// SPDX-License-Identifier: Apache-2.0
// What is taken out of a damaged container: every file that is sound, and the beginning of those that are
// not.
#include "tests/support/bad_sector.h"
#include "tests/support/fault_container.h"
#include "tests/support/rounds.h"
#include "tests/support/storage_damage.h"

#include <core/runtime/threads/errors.h>
#include <core/storage/errors.h>
#include <core/storage/salvage.h>

namespace core {
namespace {

using test::Bytes;
using test::FaultDisk;
using test::Model;

class Salvage : public test::FaultContainer {
  protected:
    struct Result {
        SalvageReport report;
        Model files;
    };
    Result salvaged(IFile& source, const SalvageOptions& options = {}) const {
        FaultDisk disk;
        StorageRW::create(*test::open_fault_file(disk), layout_);
        StorageRW target(test::open_fault_file(disk), layout_);
        Result result{salvage(source, layout_, target, options), test::contents(target)};
        EXPECT_TRUE(target.check().isClean());
        return result;
    }
    Result salvaged(const Bytes& bytes) const {
        FaultDisk disk;
        disk.bytes = bytes;
        Result result = salvaged(*test::open_fault_file(disk));
        EXPECT_EQ(disk.bytes, bytes);
        return result;
    }
    /// Whether a file begins as the one that was damaged did.
    [[nodiscard]] bool isBeginning(const wstring& name, const Bytes& content) const {
        const auto whole = model_.find(name);
        return whole != model_.end() && content.size() <= whole->second.size() &&
               std::equal(content.begin(), content.end(), whole->second.begin());
    }
};
INSTANTIATE_TEST_SUITE_P(Formats, Salvage, test::kEveryFormat, test::name_of_format);

TEST_P(Salvage, FindsEverySoundFile) {
    std::size_t saved = 0;
    const auto visit = [&](test::DamagedContainer& damaged) {
        try {
            Result result = salvaged(damaged.disk.bytes);
            for (const auto& [name, content] : damaged.sound)
                ASSERT_EQ(result.files[name], content) << damaged.where << ": " << to_utf8(name);
            for (const SalvagedFile& file : result.report.files)
                EXPECT_FALSE(damaged.sound.contains(file.name))
                    << damaged.where << ": " << to_utf8(file.text());
            saved += result.files.size();
        } catch (const StorageException& e) {
            EXPECT_TRUE(damaged.sound.empty()) << damaged.where << ": " << e.what();
        }
    };
    const unsigned seeds = support::rounds(40U, 300U);
    test::for_each_damage(disk_.bytes, layout_, model_, seeds, visit);
    EXPECT_GT(saved, 25 * seeds);
}

TEST_P(Salvage, MissesNothingInAnEmptyContainer) {
    FaultDisk disk;
    test::create_container(*test::open_fault_file(disk), format_);
    const Result result = salvaged(disk.bytes);
    EXPECT_EQ(result.report.source, SalvageReport::Source::table);
    EXPECT_TRUE(result.report.isComplete() && result.files.empty());
}

TEST_P(Salvage, FindsTheTableThatNothingLeadsTo) {
    Bytes bytes = disk_.bytes;
    std::fill_n(bytes.begin(), 512, std::byte{});
    const Result result = salvaged(bytes);
    EXPECT_EQ(result.report.source, SalvageReport::Source::oldTable);
    EXPECT_TRUE(result.report.isComplete());
    EXPECT_EQ(result.report.whole, model_.size());
    EXPECT_EQ(result.files, model_);
}

TEST_P(Salvage, FindsAFileWithoutAttributesByTheName) {
    Bytes bytes = disk_.bytes;
    bytes[layout_.headerSize() + layout_.blockHeaderSize()] ^=
        std::byte{1}; // of the table, which has the name
    constexpr std::string_view name("k\0e\0p\0t\0", 8);
    const auto text = std::as_bytes(std::span(name));
    std::size_t damaged = 0;
    for (auto at = bytes.begin();
         (at = std::search(at, bytes.end(), text.begin(), text.end())) != bytes.end(); ++at) {
        const auto block =
            at - static_cast<std::ptrdiff_t>(8 + 8 + 4 + layout_.blockHeaderSize()); // of the record
        if (block[0] == std::byte{'\r'} && block[1] == std::byte{'\n'}) {
            block[0] = std::byte{'x'};
            ++damaged;
        }
    }
    EXPECT_EQ(damaged, 1U);
    EXPECT_TRUE(salvaged(bytes).files == model_);
}

TEST_P(Salvage, FindsFilesByTheirAttributesWhenNoTableIsLeft) {
    FaultDisk disk;
    test::create_container(*test::open_fault_file(disk), format_);
    Model model;
    {
        StorageRW storage(test::open_fault_file(disk), layout_);
        const StorageTransaction all(storage);
        test::Random random(5);
        for (int i = 0; i < 20; ++i) {
            const wstring name = u"file " + wstring(1, static_cast<wchar>(u'a' + i));
            storage.put(name, model[name] = random.bytes(1 + random.size()));
        }
        storage.commit();
    }
    const auto before = disk.bytes;
    for (const ChainInFile::Block& block : [&] {
             ChainInFile table(layout_);
             table.read(*test::open_fault_file(disk), layout_.headerSize(), u"");
             return table.blocks();
         }())
        std::fill_n(disk.bytes.begin() + static_cast<std::ptrdiff_t>(block.address),
                    layout_.blockLength(block.size), std::byte{});
    const Result result = salvaged(disk.bytes);
    EXPECT_EQ(result.report.source, SalvageReport::Source::records);
    EXPECT_EQ(result.files, model);
    EXPECT_EQ(result.report.whole, model.size());
}

TEST_P(Salvage, SaysWhatIsCutAndSavesItsBeginning) {
    const std::string mark = "\r\n" + test::hex(5000, layout_.digits()) + " ";
    const std::string_view text(reinterpret_cast<const char*>(disk_.bytes.data()), disk_.bytes.size());
    const auto first = text.find(mark);
    ASSERT_NE(first, std::string_view::npos);
    Bytes bytes = disk_.bytes;
    ChainInFile kept(layout_);
    kept.read(*test::open_fault_file(disk_), first, u"");
    bytes.at(kept.blocks().at(3).address) = std::byte{'x'};
    const Result result = salvaged(bytes);
    ASSERT_EQ(result.report.files.size(), 1U);
    const SalvagedFile& file = result.report.files[0];
    EXPECT_EQ(file.name, u"kept");
    EXPECT_EQ(file.state, SalvagedFile::State::cut);
    EXPECT_EQ(file.size, 5000U);
    EXPECT_EQ(file.saved, 3U * 512);
    EXPECT_EQ(to_utf8(file.text()), "“kept” was saved in part: 1536 of 5000 bytes.");
    EXPECT_EQ(result.files.at(u"kept"), Bytes(3 * 512, std::byte{7}));
    EXPECT_EQ(result.report.whole, model_.size() - 1);
}

TEST_P(Salvage, ReadsAroundSectorsThatCannotBeRead) {
    for (std::uint64_t bad = 1024; bad < disk_.bytes.size(); bad += 512 * 7) {
        const auto file = make_object<test::BadSector>(disk_.bytes, bad);
        const Result result = salvaged(*file);
        EXPECT_GE(result.report.whole + 3, model_.size()) << "one sector holds parts of three files at most";
        for (const auto& [name, content] : result.files)
            EXPECT_TRUE(isBeginning(name, content)) << bad << ": " << to_utf8(name);
    }
}

TEST_P(Salvage, SavesTheStateOfTheBeginningWhileOthersGoOn) {
    test::ReplacedClock clock;
    StorageRW other(test::open_fault_file(disk_), layout_);
    int puts = 0;
    SalvageOptions options;
    options.progress = [&](std::uint64_t, std::uint64_t) {
        const wstring name = puts % 2 == 0 ? u"kept" : u"new";
        other.put(name, Bytes(3000 + static_cast<std::size_t>(++puts), std::byte{9}));
        if (puts % 5 == 0)
            other.compact();
    };
    const Result result = salvaged(*test::open_fault_file(disk_), options);
    EXPECT_GT(puts, 5);
    EXPECT_EQ(clock.sleeps, 0) << "nobody waits";
    EXPECT_EQ(result.report.source, SalvageReport::Source::table);
    EXPECT_TRUE(result.report.isComplete());
    EXPECT_EQ(result.files, model_);
    EXPECT_TRUE(other.check().isClean());
}

TEST_P(Salvage, CanBeStoppedAndLeavesAWholeContainer) {
    FaultDisk disk;
    StorageRW::create(*test::open_fault_file(disk), layout_);
    StorageRW target(test::open_fault_file(disk), layout_);
    StopSource stop;
    SalvageOptions options;
    options.stop = stop.token();
    options.progress = [&](std::uint64_t done, std::uint64_t total) {
        EXPECT_LE(done, total);
        if (done > 3000)
            stop.request();
    };
    EXPECT_THROW((void)salvage(*test::open_fault_file(disk_), layout_, target, options), ThreadDeath);
    EXPECT_TRUE(target.check().isClean());
    EXPECT_TRUE(target.find().empty());
    const auto refused = test::open_fault_file(disk);
    EXPECT_EQ(test::kind_of([&] { (void)salvage(*refused, layout_, target); }),
              StorageException::Kind::isDestination);
    FaultDisk noise;
    noise.bytes = test::Random(3).bytes(20000);
    EXPECT_EQ(test::kind_of([&] { (void)salvage(*test::open_fault_file(noise), layout_, target); }),
              StorageException::Kind::badFormat);
}

} // namespace
} // namespace core
