// SPDX-License-Identifier: Apache-2.0
// What the file below fails at: the caller gets an error that says so, and the committed state stays whole,
// for those too who use the container at the same time.
#include "tests/support/allocation_limit.h"
#include "tests/support/fault_container.h"

#include <core/files/errors.h>
#include <core/storage/errors.h>

#include <functional>
#include <optional>
#include <utility>

namespace core {
namespace {

using test::Bytes;
using test::FaultDisk;
using test::Model;

class Failing : public test::FaultContainer {
  protected:
    Failing() {
        StorageRW storage(test::open_fault_file(disk_), layout_);
        storage.put(u"still", model_[u"still"] = Bytes(200000, std::byte{6}));
    }

    struct Operation {
        const char* name;
        std::function<void(StorageRW&, Model&)> run;
    };
    static std::vector<Operation> operations() {
        const Bytes large(100000, std::byte{1});
        return {
            {"put", [large](StorageRW& s, Model& m) { s.put(u"a", m[u"a"] = large); }},
            {"overwrite",
             [](StorageRW& s, Model& m) {
                 const auto file = s.open(u"kept", OpenMode::readWrite);
                 write_all_at(*file, 3000, Bytes(10));
                 std::fill_n(m[u"kept"].begin() + 3000, 10, std::byte{0});
                 file->close();
             }},
            {"stream",
             [large](StorageRW& s, Model& m) {
                 const auto file = s.open(u"streamed", OpenMode::create);
                 for (int i = 0; i < 3; ++i)
                     write_all(*file, large);
                 m[u"streamed"] = Bytes(300000, std::byte{1});
                 file->close();
             }},
            {"several",
             [](StorageRW& s, Model& m) {
                 StorageTransaction transaction(s);
                 s.rename(u"kept", u"renamed");
                 s.put(u"new", Bytes(10));
                 transaction.commit();
                 m[u"renamed"] = std::move(m[u"kept"]);
                 m.erase(u"kept");
                 m[u"new"] = Bytes(10);
             }},
            {"remove all", [](StorageRW& s, Model& m) { s.removeAll(u"*"), m.clear(); }},
            {"compact", [](StorageRW& s, Model&) { s.compact(); }},
            {"read", [](StorageRW& s, Model& m) { EXPECT_EQ(test::contents(s), m); }},
        };
    }
};
INSTANTIATE_TEST_SUITE_P(Formats, Failing, test::kEveryFormat, test::name_of_format);

/// Others who use the container meanwhile: a file open for writing through the same handle, which has blocks
/// that no commit knows of, and files open for reading and for writing through another handle.
class Beside {
  public:
    /// No change may be in progress for `writing` when the container is compacted.
    Beside(FaultDisk& disk, StorageRW& storage, bool writing)
        : other_(test::open_fault_file(disk), storage.layout()),
          reader_(other_.open(u"still", OpenMode::read)), still_(other_.get(u"still")) {
        across_ = other_.open(u"across", OpenMode::replace);
        write_all(*across_, Bytes(20000, std::byte{8}));
        if (!writing)
            return;
        writer_ = storage.open(u"beside", OpenMode::create);
        write_all_at(*writer_, 0, kContent); // more than is gathered
        write_all_at(*writer_, 100, Bytes(50, std::byte{9}));
    }

    /// Ends the writing; what came of it is in the model afterwards.
    void finish(Model& model) {
        write_all_at(*across_, 100, Bytes(50, std::byte{7}));
        std::exchange(across_, nullptr)->close(); // no failure of the first handle is one of the other
        Bytes& across = model[u"across"] = Bytes(20000, std::byte{8});
        std::fill_n(across.begin() + 100, 50, std::byte{7});
        if (!writer_)
            return;
        try {
            std::exchange(writer_, nullptr)->close();
            model[u"beside"] = kContent;
        } catch (const StorageException&) { // lost together with the changes that were taken back
        }
    }

