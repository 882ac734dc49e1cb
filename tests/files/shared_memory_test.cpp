// SPDX-License-Identifier: Apache-2.0
// Files in memory that processes share: they are there as long as somebody has them open, whatever becomes of
// the processes, and what goes wrong is an error. CORE_NIGHTLY=1 kills 10 000 users.
#include "tests/support/file_helpers.h"

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

class SharedMemory : public testing::Test {
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

TEST_F(SharedMemory, IsThereAsLongAsSomebodyHasItOpen) {
    EXPECT_EQ(reason_of([&] { (void)open(OpenMode::read); }), ENOENT);
    EXPECT_EQ(reason_of([&] { (void)open(OpenMode::readWrite); }), ENOENT);
    auto first = open(OpenMode::createNew);
    EXPECT_EQ(reason_of([&] { (void)open(OpenMode::createNew); }), EEXIST);
    write_all(*first, bytes_of("kept"));
    const auto found = system_->describe(url_);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->url, url_);
    EXPECT_EQ(found->length, 4U);
    EXPECT_EQ(system_->findFile(u"shm://Отчёт/*").size(), 1U);
    auto second = open(OpenMode::read);
    EXPECT_EQ(reason_of([&] { (void)second->writeAt(0, "x", 1); }), EBADF);
    EXPECT_TRUE(InterfacePtr<ISharedFile>(first)->isSameFile(*second));
    first->close();
    first.reset();
    EXPECT_EQ(text_of(*open(OpenMode::create)), "kept");
    EXPECT_EQ(open(OpenMode::replace)->length(), 0U);
    second.reset();
    EXPECT_EQ(left(), 0);
    EXPECT_EQ(open(OpenMode::create)->length(), 0U) << "another one";
    EXPECT_EQ(left(), 0);
}

TEST_F(SharedMemory, ANameThatIsTakenAwayLeavesTheFileToItsUsers) {
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

TEST_F(SharedMemory, ProcessesSeeTheSameBytesAndLocks) {
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

TEST_F(SharedMemory, LackOfMemoryAndACutFileAreErrors) {
    const auto file = open(OpenMode::createNew);
    const auto other = open(OpenMode::readWrite);
    file->truncate(100'000);
    write_all(*file, bytes_of("held"));
    const FileSpace space = system_->space(url_);
    EXPECT_LE(space.available, space.total);
    EXPECT_EQ(reason_of([&] { file->truncate(space.total + 200'000); }), ENOSPC);
    EXPECT_EQ(reason_of([&] { file->truncate(kMaxFileLength + 1); }), EFBIG);
    EXPECT_EQ(file->length(), 100'000U);
    other->truncate(2);
    std::string bytes(100, 'x');
    EXPECT_EQ(file->readAt(0, bytes.data(), bytes.size()), 2U);
    EXPECT_EQ(file->readAt(50'000, bytes.data(), bytes.size()), 0U);
    EXPECT_EQ(text_of(*file), "he");
}

TEST_F(SharedMemory, KeepsNothingSoNothingIsStored) {
    const auto file = open(OpenMode::createNew);
    write_all(*file, bytes_of("x"));
    EXPECT_FALSE(system_->capabilities(url_).keeps);
    EXPECT_EQ(reason_of([&] { system_->writeFile(url_, [](IFile&) {}); }), ENOTSUP);
    EXPECT_EQ(reason_of([&] { system_->copyFile(u"shm://a", u"shm://b"); }), ENOTSUP);
    EXPECT_EQ(reason_of([&] { system_->moveFile(url_, u"shm://b"); }), ENOTSUP);
    system_->copyFile(url_, u"mem://kept");
    EXPECT_EQ(text_of(*system_->openURL(u"mem://kept", OpenMode::read)), "x");
    EXPECT_EQ(reason_of([&] { system_->copyFile(u"mem://kept", url_); }), ENOTSUP);
    for (const wstring& name : {wstring(), wstring(1, wchar{0xD800})})
        EXPECT_EQ(reason_of([&] { (void)system_->openURL(u"shm://" + name, OpenMode::create); }), EINVAL);
    EXPECT_EQ(reason_of([&] { (void)system_->openURL(u"shm://" + wstring(300, u'n'), OpenMode::create); }),
              ENAMETOOLONG);
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

TEST_F(SharedMemory, KilledUsersLeaveNothingBehind) {
    const int kills = std::getenv("CORE_NIGHTLY") != nullptr ? 10'000 : 100;
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
