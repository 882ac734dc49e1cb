// SPDX-License-Identifier: Apache-2.0
// The power fails at every write of random workloads: what a disk may then hold must open as the state before
// the commit or as the one after it, with nothing wrong in it, for the library and for a reader that has only
// the description of the format. Two handles change the container, a third file is written and others are
// read meanwhile. CORE_NIGHTLY=1 tries 25 000 cuts a format.
#include "tests/support/fault_file.h"
#include "tests/support/rounds.h"
#include "tests/support/storage_crowd.h"
#include "tests/support/storage_fixture.h"
#include "tests/support/storage_python.h"

#include <core/runtime/utf8.h>

namespace core {
namespace {

using test::Bytes;
using test::FaultDisk;
using test::Model;

/// A state, and how many events had happened when its commit began and when it returned.
struct State {
    Model model;
    std::size_t begun;
    std::size_t returned;
};

void expect_whole(const StorageRW& storage, const std::string& where) {
    for (const StorageProblem& problem : storage.check().problems)
        ADD_FAILURE() << where << ": " << to_utf8(problem.text());
}

class Crash : public test::InFormats {
  protected:
    /// Runs a workload, then cuts the power after each of its events.
    void run(unsigned seed, int cutsEach) {
        FaultDisk disk;
        test::Random random(seed);
        if (seed % 2 == 0)
            disk.bytes = left_; // what an earlier cut left, and what came of it
        else
            test::create_container(*test::open_fault_file(disk), format_);
        const bool isFull = seed % 3 == 0;
        if (isFull)
            fill(*test::open_fault_file(disk));
        const Bytes start = disk.bytes;
        disk.recording = true;
        std::vector<State> states{{test::contents(StorageRW(test::open_fault_file(disk), layout_)), 0, 0}};
        {
            test::Crowd crowd([&] { return test::open_fault_file(disk); }, layout_, random);
            states.push_back({crowd.model(), 0, disk.trace.size()});
            for (int step = 0; step < 12; ++step) {
                const std::size_t begun = disk.trace.size();
                crowd.step();
                states.push_back({crowd.model(), begun, disk.trace.size()});
                ASSERT_NO_THROW(crowd.check()) << "seed " << seed << " step " << step;
            }
            disk.recording = false; // before a file that is still open is closed
        }
        std::vector<Bytes> images; // for another reader
        std::vector<test::Listing> expected;
        for (std::size_t cut = 0; cut <= disk.trace.size(); cut += isFull ? 3 : 1) {
            for (int i = 0; i < cutsEach; ++i) {
                ++cuts_;
                FaultDisk after;
                after.bytes = test::crash_image(start, disk.trace, cut, random.engine);
                const std::string where = "seed " + std::to_string(seed) + " cut " + std::to_string(cut);
                if (cuts_ % kCutsForAnother == 0) {
                    images.push_back(after.bytes);
                    expected.push_back(test::listing(StorageRW(test::open_fault_file(after), layout_)));
                }
                expectOneOf(after, states, cut, where);
                if (HasFailure())
                    return;
            }
        }
        if (python_.exists()) {
            ASSERT_EQ(python_.list(images, layout_), expected) << "seed " << seed;
        }
    }

    /// Many files and many holes between them: several nodes in each tree.
    void fill(IFile& file) const {
        StorageRW storage(InterfacePtr<IFile>(&file), layout_);
        for (const bool all : {true, false}) {
            StorageTransaction transaction(storage);
            for (int i = 0; i < 1100; ++i) {
                const wstring name = from_utf8(std::to_string(i));
                if (all)
                    storage.put(name, {});
                else if (i % 2 == 0)
                    storage.remove(name);
            }
            transaction.commit();
        }
    }

    void expectOneOf(FaultDisk& disk, const std::vector<State>& states, std::size_t cut,
                     const std::string& where) {
        StorageRW storage(test::open_fault_file(disk), layout_);
        expect_whole(storage, where);
        const Model found = test::contents(storage);
        const bool known = std::any_of(states.begin(), states.end(), [&](const State& state) {
            const std::size_t next = static_cast<std::size_t>(&state - states.data()) + 1;
            // Not yet begun, or already replaced for certain: that state must not be there.
            const bool possible =
                state.begun <= cut && (next == states.size() || cut < states[next].returned);
            return possible && state.model == found;
        });
        EXPECT_TRUE(known) << where;
        // What was left over must not be in the way of the next change.
        storage.put(u"after", Bytes(3000));
        expect_whole(storage, where + ", written to again");
        EXPECT_EQ(storage.get(u"after"), Bytes(3000));
        left_ = disk.bytes;
    }

    static constexpr std::size_t kCutsForAnother = 10;
    std::size_t cuts_ = 0;
    Bytes left_;
    const test::Python python_;
};
INSTANTIATE_TEST_SUITE_P(Formats, Crash, test::kEveryFormat, test::name_of_format);

TEST_P(Crash, LeavesTheOldStateOrTheNewOne) {
    const std::size_t wanted = support::rounds<std::size_t>(300, 25000);
    for (unsigned seed = 1; cuts_ < wanted && !HasFailure(); ++seed)
        run(seed, support::is_nightly() ? 3 : 1);
    RecordProperty("cuts", static_cast<int>(cuts_));
}

TEST_P(Crash, LeavesWhatIsReplacedOrAnEmptyContainer) {
    FaultDisk disk;
    test::create_container(*test::open_fault_file(disk), format_);
    {
        StorageRW storage(test::open_fault_file(disk), layout_);
        storage.put(u"a", Bytes(30000, std::byte{1}));
    }
    const Bytes start = disk.bytes;
    disk.recording = true;
    StorageRW::replace(*test::open_fault_file(disk), layout_);
    test::Random random(1);
    for (std::size_t cut = 0; cut <= disk.trace.size(); ++cut) {
        for (int i = 0; i < 10; ++i) {
            FaultDisk after;
            after.bytes = test::crash_image(start, disk.trace, cut, random.engine);
            const StorageRW storage(test::open_fault_file(after), layout_);
            const Model found = test::contents(storage);
            EXPECT_TRUE(found.empty() || found == (Model{{u"a", Bytes(30000, std::byte{1})}})) << cut;
        }
    }
}

} // namespace
} // namespace core
