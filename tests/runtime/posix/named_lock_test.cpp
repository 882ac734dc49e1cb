// SPDX-License-Identifier: Apache-2.0
// Locks between processes: forked children hold them, wait for them and are killed.
#include <core/runtime/random.h>
#include <core/runtime/threads/errors.h>
#include <core/runtime/threads/named_lock.h>
#include <core/runtime/utf8.h>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace core;
using namespace std::chrono_literals;

/// Runs `work` in a child, which then waits to be killed; kills it when it goes.
class Child {
  public:
    explicit Child(const std::function<void()>& work) {
        int ends[2] = {};
        if (pipe(ends) != 0)
            return;
        pid_ = fork();
        if (pid_ == 0) {
            work();
            while (write(ends[1], "!", 1) == 1)
                pause();
            _exit(1);
        }
        char byte = 0;
        ready_ = read(ends[0], &byte, 1) == 1;
        close(ends[0]);
        close(ends[1]);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child() { kill(); }

    void kill() {
        if (pid_ <= 0)
            return;
        ::kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
        pid_ = 0;
    }
    [[nodiscard]] bool ready() const { return ready_; }

  private:
    pid_t pid_ = 0;
    bool ready_ = false;
};

wstring new_name() {
    return u"test/" + to_string(new_guid());
}

/// The files of named locks whose names hold `part`.
std::vector<std::filesystem::path> files_of(const wstring& name) {
    const std::string part = to_utf8(name.substr(5));
    std::vector<std::filesystem::path> found;
    for (const auto& entry : std::filesystem::directory_iterator("/dev/shm")) {
        if (entry.path().filename().string().find(part) != std::string::npos)
            found.push_back(entry.path());
    }
    return found;
}

TEST(NamedMutex, IsHeldByOneProcessOfAll) {
    const wstring name = new_name();
    NamedMutex mutex(name);
    ASSERT_EQ(files_of(name).size(), 1U);
    struct stat status {};
    ASSERT_EQ(stat(files_of(name).front().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
    Child child([&] { NamedMutex(name).lock(); }); // which unlocks it
    ASSERT_TRUE(child.ready());
    EXPECT_EQ(mutex.tryLock(), NamedLockResult::locked);
}

TEST(NamedMutex, TheNextOneIsToldWhenItsHolderWasKilled) {
    const wstring name = new_name();
    {
        NamedMutex mutex(name);
        Child child([&] { (new NamedMutex(name))->lock(); });
        ASSERT_TRUE(child.ready());
        EXPECT_EQ(mutex.tryLockFor(30ms), NamedLockResult::timedOut);
        std::jthread killer([&] {
            std::this_thread::sleep_for(50ms);
            child.kill();
        });
        EXPECT_EQ(mutex.tryLockFor(10s), NamedLockResult::abandoned);
        mutex.unlock();
        EXPECT_EQ(mutex.tryLock(), NamedLockResult::locked); // told once
    }
    EXPECT_TRUE(files_of(name).empty());
    {
        Child child([&] { (new NamedMutex(name))->lock(); });
        ASSERT_TRUE(child.ready());
    }
    NamedMutex another(new_name());       // makes away with unused names
    EXPECT_EQ(files_of(name).size(), 1U); // but somebody is to be told
    EXPECT_EQ(NamedMutex(name).lock(), NamedLockResult::abandoned);
    EXPECT_TRUE(files_of(name).empty());
}

TEST(NamedMutex, KeepsCountsOfManyProcessesRight) {
    NamedMutex mutex(new_name());
    const auto file = std::filesystem::temp_directory_path() / to_utf8(to_string(new_guid()));
    std::ofstream{file};
    constexpr int kRounds = 300;
    const auto grow = [&] { // reads a size and sets the next one, which is right under a lock only
        for (int i = 0; i < kRounds; ++i) {
            mutex.lock();
            std::filesystem::resize_file(file, std::filesystem::file_size(file) + 1);
            mutex.unlock();
        }
    };
    std::vector<pid_t> children;
    for (int i = 0; i < 3; ++i) {
        const pid_t child = fork();
        if (child == 0) {
            grow();
            _exit(0);
        }
        children.push_back(child);
    }
    grow();
    for (const pid_t child : children)
        waitpid(child, nullptr, 0);
    EXPECT_EQ(std::filesystem::file_size(file), 4U * kRounds);
    std::filesystem::remove(file);
}

TEST(NamedSemaphore, SignalsReachOtherProcesses) {
    const wstring name = new_name();
    {
        NamedSemaphore semaphore(name);
        const Child child([&] {
            NamedSemaphore same(name);
            for (int i = 0; i < 100; ++i)
                same.signal();
        });
        for (int i = 0; i < 100; ++i)
            EXPECT_TRUE(semaphore.wait(10s));
        EXPECT_THROW(NamedMutex mutex(name), ThreadException); // it is another kind of lock
        EXPECT_EQ(files_of(name).size(), 1U);
    }
    NamedSemaphore(new_name(), 1).signal();
    EXPECT_TRUE(files_of(name).empty()); // the child was killed while it had it open
    {
        const Child child([&] { new NamedSemaphore(name); });
    }
    const NamedSemaphore another(new_name());
    EXPECT_TRUE(files_of(name).empty()) << "the next one makes away with what a killed process left";
}

TEST(NamedLock, ASignalDoesNotEndTheWaitForAFile) {
    const wstring name = new_name();
    {
        const Child child([&] { (new NamedMutex(name))->lock(); });
    } // is killed, so that the file stays
    ASSERT_EQ(files_of(name).size(), 1U);
    const int file = ::open(files_of(name).front().c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(flock(file, LOCK_EX), 0); // as one who looks whether the file is used
    struct sigaction before {
    }, quiet{};
    quiet.sa_handler = [](int) {};
    ASSERT_EQ(sigaction(SIGUSR1, &quiet, &before), 0);
    std::atomic<bool> opened = false;
    std::jthread opening([&] {
        EXPECT_NO_THROW(EXPECT_EQ(NamedMutex(name).lock(), NamedLockResult::abandoned));
        opened = true;
    });
    for (int i = 0; i < 10; ++i) {
        std::this_thread::sleep_for(5ms);
        pthread_kill(opening.native_handle(), SIGUSR1);
    }
    EXPECT_FALSE(opened);
    close(file);
    opening.join();
    sigaction(SIGUSR1, &before, nullptr);
}

TEST(NamedLock, OneThatIsGoneTakesNoMemory) {
    const auto mappings = [] {
        std::ifstream maps("/proc/self/maps");
        return std::count(std::istreambuf_iterator<char>(maps), {}, '\n');
    };
    const wstring name = new_name();
    NamedSemaphore stays(name, 1);
    const auto before = mappings();
    for (int i = 0; i < 50; ++i)
        NamedSemaphore(name, 1).signal();
    EXPECT_LT(mappings(), before + 10);
}

} // namespace
