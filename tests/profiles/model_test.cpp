// SPDX-License-Identifier: Apache-2.0
// Settings against maps: random changes by several programs, whose notices alone keep another map up to date;
// and processes that write one file, some of which are killed. CORE_NIGHTLY=1 runs it long: 10 000 kills.
#include "tests/profiles/profile_fixture.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <random>
#include <thread>
#include <vector>

namespace core::test {
namespace {

bool is_nightly() {
    return std::getenv("CORE_NIGHTLY") != nullptr;
}

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
    /// Makes a group of changes, of the profile and of the model.
    void change(IProfile& profile, Model& model) {
        ProfileChanges changes;
        for (std::size_t i = 1 + below(3); i-- != 0;) {
            const wstring at = below(50) == 0 ? wstring() : path();
            if (at.empty() || below(3) == 0) {
                changes.remove(at);
                remove_from(model, at);
            } else {
                const GenericValue set = value();
                changes.set(at, set);
                model.insert_or_assign(at, set);
            }
        }
        profile.change(changes);
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
    const int rounds = is_nightly() ? 200'000 : 3000;
    for (int round = 0; round < rounds; ++round) {
        InterfacePtr<IProfile>& profile = profiles[below(profiles.size())];
        if (below(40) == 0)
            profile = open();
        change(*profile, model);
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

TEST_F(Programs, LoseNoChangeOfFourProcesses) {
    const int changes = is_nightly() ? 1'000'000 : 500;
    std::vector<::pid_t> children;
    for (int writer = 0; writer < 4; ++writer) {
        children.push_back(start([&] {
            const auto profile = open();
            const wstring folder = from_utf8("writer" + std::to_string(writer));
            for (int i = 0; i < changes; ++i)
                profile->change(ProfileChanges()
                                    .set(folder + u"/last", i)
                                    .set(folder + from_utf8("/" + std::to_string(i % 100)), i));
        }));
    }
    for (const ::pid_t child : children) {
        int status = 0;
        ::waitpid(child, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    const auto profile = open();
    for (int writer = 0; writer < 4; ++writer) {
        const wstring folder = from_utf8("writer" + std::to_string(writer));
        EXPECT_EQ(profile->get(folder + u"/last", -1), changes - 1);
        for (int i = changes - 100; i < changes; ++i)
            EXPECT_EQ(profile->get(folder + from_utf8("/" + std::to_string(i % 100)), -1), i);
    }
    EXPECT_TRUE(profile->takeReports().empty());
}

TEST_F(Programs, KeepWhatWasAcknowledgedWhenTheyAreKilled) {
    const int kills = is_nightly() ? 10'000 : 100;
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