    /// Reads on, whatever became of the file.
    void expectReads(const std::string& where) { EXPECT_EQ(read_whole(*reader_), still_) << where; }

    /// Changes something through the other handle. Whatever the first one still had to write must not arrive
    /// later.
    void change(Model& model) {
        other_.put(u"other", Bytes(30000, std::byte{4}));
        model[u"other"] = Bytes(30000, std::byte{4});
    }

  private:
    static inline const Bytes kContent = [] {
        Bytes bytes(70000, std::byte{8});
        std::fill_n(bytes.begin() + 100, 50, std::byte{9});
        return bytes;
    }();
    StorageRW other_;
    InterfacePtr<IFile> reader_;
    Bytes still_;
    InterfacePtr<IFile> writer_;
    InterfacePtr<IFile> across_;
};

TEST_P(Failing, EveryCallOnceLeavesTheStateWhole) {
    for (const Operation& operation : operations()) {
        std::uint64_t n = 0;
        for (bool succeeded = false; !succeeded; ++n) {
            ASSERT_LT(n, 5000U);
            const std::string where = operation.name + std::string(", call ") + std::to_string(n);
            FaultDisk disk;
            disk.bytes = disk_.bytes;
            disk.longestTransfer = n % 3 == 0 ? 1000 : ~std::size_t{0};
            Model after = model_;
            std::optional<StorageRW> storage(std::in_place, test::open_fault_file(disk), layout_);
            Beside beside(disk, *storage, operation.name != std::string_view("compact"));
            disk.calls = 0;
            disk.failAt = n;
            try {
                operation.run(*storage, after);
                // A failure that does no harm (giving room back) is nobody's business.
                succeeded = !disk.failed;
                ASSERT_EQ(reopened(disk, where), after) << where;
            } catch (const Exception& e) {
                ASSERT_TRUE(disk.failed) << where << ": " << e.what();
                EXPECT_FALSE(e.description().empty());
                ASSERT_EQ(reopened(disk, where), model_) << where;
                ASSERT_EQ(test::contents(*storage), model_) << where << ", through the same object";
            }
            // Everybody goes on or says that he does not.
            disk.failAt = FaultDisk::kNever;
            Model again = reopened(disk, where);
            beside.expectReads(where);
            beside.finish(again);
            ASSERT_EQ(reopened(disk, where + ", written beside"), again) << where;
            beside.change(again);
            try {
                storage->put(u"afterwards", Bytes(700));
                again[u"afterwards"] = Bytes(700);
            } catch (const StorageException&) {
            }
            beside.expectReads(where);
            storage.reset();
            ASSERT_EQ(reopened(disk, where + ", afterwards"), again) << where;
        }
        EXPECT_GT(n, 2U) << operation.name;
    }
}

TEST_P(Failing, AFullDiskIsReportedAndCostsNothing) {
    for (std::uint64_t spare = 0; spare < 120000; spare += 7777) {
        FaultDisk disk;
        disk.bytes = disk_.bytes;
        disk.capacity = disk.bytes.size() + spare;
        StorageRW storage(test::open_fault_file(disk), layout_);
        // Written in one go, or beside what others commit.
        EXPECT_THROW(storage.put(u"large", Bytes(spare % 2 == 0 ? 400000 : 3000000)), FileException);
        EXPECT_EQ(test::contents(storage), model_);
        EXPECT_LE(disk.bytes.size(), disk_.bytes.size()) << "what was begun is given back";
        Model after = model_;
        try { // even a removal needs room for the new table
            storage.remove(u"kept");
            after.erase(u"kept");
        } catch (const FileException&) {
            EXPECT_LT(spare, 20000U);
        }
        EXPECT_EQ(reopened(disk, "full"), after);
    }
}

TEST_P(Failing, AFailedFlushIsNotTriedAgain) {
    FaultDisk disk;
    disk.bytes = disk_.bytes;
    StorageRW storage(test::open_fault_file(disk), layout_);
    disk.recording = true;
    const std::uint64_t before = disk.calls;
    storage.put(u"x", {});
    const std::uint64_t callsEach = disk.calls - before;
    EXPECT_EQ(std::count_if(disk.trace.begin(), disk.trace.end(),
                            [](const auto& e) { return e.kind == FaultDisk::Event::sync; }),
              2)
        << "blocks, then the head";
    const auto& head = *std::find_if(disk.trace.rbegin(), disk.trace.rend(),
                                     [](const auto& e) { return e.kind == FaultDisk::Event::write; });
    EXPECT_EQ(head.position, 0U);
    const std::size_t record = format_.table == 1 ? 0 : 80;
    EXPECT_EQ(head.bytes.size(), layout_.headerSize() + layout_.blockHeaderSize() + record)
        << "one write, one sector";
    // Fails the first flush of the next commit.
    int failed = 0;
    for (std::uint64_t n = 0; n < callsEach; ++n) {
        FaultDisk other;
        other.bytes = disk_.bytes;
        other.recording = true;
        StorageRW failing(test::open_fault_file(other), layout_);
        other.failAt = other.calls + n;
        try {
            failing.put(u"x", {});
        } catch (const FileException& e) {
            if (e.description().find(u"durable") == wstring::npos)
                continue;
            ++failed;
            const std::size_t traced = other.trace.size();
            EXPECT_THROW(failing.put(u"y", {}), StorageException) << "not as if nothing had happened";
            EXPECT_EQ(other.trace.size(), traced);
            StorageRW opened(test::open_fault_file(other), layout_);
            opened.put(u"y", {});
        }
    }
    EXPECT_EQ(failed, 2) << "each of the two flushes";
}

TEST_P(Failing, AFileThatMemoryDidNotSufficeForIsLost) {
    int failures = 0;
    for (int n = 0;; ++n) {
        const auto data = create_memory_data();
        test::create_container(*open_memory_file(data), format_);
        StorageRW storage(open_memory_file(data), layout_);
        const auto file = storage.open(u"a", OpenMode::create);
        const Bytes content(20'000);
        try {
            const ::test::AllocationLimit limit(n);
            write_all(*file, content);
            write_all_at(*file, 70'000, content);
            break;
        } catch (const std::exception&) {
            ++failures;
        }
        EXPECT_THROW(write_all(*file, content), StorageException) << n;
        EXPECT_THROW(file->close(), StorageException) << "what was written before would be half a file";
        EXPECT_FALSE(storage.contains(u"a"));
    }
    EXPECT_GT(failures, 0);
}

TEST_P(Failing, MemoryThatRunsOutAnywhereCostsNothing) {
    for (const Operation& operation : operations()) {
        Model done = model_;
        FaultDisk plain;
        plain.bytes = disk_.bytes;
        StorageRW whole(test::open_fault_file(plain), layout_);
        operation.run(whole, done);
        int n = 0;
        for (bool succeeded = false; !succeeded; n += n < 100 ? 1 : 7) {
            ASSERT_LT(n, 10000);
            const std::string where = operation.name + std::string(", allocation ") + std::to_string(n);
            const auto data = create_memory_data();
            write_all(*open_memory_file(data), disk_.bytes);
            StorageRW storage(open_memory_file(data), layout_);
            Model ignored = model_;
            try {
                const ::test::AllocationLimit limit(n);
                operation.run(storage, ignored);
                succeeded = true;
            } catch (const std::exception&) { // out of memory, or of memory for saying what else is wrong
            }
            Model now = test::contents(StorageRW(open_memory_file(data), layout_));
            ASSERT_TRUE(now == done || (!succeeded && now == model_)) << where;
            storage.put(u"afterwards", Bytes(700));
            now[u"afterwards"] = Bytes(700);
            ASSERT_EQ(test::contents(storage), now) << where;
            ASSERT_TRUE(storage.check().isClean()) << where;
        }
        EXPECT_GT(n, 10) << operation.name;
    }
}

} // namespace
} // namespace core
