// SPDX-License-Identifier: Apache-2.0
// Semaphores, and waits for one or all of several things.
#include "tests/runtime/stress.h"

#include <core/runtime/threads/errors.h>
#include <core/runtime/threads/mutex.h>
#include <core/runtime/threads/rw_mutex.h>
#include <core/runtime/threads/semaphore.h>
#include <core/runtime/threads/thread.h>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <mutex>
#include <optional>
#include <thread>

namespace {

using namespace core;
using namespace std::chrono_literals;

TEST(Semaphore, ATimeoutMayBeForEver) {
    ISemaphoreImpl semaphore;
    std::jthread other([&] {
        std::this_thread::sleep_for(20ms);
        semaphore.signal();
    });
    EXPECT_TRUE(semaphore.wait(kForever));
    EXPECT_FALSE(semaphore.wait(std::chrono::milliseconds::min()));
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_FALSE(semaphore.wait(30ms));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 30ms);
}

TEST(Semaphore, ASignalLetsTheOneThroughWhoCameFirst) {
    ISemaphoreImpl semaphore;
    std::mutex lock;
    std::vector<int> order;
    std::vector<std::jthread> threads;
    for (int i = 0; i < 5; ++i) {
        threads.emplace_back([&, i] {
            semaphore.wait(kForever);
            const std::lock_guard guard(lock);
            order.push_back(i);
        });
        std::this_thread::sleep_for(20ms);
    }
    for (std::size_t passed = 1; passed <= 5; ++passed) {
        semaphore.signal();
        std::this_thread::sleep_for(20ms);
        const std::lock_guard guard(lock);
        ASSERT_EQ(order.size(), passed);
    }
    EXPECT_EQ(order, (std::vector{0, 1, 2, 3, 4}));
}

TEST(Semaphore, TheOneTimeSignalLetsAllThrough) {
    ISemaphoreOneTimeImpl semaphore;
    std::atomic<int> passed = 0;
    {
        std::jthread signaller([&] {
            std::this_thread::sleep_for(20ms);
            semaphore.signal();
        });
        stress::run(20, [&](std::minstd_rand&, int) { passed += semaphore.wait(kForever) ? 1 : 0; });
    }
    EXPECT_EQ(passed, 20);
    EXPECT_TRUE(semaphore.wait(0ms));
}

TEST(Semaphore, NoSignalIsLostNorUsedTwice) {
    ISemaphoreImpl semaphore;
    std::atomic<int> given = 0;
    std::atomic<int> used = 0;
    stress::run(4, [&](std::minstd_rand& random, int) {
        for (int i = stress::operations() / 4; i > 0; --i) {
            if (random() % 2 == 0) {
                ++given;
                semaphore.signal();
            } else {
                used += semaphore.wait(std::chrono::milliseconds(random() % 3)) ? 1 : 0;
            }
        }
    });
    while (semaphore.wait(0ms))
        ++used;
    EXPECT_EQ(used, given);
}

TEST(Semaphore, MayGoAsSoonAsItsWaiterIsThrough) {
    std::atomic<ISemaphoreImpl*> handed = nullptr;
    std::jthread signaller([&](const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            if (ISemaphoreImpl* const semaphore = handed.exchange(nullptr))
                semaphore->signal();
            else
                std::this_thread::yield();
        }
    });
    for (int i = stress::operations() / 200; i > 0; --i) {
        auto semaphore = std::make_unique<ISemaphoreImpl>();
        handed = semaphore.get();
        while (!semaphore->wait(i % 2 == 0 ? kForever : 0ms))
            std::this_thread::yield();
    }
}

