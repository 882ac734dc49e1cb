// SPDX-License-Identifier: Apache-2.0
// What fails leaves the settings as they were: each file call and each allocation of a change in its turn,
// every length and every byte at which a file can be damaged.
#include "tests/profiles/fault_files.h"
#include "tests/profiles/profile_fixture.h"
#include "tests/support/allocation_limit.h"

#include <functional>

namespace core::test {
namespace {

using Faults = ProfileTest;

/// A profile on files of which each call can fail.
struct PlannedProfile {
    FaultPlan plan;
    InterfacePtr<IFileSystem> files = [this] {
        auto made = create_file_system();
        made->registerScheme(make_object<FaultScheme>(plan).get());
        return made;
    }();

    [[nodiscard]] InterfacePtr<IProfile> open() const {
        ProfileSettings places;
        places.user = u"fault://user.list";
        places.system = u"fault://system.list";
        return create_profile(places, files);
    }
    void save() const {
        if (files->describe(u"fault://user.list"))
            files->copyFile(u"fault://user.list", u"fault://saved.list");
    }
    void restore() const {
        files->remove(u"fault://.core-*"); // what could not be removed without memory
        if (files->describe(u"fault://saved.list"))
            files->copyFile(u"fault://saved.list", u"fault://user.list");
        else if (files->describe(u"fault://user.list"))
            files->remove(u"fault://user.list");
    }
};

/// The changes whose failures are tried, each from the state that the ones before leave. Beside it stands
/// what was exported of that state.
const std::function<void(IProfile&)> kSteps[] = {
    [](IProfile& profile) { profile.set(u"first", 1); },
    [](IProfile& profile) {
        profile.change(ProfileChanges().set(u"a/b", 2).set(u"a/c", u"text").remove(u"first"));
    },
    [](IProfile& profile) { profile.set(u"long", wstring(70'000, u'x')); }, // and the journal is merged
    [](IProfile& profile) { profile.copy(u"a", u"d/e"); },
    [](IProfile& profile) { profile.move(u"d", u"f"); },
    [](IProfile& profile) { profile.remove(u"a"); },
    [](IProfile& profile) { profile.importFrom(u"fault://export.list", u"g"); },
    [](IProfile& profile) { profile.set(u"first", 3); },
};

/// What comes of a step in which something is to fail.
struct Outcome {
    bool thrown = false; // it has refused the change
    bool failed = false; // something has failed
};

/// Makes each step with its n-th failure, for each n until nothing fails.
template <class Try>
void try_each_step(Try attempt) {
    PlannedProfile files;
    for (const auto& step : kSteps) {
        const Model before = contents(*files.open());
        files.save();
        files.open()->exportTo(u"fault://export.list");
        Outcome outcome{.failed = true};
        for (int n = 0; outcome.failed; ++n) {
            files.restore();
            const auto profile = files.open();
            EXPECT_EQ(contents(*profile), before);
            outcome = attempt([&] { step(*profile); }, files.plan, n);
            const Model after = contents(*files.open());
            EXPECT_EQ(contents(*profile), after) << "in memory as in the file, failure " << n;
            EXPECT_EQ(after == before, outcome.thrown) << "failure " << n;
        }
    }
    EXPECT_EQ(contents(*files.open()).size(), 7U);
}

TEST_F(Faults, OfAnyFileCallChangeNothing) {
    try_each_step([](const auto& step, FaultPlan& plan, int n) {
        Outcome outcome;
        plan = {.failAt = static_cast<std::uint64_t>(n)};
        try {
            step();
        } catch (const FileException&) {
            outcome.thrown = true;
        }
        outcome.failed = plan.failed;
        plan = {};
        return outcome;
    });
}

TEST_F(Faults, OfAnyAllocationChangeNothing) {
    try_each_step([](const auto& step, FaultPlan&, int n) {
        Outcome outcome;
        const ::test::AllocationLimit limit(n);
        try {
            step();
        } catch (const std::bad_alloc&) {
            outcome.thrown = true;
        }
        outcome.failed = ::test::allocations_left == 0;
        return outcome;
    });
}

TEST_F(Faults, OfAnyAllocationInMemoryChangeNothing) {
    const auto profile = open();
    profile->set(u"kept", 1, ProfileLayer::run);
    const Model before = contents(*profile);
    const ProfileChanges changes = ProfileChanges().set(u"a/b", u"text").remove(u"kept").set(u"c", 3);
    bool done = false;
    for (int n = 0; !done; ++n) {
        try {
            const ::test::AllocationLimit limit(n);
            profile->change(changes, ProfileLayer::run);
            done = true;
        } catch (const std::bad_alloc&) {
            EXPECT_EQ(contents(*profile), before) << n;
        }
    }
    EXPECT_EQ(contents(*profile), (Model{{u"a/b", u"text"}, {u"c", 3}}));
}

/// Counts how often each of two paths is told; the empty one stands for all.
struct Told {
    explicit Told(IProfile& profile)
        : connection(profile.watch({}, [this](const wstring& path) { // needs no memory
              first += path == u"a/first" || path.empty() ? 1 : 0;
              second += path == u"a/second/with a long name" || path.empty() ? 1 : 0;
          })) {}
    int first = 0;
    int second = 0;
    Connection connection;
};

TEST_F(Faults, OfARefreshLoseNoNotice) {
    PlannedProfile files;
    files.open()->set(u"a/first", 0);
    const auto tries = [&](auto limited) {
        bool done = false;
        for (int n = 0; !done; ++n) {
            const auto follower = files.open();
            EXPECT_TRUE(follower->find(u"a/first"));
            const Told told(*follower);
            const auto writer = files.open();
            writer->set(u"a/first", n);
            writer->set(u"a/second/with a long name", n);
            if (n % 2 == 1) // in another file, too
                writer->set(u"filling", wstring(70'000, u'x'));
            done = limited(*follower, n);
            follower->refresh();
            EXPECT_EQ(contents(*follower), contents(*writer)) << n;
            EXPECT_GE(told.first, 1) << n;
            EXPECT_GE(told.second, 1) << n;
        }
    };
    tries([](IProfile& follower, int n) {
        try {
            const ::test::AllocationLimit limit(n);
            follower.refresh();
            return n > 1 && follower.takeReports().empty(); // once in each kind of file
        } catch (const std::bad_alloc&) {
            return false;
        }
    });
    tries([&](IProfile& follower, int n) {
        files.plan = {.failAt = static_cast<std::uint64_t>(n)};
        follower.refresh();
        const bool failed = files.plan.failed;
        files.plan = {};
        return !failed;
    });
}

TEST_F(Faults, KeepWhatWasAcknowledgedBeforeATornLine) {
    std::vector<std::pair<std::size_t, Model>> states; // the length of the file, and what it holds then
    {
        const auto profile = open();
        for (int i = 0; i < 12; ++i) {
            profile->change(ProfileChanges().set(from_utf8("a/" + std::to_string(i % 5)), i).remove(u"a/3"));
            states.emplace_back(bytesOf(userFile()).size(), contents(*profile));
        }
    }
    const std::string whole = bytesOf(userFile());
    std::size_t state = 0;
    for (std::size_t length = states[0].first; length < whole.size(); ++length) {
        while (state + 1 < states.size() && length >= states[state + 1].first)
            ++state;
        write(userFile(), std::string_view(whole).substr(0, length));
        const auto profile = open();
        const bool isNext = state + 1 < states.size() && contents(*profile) == states[state + 1].second;
        EXPECT_TRUE(isNext || contents(*profile) == states[state].second) << length;
        EXPECT_TRUE(profile->takeReports().empty()) << length;
        Model after = contents(*profile);
        profile->set(u"after", 1);
        after.emplace(u"after", 1);
        EXPECT_EQ(contents(*open()), after) << length;
    }
}

TEST_F(Faults, SetADamagedFileAsideAndKeepTheRest) {
    {
        const auto profile = open();
        for (int i = 0; i < 6; ++i)
            profile->set(from_utf8("folder/" + std::to_string(i)), i);
        profile->exportTo(from_utf8(userFile())); // sorted
    }
    {
        const auto profile = open();
        for (int i = 6; i < 9; ++i)
            profile->set(from_utf8("folder/" + std::to_string(i)), i);
    }
    const std::string whole = bytesOf(userFile());
    const Model all = contents(*open());
    for (std::size_t place = 0; place + 3 < whole.size(); ++place) {
        std::string damaged = whole;
        damaged[place] = static_cast<char>(damaged[place] ^ 0x11);
        if (damaged.starts_with("{\"settings\",") && !damaged.starts_with("{\"settings\",1,"))
            continue; // it may be a later version
        std::filesystem::remove_all(file("user"));
        std::filesystem::create_directory(file("user"));
        write(userFile(), damaged);
        Model kept;
        {
            const auto profile = open();
            kept = contents(*profile);
            profile->set(u"after", 1);
            kept.emplace(u"after", 1);
            EXPECT_EQ(contents(*profile), kept) << place;
        }
        EXPECT_GE(kept.size() + 1, all.size()) << "two lines at most become one, at " << place;
        for (const auto& [path, value] : kept)
            EXPECT_TRUE(path == u"after" || all.at(path) == value) << place;
        const auto again = open();
        EXPECT_EQ(contents(*again), kept) << place;
        EXPECT_TRUE(again->takeReports().empty()) << place;
        // A last line that is damaged looks like one that was never acknowledged.
        const bool isLast = place >= whole.rfind("\n,{");
        if (!isLast) {
            EXPECT_EQ(bytesOf(userFile() + ".damaged"), damaged) << place;
        }
    }
}

TEST_F(Faults, FindANameThatIsFreeForADamagedFile) {
    write(systemFile(), "no settings at all");
    std::filesystem::create_directory(systemFile() + ".damaged");
    const auto profile = open();
    EXPECT_TRUE(contents(*profile).empty());
    const std::vector<wstring> reports = profile->takeReports();
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_NE(reports[0].find(u".damaged-2"), wstring::npos) << "a name that is free";
    EXPECT_EQ(bytesOf(systemFile() + ".damaged-2"), "no settings at all");
}

} // namespace
} // namespace core::test
