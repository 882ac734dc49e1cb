// SPDX-License-Identifier: Apache-2.0
// The power fails at every write of random workloads: what a disk may then hold must open as the state before
// the commit or as the one after it, with nothing wrong in it. CORE_NIGHTLY=1 tries tens of thousands of
// cuts.
#include "tests/support/fault_file.h"
#include "tests/support/storage_crowd.h"
#include "tests/support/storage_fixture.h"

#include <core/runtime/utf8.h>

namespace core {
namespace {

using test::Bytes;
using test::FaultDisk;
using test::is_nightly;
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

class Crash : public test::InBothLayouts {
  protected:
    /// Runs a workload, then cuts the power after each of its events.
    void run(unsigned seed, int cutsEach) {
        FaultDisk disk;
        test::Random random(seed);
        StorageRW::create(*test::open_fault_file(disk), layout_);
        const Bytes start = disk.bytes;
        disk.recording = true;
        std::vector<State> states{{{}, 0, 0}};
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
        for (std::size_t cut = 0; cut <= disk.trace.size(); ++cut) {
            for (int i = 0; i < cutsEach; ++i) {
                ++cuts_;
                FaultDisk after;
                after.bytes = test::crash_image(start, disk.trace, cut, random.engine);
                const std::string where = "seed " + std::to_string(seed) + " cut " + std::to_string(cut);
                expectOneOf(after, states, cut, where);
                if (HasFailure())
                    return;
            }
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
    }

    std::size_t cuts_ = 0;
};
INSTANTIATE_TEST_SUITE_P(Layouts, Crash, test::kBothLayouts, test::name_of_layout);

TEST_P(Crash, LeavesTheOldStateOrTheNewOne) {
    const std::size_t wanted = is_nightly() ? 20000 : 300;
    for (unsigned seed = 1; cuts_ < wanted && !HasFailure(); ++seed)
        run(seed, is_nightly() ? 3 : 1);
    RecordProperty("cuts", static_cast<int>(cuts_));
}

} // namespace
} // namespace core
