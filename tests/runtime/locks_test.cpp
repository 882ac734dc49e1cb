// SPDX-License-Identifier: Apache-2.0
// Mutexes and read-write mutexes: who is kept out, who is let in and when.
#include "tests/runtime/stress.h"

#include <core/runtime/threads/errors.h>
#include <core/runtime/threads/mutex.h>
#include <core/runtime/threads/rw_mutex.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <mutex>
#include <thread>

namespace {

using namespace core;
using namespace std::chrono_literals;

/// What another thread gets as the answer.
template <class F>
auto on_another_thread(F ask) {
    return std::async(std::launch::async, ask).get();
}

TEST(Mutex, KeepsOtherThreadsOut) {
    IMutexImpl mutex;
    const auto another = [&] { // whether another thread gets it
        return on_another_thread([&] {
            const bool got = mutex.tryLock();
            if (got)
                mutex.unlock();
            return got;
        });
    };
    mutex.lock();
    EXPECT_TRUE(mutex.tryLock() && mutex.tryLockFor(0ms)); // again, by the same thread
    EXPECT_THROW(on_another_thread([&] { mutex.unlock(); }), ThreadException);
    mutex.unlock();
    mutex.unlock();
    EXPECT_FALSE(another());
    EXPECT_FALSE(on_another_thread([&] { return mutex.tryLockFor(20ms); }));
    mutex.unlock();
    EXPECT_TRUE(another());
    EXPECT_THROW(mutex.unlock(), ThreadException);
}

TEST(Mutex, LosesNoWakeUpAndLetsOneInAtATime) {
    IMutexImpl mutex;
    int inside = 0;
    int counted = 0;
    std::atomic<int> had = 0;
    stress::run(4, [&](std::minstd_rand& random, int) {
        for (int i = stress::operations() / 4; i > 0; --i) {
            const auto how = random() % 16;
            if (how == 0 && !mutex.tryLock())
                continue;
            if (how == 1 && !mutex.tryLockFor(std::chrono::milliseconds(random() % 2)))
                continue;
            if (how > 1)
                mutex.lock();
            if (how == 2) {
                mutex.lock();
                mutex.unlock();
            }
            ASSERT_EQ(++inside, 1);
            ++counted;
            if (how == 3)
                std::this_thread::yield();
            --inside;
            mutex.unlock();
            ++had;
        }
    });
    EXPECT_EQ(counted, had);
}

TEST(Mutex, IsHadByAThreadThatIsAlwaysPassedOver) {
    IMutexImpl mutex;
    std::atomic<bool> end = false;
    std::jthread greedy([&] {
        while (!end) {
            const std::lock_guard guard(mutex);
            const auto until = std::chrono::steady_clock::now() + 100us;
            while (std::chrono::steady_clock::now() < until) {
            }
        }
    });
    const auto begin = std::chrono::steady_clock::now();
    for (int i = 0; i < 20; ++i) {
        const std::lock_guard guard(mutex);
    }
    end = true;
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 4s);
}

TEST(Mutex, GoesWithTheLastOfThoseWhoLockedIt) {
    struct Shared {
        IMutexImpl mutex;
        int holders = 2;
    };
    for (int i = stress::operations() / 1000; i > 0; --i) {
        auto* const shared = new Shared;
        stress::run(2, [&](std::minstd_rand&, int) {
            shared->mutex.lock();
            const bool last = --shared->holders == 0;
            shared->mutex.unlock();
            if (last)
                delete shared;
        });
    }
}

TEST(RWMutex, ReadersShareAndAWriterIsAlone) {
    IRWMutexSimpleImpl mutex;
    mutex.lockRead();
    EXPECT_TRUE(on_another_thread([&] {
        const ReadLock guard(mutex); // would wait for ever
        return mutex.tryLockRead() && !mutex.tryLockWrite() && !mutex.tryLockWriteFor(10ms);
    }));
    mutex.unlockRead();
    auto writer = std::async(std::launch::async, [&] { const WriteLock guard(mutex); });
    while (mutex.tryLockRead()) // until the writer waits
        mutex.unlockRead();
    EXPECT_EQ(writer.wait_for(0ms), std::future_status::timeout);
    EXPECT_FALSE(mutex.tryLockReadFor(10ms));
    mutex.unlockRead();
    writer.get();
    EXPECT_THROW(mutex.unlockRead(), ThreadException);
    EXPECT_THROW(mutex.unlockWrite(), ThreadException);
    EXPECT_TRUE(mutex.tryLockWrite());
    EXPECT_FALSE(mutex.tryLockRead() || mutex.tryLockWrite());
    mutex.unlockWrite();
}

