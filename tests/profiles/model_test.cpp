// SPDX-License-Identifier: Apache-2.0
// Settings against maps: random changes by several programs, whose notices alone keep another map up to date;
// and processes that write one file, some of which are killed. CORE_NIGHTLY=1 runs it long: 200 000 rounds,
// four processes with a million changes each, 10 000 kills.
#include "tests/profiles/profile_fixture.h"
#include "tests/support/rounds.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <random>
#include <stdexcept>
#include <thread>
#include <vector>

namespace core::test {
namespace {

class Programs : public ProfileTest {
  protected:
    [[nodiscard]] std::size_t below(std::size_t limit) { return random_() % limit; }
    /// A path of up to three names, so that values, folders and both meet often.
    [[nodiscard]] wstring path() {
        static const std::vector<wstring> names{u"a", u"b", u"ab", u"a-b", u"ж", u"\xD83D\xDE00"};
        wstring path = names[below(names.size())];
        for (std::size_t more = below(3); more-- != 0;)
            path += u'/' + names[below(names.size())];
        return path;
    }
    [[nodiscard]] GenericValue value() {
        if (below(3) == 0)
            return wstring(below(400), u'x');
        return static_cast<int>(below(1000));
    }
    /// Makes a group of changes at and below a folder in the model, and returns it.
    [[nodiscard]] ProfileChanges change(Model& model, const wstring& folder = {}) {
        ProfileChanges changes;
        for (std::size_t i = 1 + below(3); i-- != 0;) {
            const bool isAll = below(50) == 0;
            const wstring at = isAll ? folder : folder.empty() ? path() : folder + u'/' + path();
            if (isAll || below(3) == 0) {
                changes.remove(at);
                remove_from(model, at);
            } else {
                const GenericValue set = value();
                changes.set(at, set);
                model.insert_or_assign(at, set);
            }
        }
        return changes;
    }

    std::mt19937 random_{20260713}; // NOLINT: the same in every run
};

/// What a program believes that learns of changes by notices alone.
struct Follower {
    explicit Follower(const InterfacePtr<IProfile>& given) : profile(given) {
        connection = profile->watch({}, [this](const wstring& path) {
            remove_from(model, path);
            if (const auto value = path.empty() ? std::nullopt : profile->find(path))
                model.insert_or_assign(path, value->value);
            for (ProfileEntry& entry : profile->entries(path))
                model.insert_or_assign(entry.path, entry.found.value);
        });
    }
    InterfacePtr<IProfile> profile;
    Model model;
    Connection connection;
};

TEST_F(Programs, AgreeWithAModelWhoeverWrites) {
    Model model;
    std::vector<InterfacePtr<IProfile>> profiles{open(), open(), open()};
    Follower follower(open());
    const int rounds = support::rounds(3000, 200'000);
    for (int round = 0; round < rounds; ++round) {
        InterfacePtr<IProfile>& profile = profiles[below(profiles.size())];
        if (below(40) == 0)
            profile = open();
        profile->change(change(model));
        if (below(10) == 0) {
            ASSERT_EQ(contents(*profile), model) << round;
        }
        if (below(20) == 0) {
            follower.profile->refresh();
            ASSERT_EQ(follower.model, model) << round;
        }
    }
    ASSERT_EQ(contents(*open()), model);
}

/// Runs `work` in a process of its own, whose exit code is 0 when it throws nothing.
::pid_t start(const std::function<void()>& work) {
    const ::pid_t child = ::fork();
    if (child != 0)
        return child;
    ::prctl(PR_SET_PDEATHSIG, SIGKILL); // it never outlives the test
    int code = 1;
    try {
        work();
        code = 0;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
    }
    ::_exit(code);
}

/// Where the random numbers of a folder's writer begin.
std::uint32_t seed_of(const wstring& folder) {
    return static_cast<std::uint32_t>(folder.front() + folder.size());
}

TEST_F(Programs, LoseNoChangeOfFourProcesses) {
    const int changes = support::rounds(500, 1'000'000);
    const std::vector<wstring> folders{u"a", u"a-b", u"b", u"ж"};
    std::vector<::pid_t> children;
    for (const wstring& folder : folders) {
        children.push_back(start([&] {
            random_.seed(seed_of(folder));
            Model model;
            const auto profile = open();
            for (int i = 0; i < changes; ++i) {
                profile->change(change(model, folder));
                if (i % 500 == 0 && contents(*profile, folder) != model)
                    throw std::runtime_error("a change is lost: " + std::to_string(i));
            }
        }));
    }
    for (const ::pid_t child : children) {
        int status = 0;
        ::waitpid(child, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    Model model;
    for (const wstring& folder : folders) {
        random_.seed(seed_of(folder));
        for (int i = 0; i < changes; ++i)
            static_cast<void>(change(model, folder));
    }
    const auto profile = open();
    EXPECT_EQ(contents(*profile), model);
    EXPECT_TRUE(profile->takeReports().empty());
}

TEST_F(Programs, KeepWhatWasAcknowledgedWhenTheyAreKilled) {
    const int kills = support::rounds(100, 10'000);
    int last = 0;
    for (int kill = 0; kill < kills; ++kill) {
        int acknowledged[2];
        ASSERT_EQ(::pipe(acknowledged), 0);
        const ::pid_t child = start([&] {
            const auto profile = open();
            for (int i = last + 1;; ++i) {
                profile->change(ProfileChanges()
                                    .set(u"first", i)
                                    .set(u"filling", wstring(static_cast<std::size_t>(i) % 3000, u'x'))
                                    .set(u"second", i));
                if (::write(acknowledged[1], &i, sizeof i) != sizeof i)
                    return;
            }
        });
        ::close(acknowledged[1]);
        std::this_thread::sleep_for(std::chrono::microseconds(below(8000)));
        ::kill(child, SIGKILL);
        int told = last;
        while (::read(acknowledged[0], &told, sizeof told) == sizeof told) {
        }
        ::close(acknowledged[0]);
        int status = 0;
        ::waitpid(child, &status, 0);
        const auto profile = open();
        last = profile->get(u"first", 0);
        ASSERT_GE(last, told) << "nothing that was acknowledged is lost";
        ASSERT_LE(last, told + 1);
        ASSERT_EQ(profile->get(u"second", 0), last) << "a group is whole";
        ASSERT_TRUE(profile->takeReports().empty());
    }
}

} // namespace
} // namespace core::test
