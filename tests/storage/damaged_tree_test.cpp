// SPDX-License-Identifier: Apache-2.0
// Damage of the two trees of table layout 2: what is not concerned can be changed, and nothing is written
// that the library would not accept.
#include "core/storage/little_endian.h"
#include "tests/support/fault_container.h"
#include "tests/support/storage_seal.h"

#include <core/storage/errors.h>
#include <core/storage/salvage.h>

#include <algorithm>
#include <cstring>
#include <set>
#include <string_view>

namespace core {
namespace {

using test::Bytes;
using test::FaultDisk;

/// A container whose tree of files has three levels: long names make small nodes.
class DamagedTree : public testing::TestWithParam<const StorageLayout*> {
  protected:
    DamagedTree() {
        StorageRW::create(*test::open_fault_file(disk_), layout_);
        StorageRW storage(test::open_fault_file(disk_), layout_);
        StorageTransaction all(storage);
        for (std::size_t i = 0; i < kFiles; ++i) {
            names_.push_back(u"file" + from_utf8(std::to_string(1000 + i)) + wstring(150, u'-'));
            storage.put(names_.back(), content(i));
        }
        all.commit();
        leaves_ = leavesOf(disk_.bytes);
        std::sort(leaves_.begin(), leaves_.end(), [&](std::size_t a, std::size_t b) {
            return firstName(disk_.bytes, a) < firstName(disk_.bytes, b);
        });
    }

    /// Where the contents of leaves begin, those that are not in use any more included.
    static std::vector<std::size_t> leavesOf(const Bytes& bytes) {
        const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        const std::string leaf = "file" + std::string(4, '\0'); // the kind, the level
        std::vector<std::size_t> leaves;
        for (auto at = text.find(leaf); at != std::string_view::npos; at = text.find(leaf, at + 1))
            leaves.push_back(at - 8);
        return leaves;
    }
    static Bytes content(std::size_t i) { return Bytes(10 + i, static_cast<std::byte>(i)); }

    /// A byte of a node whose content begins at `node`.
    std::size_t place(std::size_t node, std::size_t offset) const {
        return node + offset / 512 * layout_.blockLength(512) + offset % 512;
    }
    std::uint64_t number(const Bytes& bytes, std::size_t node, std::size_t offset, std::size_t width) const {
        std::uint64_t result = 0;
        for (std::size_t i = width; i-- > 0;)
            result = result << 8 | std::to_integer<std::uint64_t>(bytes.at(place(node, offset + i)));
        return result;
    }
    std::size_t rows(const Bytes& bytes, std::size_t leaf) const {
        return static_cast<std::size_t>(number(bytes, leaf, 24, 4));
    }
    /// Where the name of a row begins in a leaf.
    std::size_t nameAt(const Bytes& bytes, std::size_t leaf, std::size_t row) const {
        const std::size_t length = 3 * layout_.width + 24;
        const std::uint64_t before =
            row == 0 ? 0 : number(bytes, leaf, 32 + (row - 1) * length + 3 * layout_.width, 4);
        return 32 + rows(bytes, leaf) * length + 2 * static_cast<std::size_t>(before);
    }
    std::uint64_t firstName(const Bytes& bytes, std::size_t leaf) const { // its digits decide
        std::uint64_t digits = 0;
        for (std::size_t i = 4; i < 8; ++i)
            digits = digits << 8 | number(bytes, leaf, nameAt(bytes, leaf, 0) + 2 * i, 1);
        return digits;
    }

    /// The same files, each written by opening it; the four that the test of salvage removes are not there.
    Bytes openedInTurn() const {
        FaultDisk disk;
        StorageRW::create(*test::open_fault_file(disk), layout_);
        StorageRW storage(test::open_fault_file(disk), layout_);
        StorageTransaction all(storage);
        for (std::size_t i = 0; i < kFiles; ++i) {
            if (i >= 13 && i < 17)
                continue;
            const auto file = storage.open(names_[i], OpenMode::replace);
            write_all(*file, content(i));
            file->close();
        }
        all.commit();
        return disk.bytes;
    }

    /// What opens, is listed and can be read.
    std::set<wstring> soundFiles(FaultDisk& disk) const {
        std::set<wstring> sound;
        const StorageRW storage(test::open_fault_file(disk), layout_);
        std::vector<StorageProblem> problems;
        for (const StorageFound& found : storage.find(u"*", problems)) {
            EXPECT_TRUE(sound.insert(found.name).second) << "listed twice: " << to_utf8(found.name);
            EXPECT_EQ(storage.get(found.name).size(), found.size);
        }
        return sound;
    }