TEST(RWMutex, AWriterThatGivesUpLetsInTheReadersBehindIt) {
    IRWMutexSimpleImpl mutex;
    mutex.lockRead();
    auto writer = std::async(std::launch::async, [&] { return mutex.tryLockWriteFor(100ms); });
    while (mutex.tryLockRead()) { // until the writer waits
        mutex.unlockRead();
        std::this_thread::yield();
    }
    auto reader = std::async(std::launch::async, [&] { const ReadLock guard(mutex); });
    EXPECT_FALSE(writer.get());
    reader.get();
    mutex.unlockRead();
}

/// Whether one thread gets in twenty times within five seconds while four others are inside all the time.
bool gets_in(void (IRWMutex::*lockOne)(), void (IRWMutex::*unlockOne)(), void (IRWMutex::*lockMany)(),
             void (IRWMutex::*unlockMany)()) {
    IRWMutexSimpleImpl mutex;
    IRWMutex& face = mutex;
    std::atomic<bool> end = false;
    std::atomic<int> entries = 0;
    std::jthread one([&] {
        while (entries < 20 && !end) {
            (face.*lockOne)();
            ++entries;
            (face.*unlockOne)();
        }
    });
    std::jthread many([&] {
        stress::run(4, [&](std::minstd_rand&, int) {
            while (!end) {
                (face.*lockMany)();
                const auto until = std::chrono::steady_clock::now() + 200us;
                while (std::chrono::steady_clock::now() < until) {
                }
                (face.*unlockMany)();
            }
        });
    });
    const auto deadline = std::chrono::steady_clock::now() + 5s;
    while (entries < 20 && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(1ms);
    end = true;
    return entries >= 20;
}

TEST(RWMutex, NeitherReadersNorWritersAreKeptOutForEver) {
    EXPECT_TRUE(
        gets_in(&IRWMutex::lockWrite, &IRWMutex::unlockWrite, &IRWMutex::lockRead, &IRWMutex::unlockRead));
    EXPECT_TRUE(
        gets_in(&IRWMutex::lockRead, &IRWMutex::unlockRead, &IRWMutex::lockWrite, &IRWMutex::unlockWrite));
}

TEST(RWMutex, LosesNoWakeUpAndShowsReadersWholeStates) {
    IRWMutexSimpleImpl mutex;
    int first = 0;
    int second = 0;
    stress::run(4, [&](std::minstd_rand& random, int) {
        for (int i = stress::operations() / 4; i > 0; --i) {
            const auto how = random() % 16;
            const auto time = std::chrono::milliseconds(random() % 2);
            if (how < 2) {
                if (how == 0 ? !mutex.tryLockWriteFor(time) : !mutex.tryLockWrite())
                    continue;
                ++first;
                ++second;
                mutex.unlockWrite();
            } else if (how < 5) {
                const WriteLock guard(mutex);
                ++first;
                if (how == 2)
                    std::this_thread::yield();
                ++second;
            } else if (how < 7) {
                if (how == 5 ? !mutex.tryLockReadFor(time) : !mutex.tryLockRead())
                    continue;
                ASSERT_EQ(first, second);
                mutex.unlockRead();
            } else {
                const ReadLock guard(mutex);
                ASSERT_EQ(first, second);
            }
        }
    });
    EXPECT_TRUE(mutex.tryLockWrite()); // nobody was left inside
    mutex.unlockWrite();
}

TEST(RWMutex, CountsReadersThatComeAtTheSameMoment) {
    IRWMutexSimpleImpl mutex;
    stress::run(4, [&](std::minstd_rand&, int) {
        for (int i = stress::operations() * 4; i > 0; --i) {
            if (mutex.tryLockRead())
                mutex.unlockRead();
        }
    });
    EXPECT_TRUE(mutex.tryLockWrite());
    mutex.unlockWrite();
}

} // namespace