TEST(WaitAny, TakesOneAndLeavesTheOthers) {
    IMutexImpl mutex;
    IRWMutexSimpleImpl rwMutex;
    ISemaphoreImpl semaphore;
    Thread thread(u"waiting", [&] { semaphore.wait(kForever); });
    ISemaphoreImpl held;
    ISemaphoreImpl end;
    std::jthread holder([&] {
        const std::lock_guard guard(mutex);
        const ReadLock readGuard(rwMutex);
        held.signal();
        end.wait(kForever);
    });
    held.wait(kForever);
    EXPECT_EQ(wait_any({mutex, writing(rwMutex), thread}, 20ms), std::nullopt);
    EXPECT_EQ(wait_any({mutex, writing(rwMutex), reading(rwMutex), thread}), 2U);
    rwMutex.unlockRead();
    std::jthread other([&] {
        std::this_thread::sleep_for(20ms);
        semaphore.signal();
    });
    EXPECT_EQ(wait_any({mutex, thread}), 1U);
    EXPECT_EQ(wait_any({}, 5ms), std::nullopt);
    IMutexImpl idle;
    EXPECT_EQ(wait_any({idle, thread}, 0ms), 0U) << "the first that can be had, also without a wait";
    idle.unlock();
    end.signal();
}

TEST(WaitAny, LosesNothingAmongManyWhoWaitForTheSame) {
    // Signals are taken from one semaphore and given to another; a mutex stands among them.
    std::array<ISemaphoreImpl, 3> semaphores;
    IMutexImpl mutex;
    int underMutex = 0;
    constexpr int kSignals = 2;
    for (int i = 0; i < kSignals; ++i)
        semaphores[0].signal();
    stress::run(4, [&](std::minstd_rand& random, int) {
        for (int i = stress::operations() / 4; i > 0; --i) {
            const std::array<Awaited, 3> all{semaphores[random() % 3], mutex, semaphores[random() % 3]};
            const auto count = 1 + random() % 3;
            const bool brief = count == 1 || random() % 8 == 0;
            // A thread that waits without a mutex may find that others have taken all signals to the other
            // semaphores.
            const auto taken = wait_any(std::span(all).first(count), brief ? 1ms : kForever);
            if (!taken)
                continue;
            if (*taken == 1) {
                ASSERT_EQ(++underMutex, 1);
                --underMutex;
                mutex.unlock();
            } else {
                semaphores[random() % 3].signal();
            }
        }
    });
    int left = 0;
    for (ISemaphoreImpl& semaphore : semaphores) {
        while (semaphore.wait(0ms))
            ++left;
    }
    EXPECT_EQ(left, kSignals);
    EXPECT_TRUE(mutex.tryLock());
    mutex.unlock();
}

TEST(WaitAll, ThreadsThatNeedTwoOfThreeNeverBlockEachOther) {
    std::array<IMutexImpl, 3> mutexes;
    ISemaphoreImpl permits;
    permits.signal();
    permits.signal();
    std::array<int, 3> inside{};
    stress::run(3, [&](std::minstd_rand& random, int index) {
        const auto first = static_cast<std::size_t>(index);
        const auto second = (first + 1) % 3;
        for (int i = stress::operations() / 30; i > 0; --i) {
            const auto timeout = random() % 4 == 0 ? std::chrono::milliseconds(random() % 2) : kForever;
            if (!wait_all({mutexes[first], permits, mutexes[second]}, timeout))
                continue;
            ASSERT_EQ(++inside[first], 1);
            ASSERT_EQ(++inside[second], 1);
            --inside[first];
            --inside[second];
            mutexes[second].unlock();
            mutexes[first].unlock();
            permits.signal();
        }
    });
    EXPECT_TRUE(permits.wait(0ms) && permits.wait(0ms));
    EXPECT_FALSE(permits.wait(0ms)); // none was given back twice
    EXPECT_TRUE(wait_all({mutexes[0], mutexes[1], mutexes[2]}, 0ms));
    EXPECT_FALSE(wait_all({mutexes[0], permits}, 20ms));
    EXPECT_FALSE(wait_all({permits}, 0ms));
    for (IMutexImpl& mutex : mutexes)
        mutex.unlock();
    EXPECT_THROW(static_cast<void>(wait_all({permits, permits})), ThreadException);
}

} // namespace
