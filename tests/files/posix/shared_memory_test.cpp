// SPDX-License-Identifier: Apache-2.0
// Files in memory that processes share, whatever becomes of the processes. CORE_NIGHTLY=1 kills 10 000 users.
#include "tests/support/file_helpers.h"
#include "tests/support/rounds.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <functional>
#include <random>
#include <string>
#include <thread>

namespace core {
namespace {

using test::bytes_of;
using test::reason_of;
using test::text_of;

class SharedByProcesses : public testing::Test {
  protected:
    InterfacePtr<IFile> open(OpenMode mode) { return system_->openURL(url_, mode); }
    /// How many files of this test the system's folder has.
    [[nodiscard]] int left() const {
        int count = 0;
        for (const auto& entry : std::filesystem::directory_iterator("/dev/shm"))
            count += entry.path().filename().string().find(mark_) != std::string::npos ? 1 : 0;
        return count;
    }
    /// Runs `work` in a process of its own, which ends with 0 when it returns true.
    static ::pid_t start(const std::function<bool()>& work) {
        const ::pid_t child = ::fork();
        if (child == 0) {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            ::_exit(work() ? 0 : 1);
        }
        return child;
    }
    static int status_of(::pid_t child) {
        int status = 0;
        ::waitpid(child, &status, 0);
        return status;
    }

    const std::string mark_ = "test-of-" + std::to_string(::getpid());
    const wstring url_ = u"shm://Отчёт/1 %*?" + from_utf8(mark_);
    InterfacePtr<IFileSystem> system_ = create_file_system();
};

TEST_F(SharedByProcesses, ANameThatIsTakenAwayLeavesTheFileToItsUsers) {
    const auto old = open(OpenMode::create);
    write_all(*old, bytes_of("old"));
    EXPECT_EQ(system_->remove(url_), 1U);
    EXPECT_EQ(reason_of([&] { system_->remove(u"shm://none" + from_utf8(mark_)); }), ENOENT);
    auto other = open(OpenMode::createNew);
    EXPECT_EQ(text_of(*old), "old");
    EXPECT_EQ(left(), 1);
    old->close();
    EXPECT_EQ(left(), 1) << "it is the other one's name";
    other.reset();
    EXPECT_EQ(left(), 0);
}

TEST_F(SharedByProcesses, ProcessesSeeTheSameBytesAndLocks) {
    const auto file = open(OpenMode::createNew);
    const InterfacePtr<ISharedFile> locks(file);
    ASSERT_TRUE(locks->tryLock(0, 8, LockKind::exclusive));
    const ::pid_t child = start([&] {
        const auto same = create_file_system()->openURL(url_, OpenMode::readWrite);
        const bool excluded = !InterfacePtr<ISharedFile>(same)->tryLock(4, 1, LockKind::shared);
        write_all(*same, bytes_of("from the child"));
        same->close();
        return excluded;
    });
    EXPECT_EQ(status_of(child), 0);
    EXPECT_EQ(text_of(*file), "from the child");
    EXPECT_EQ(left(), 1) << "the child was not the last user";
}

/// Uses the file in every way until it is killed. False when it is not what it has to be.
bool use_for_ever(const wstring& url) {
    const auto system = create_file_system();
    for (unsigned round = 0;; ++round) {
        try {
            const auto file = system->openURL(url, round % 2 == 0 ? OpenMode::createNew : OpenMode::read);
            if (round % 2 == 0) {
                if (file->length() != 0)
                    return false; // another one's, who was killed
                file->truncate(5000);
                write_all(*file, bytes_of("bytes"));
            }
            if (round % 3 == 0)
                file->close();
        } catch (const FileException& e) {
            if (e.systemError() != EEXIST && e.systemError() != ENOENT)
                return false;
        }
    }
}

TEST_F(SharedByProcesses, KilledUsersLeaveNothingBehind) {
    const int kills = support::rounds(100, 10'000);
    std::mt19937 random(static_cast<unsigned>(::getpid()));
    for (int done = 0; done < kills; done += 2) {
        const ::pid_t users[2] = {start([&] { return use_for_ever(url_); }),
                                  start([&] { return use_for_ever(url_); })};
        for (const ::pid_t user : users) {
            std::this_thread::sleep_for(std::chrono::microseconds(random() % 2000));
            ::kill(user, SIGKILL);
            const int status = status_of(user);
            ASSERT_TRUE(WIFSIGNALED(status)) << "a user saw what a killed one left";
        }
        ASSERT_FALSE(system_->describe(url_));
        ASSERT_EQ(left(), 0) << "after " << done << " kills";
    }
}

} // namespace
} // namespace core