    static constexpr std::size_t kFiles = 400;
    const StorageLayout& layout_ = *GetParam();
    FaultDisk disk_;
    std::vector<wstring> names_;
    std::vector<std::size_t> leaves_; // where the contents of these begin, in the order of their names
};
INSTANTIATE_TEST_SUITE_P(Layouts, DamagedTree, testing::Values(&kStorageLayout32, &kStorageLayout64));

/// Files below other nodes can be removed and added, even all of them. What is below the damaged node, which
/// is so small that they would be joined with it, stays what it was.
TEST_P(DamagedTree, ChangesGoAroundANode) {
    ASSERT_GT(leaves_.size(), 20U);
    std::size_t first = 0; // of the leaf's names
    for (std::size_t i = 0; i < leaves_.size(); first += rows(disk_.bytes, leaves_[i++])) {
        if (i % 4 != 0 && i + 1 != leaves_.size())
            continue;
        FaultDisk disk;
        disk.bytes = disk_.bytes;
        {
            StorageRW storage(test::open_fault_file(disk), layout_);
            StorageTransaction transaction(storage);
            for (std::size_t row = 2; row < rows(disk_.bytes, leaves_[i]); ++row)
                storage.remove(names_[first + row]);
            transaction.commit();
        }
        std::vector<std::size_t> small = leavesOf(disk.bytes);
        std::erase_if(small, [&](std::size_t leaf) { return rows(disk.bytes, leaf) != 2; });
        ASSERT_EQ(small.size(), 1U);
        const std::size_t bit = place(small.front(), 40);
        disk.bytes[bit] ^= std::byte{1};
        const std::set<wstring> sound = soundFiles(disk);
        ASSERT_EQ(sound.size(), kFiles - rows(disk_.bytes, leaves_[i]));
        const bool adds = i % 8 == 0 && i + 1 != leaves_.size();
        {
            StorageRW storage(test::open_fault_file(disk), layout_);
            std::size_t done = 0;
            for (const wstring& name : sound) { // some alone, so that nodes become small
                if (++done % 3 == 0)
                    storage.remove(name);
            }
            StorageTransaction others(storage);
            done = 0;
            for (const wstring& name : sound) {
                if (++done % 3 != 0)
                    storage.remove(name);
            }
            if (adds)
                storage.put(u"zoo", content(7));
            others.commit();
            EXPECT_EQ(storage.check().problems.size(), 1U);
        }
        EXPECT_EQ(soundFiles(disk).size(), adds ? 1U : 0U);
        disk.bytes[bit] ^= std::byte{1};
        const StorageRW mended(test::open_fault_file(disk), layout_);
        EXPECT_TRUE(mended.check().isClean());
        EXPECT_EQ(mended.find().size(), adds ? 3U : 2U);
        for (std::size_t row = 0; row < 2; ++row)
            EXPECT_EQ(mended.get(names_[first + row]), content(first + row));
    }
}

/// What is below a damaged node is found by the attributes of the files; what was removed stays so, and what
/// cannot be found is counted.
TEST_P(DamagedTree, SalvageFindsWhatIsBelowADamagedNode) {
    const std::size_t leaf = leaves_[leaves_.size() / 2];
    FaultDisk disk;
    disk.bytes = disk_.bytes;
    const std::size_t first = 13; // of some files that are below other nodes
    {
        StorageRW storage(test::open_fault_file(disk), layout_);
        for (std::size_t i = 0; i < 4; ++i)
            storage.remove(names_[first + i]);
    }
    disk.bytes[place(leaf, 40)] ^= std::byte{1};
    const auto salvaged = [&](std::uint64_t lost) {
        FaultDisk saved;
        StorageRW::create(*test::open_fault_file(saved), layout_);
        StorageRW target(test::open_fault_file(saved), layout_);
        const SalvageReport report = salvage(*test::open_fault_file(disk), layout_, target);
        EXPECT_EQ(report.source, SalvageReport::Source::table);
        EXPECT_EQ(report.whole, kFiles - 4 - lost);
        EXPECT_EQ(report.lost, lost);
        EXPECT_EQ(report.isComplete(), lost == 0);
        for (const SalvagedFile& file : report.files)
            ADD_FAILURE() << to_utf8(file.text());
        for (std::size_t i = 0; i < kFiles; ++i) {
            if (i >= first && i < first + 4) {
                EXPECT_FALSE(target.contains(names_[i]));
            } else if (lost == 0) {
                EXPECT_EQ(target.get(names_[i]), content(i));
            }
        }
    };
    salvaged(0);
    // Contents that stand in front of their attributes, with the nodes of the table behind them.
    const auto whole = disk.bytes;
    disk.bytes = openedInTurn();
    const std::vector<std::size_t> leaves = leavesOf(disk.bytes);
    ASSERT_FALSE(leaves.empty());
    disk.bytes[place(leaves.front(), 40)] ^= std::byte{1};
    salvaged(0);
    disk.bytes = whole;
    // The attributes of the first file there; its name is nowhere else.
    const std::size_t record = static_cast<std::size_t>(number(disk.bytes, leaf, 32, layout_.width));
    disk.bytes[record + 3] = std::byte{'x'};
    salvaged(1);
}

/// A leaf with a name that belongs behind another leaf, though all checksums are right. It is damaged as a
/// whole: to mix its rows with those of its neighbours would cost these, too.
TEST_P(DamagedTree, RowsThatBelongElsewhereAreNotMixedWithOthers) {
    for (std::size_t i = 0; i + 1 < leaves_.size(); ++i) {
        FaultDisk disk;
        disk.bytes = disk_.bytes;
        const std::size_t count = rows(disk.bytes, leaves_[i]);
        disk.bytes[place(leaves_[i], nameAt(disk.bytes, leaves_[i], count - 1))] = std::byte{'z'};
        ASSERT_TRUE(test::Seal(disk.bytes, layout_).put());
        {
            const StorageRW storage(test::open_fault_file(disk), layout_);
            ASSERT_FALSE(storage.check().isClean()) << "leaf " << i;
        }
        std::set<wstring> sound = soundFiles(disk);
        ASSERT_EQ(sound.size(), kFiles - count) << "leaf " << i;
        std::size_t step = 0;
        for (const wstring& name : std::set(sound)) {
            if (++step % 4 == 0)
                continue;
            StorageRW storage(test::open_fault_file(disk), layout_);
            storage.remove(name);
            sound.erase(name);
            if (step % 40 == 0) {
                ASSERT_EQ(soundFiles(disk), sound) << "leaf " << i;
            }
        }
        ASSERT_EQ(soundFiles(disk), sound) << "leaf " << i;
        i += i / 4;
    }
}

/// Nothing that the damaged tree may have told of is used, and compacting finds it again.
TEST_P(DamagedTree, OfFreeSpaceIsBegunAnewByTheNextChange) {
    for (const bool compacts : {false, true}) {
        FaultDisk disk;
        disk.bytes = disk_.bytes;
        std::set<wstring> left(names_.begin(), names_.end());
        {
            StorageRW storage(test::open_fault_file(disk), layout_);
            for (std::size_t i = 0; i < kFiles; i += 2) {
                storage.remove(names_[i]);
                left.erase(names_[i]);
            }
        }
        const std::uint64_t root = load_number(disk.bytes.data(), layout_.width);
        disk.bytes.at(static_cast<std::size_t>(root) + layout_.blockHeaderSize() + 40) ^= std::byte{1};
        StorageRW storage(test::open_fault_file(disk), layout_);
        const StorageCheck before = storage.check();
        ASSERT_EQ(before.problems.size(), 1U);
        EXPECT_EQ(before.problems[0].kind, StorageProblem::Kind::damagedFreeChain);
        const std::size_t length = disk.bytes.size();
        if (!compacts) {
            storage.put(u"new", content(5));
            left.insert(u"new");
            EXPECT_GE(disk.bytes.size(), length + layout_.blockLength(512)) << "it went behind everything";
            const StorageCheck after = storage.check();
            ASSERT_EQ(after.problems.size(), 1U);
            EXPECT_EQ(after.problems[0].kind, StorageProblem::Kind::lost);
            storage.remove(u"new");
            storage.put(u"new", content(6));
            EXPECT_EQ(soundFiles(disk), left);
        }
        EXPECT_TRUE(storage.compact().damaged.empty());
        EXPECT_TRUE(storage.check().isClean());
        EXPECT_EQ(storage.info().freeBytes, 0U);
        EXPECT_EQ(soundFiles(disk), left);
        EXPECT_LT(disk.bytes.size(), length);
    }
}

} // namespace
} // namespace core
