// SPDX-License-Identifier: Apache-2.0
// Threads: what they take over from their starter, how they are stopped, and what becomes of what they throw.
#include "tests/support/bytes_in_use.h"

#include <core/runtime/class_entry.h>
#include <core/runtime/clock.h>
#include <core/runtime/process.h>
#include <core/runtime/threads/errors.h>
#include <core/runtime/threads/mutex.h>
#include <core/runtime/threads/rw_mutex.h>
#include <core/runtime/threads/semaphore.h>
#include <core/runtime/threads/thread.h>
#include <core/runtime/uncaught.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace {

using namespace core;
using namespace std::chrono_literals;

/// Keeps what it is told.
class Reports : public IUncaughtExceptions {
  public:
    using Interfaces = InterfaceList<IUncaughtExceptions>;

    void uncaught(IExceptionObject* failure, const wstring& where) override {
        const std::lock_guard guard(lock);
        all.emplace_back(where, failure->exception().description());
    }

    std::mutex lock;
    std::vector<std::pair<wstring, wstring>> all;
};

TEST(Thread, TakesOverProcessAndLocaleAndHasAName) {
    host::HostProcess process;
    Thread::setResourceLocale(Locale("ru"));
    EXPECT_EQ(Thread::currentName(), u"");
    Thread thread(u"import", [&] {
        EXPECT_EQ(current_process(), process.get());
        EXPECT_EQ(Thread::getResourceLocale(), Locale("ru"));
        EXPECT_EQ(Thread::currentName(), u"import");
        Thread::setResourceLocale(Locale("en")); // its own
    });
    EXPECT_TRUE(thread.join(10s));
    EXPECT_TRUE(thread.join(0ms) && thread.finished()); // once more
    EXPECT_EQ(thread.name(), u"import");
    EXPECT_EQ(Thread::getResourceLocale(), Locale("ru"));
    Thread::setResourceLocale(Locale());
    EXPECT_EQ(Thread::getResourceLocale(), core::current_settings().locale);

    Thread none;
    EXPECT_TRUE(none.finished() && none.join(0ms));
    none.stop();
    none = Thread(u"", [] {});
    EXPECT_TRUE(none.join());
}

TEST(Thread, JoinWaitsNoLongerThanItIsTold) {
    ISemaphoreImpl go;
    Thread thread(u"waits", [&] { go.wait(kForever); });
    EXPECT_FALSE(thread.join(0ms));
    EXPECT_FALSE(thread.join(20ms));
    EXPECT_FALSE(thread.finished());
    go.signal();
    EXPECT_TRUE(thread.join(10s));
    Thread* itself = nullptr;
    Thread self(u"self", [&] {
        go.wait(kForever);
        EXPECT_THROW(itself->join(), ThreadException);
    });
    itself = &self;
    go.signal();
    EXPECT_TRUE(self.join());
}

TEST(Thread, AStopEndsEveryWaitThatMayBeEnded) {
    const host::HostProcess process;
    ISemaphoreImpl never;
    IMutexImpl mutex;
    IRWMutexSimpleImpl rwMutex;
    const std::lock_guard guard(mutex);
    const WriteLock writing(rwMutex);
    Thread sleeper(u"sleeper", [&] { never.wait(kForever); });
    const std::vector<std::function<void()>> waits = {
        [&] { Thread::sleep(1h); },
        [&] { never.wait(kForever); },
        [&] { mutex.tryLockFor(kForever); },
        [&] { rwMutex.tryLockReadFor(kForever); },
        [&] { rwMutex.tryLockWriteFor(kForever); },
        [&] { sleeper.join(); },
        [&] {
            static_cast<void>(wait_any({never, mutex, reading(rwMutex)}));
        },
        [&] {
            static_cast<void>(wait_all({never, mutex}));
        },
        [&] {
            for (;;)
                Thread::check();
        },
    };
    for (const auto& wait : waits) {
        for (const auto before : {0ms, 20ms}) { // before it waits, perhaps, and while it does
            std::atomic<bool> died = false;
            Thread thread(u"stopped", [&](const StopToken& stop) {
                try {
                    wait();
                } catch (const ThreadDeath&) {
                    died = true;
                    EXPECT_TRUE(stop.requested());
                    EXPECT_THROW(stop.check(), ThreadDeath);
                    EXPECT_THROW(Thread::sleep(0), ThreadDeath); // the next one ends, too
                    throw;
                }
            });
            std::this_thread::sleep_for(before);
            thread.stop();
            EXPECT_TRUE(thread.join(10s));
            EXPECT_TRUE(died);
        }
    }
    Thread::check(); // nobody stops this thread
}

TEST(Thread, AStopLeavesDestructorsAndUntimedLocksAlone) {
    IMutexImpl mutex;
    ISemaphoreImpl held;
    std::atomic<int> steps = 0;
    mutex.lock();
    Thread thread(u"cleans up", [&] {
        struct CleansUp {
            ISemaphoreImpl& held;
            std::atomic<int>& steps;
            ~CleansUp() {
                held.wait(5ms); // while ThreadDeath is on its way
                ++steps;
            }
        };
        held.signal();
        const std::lock_guard guard(mutex);
        ++steps;
        const CleansUp cleansUp{held, steps};
        Thread::sleep(1h);
    });
    held.wait(kForever);
    thread.stop();
    EXPECT_FALSE(thread.join(20ms)); // it waits for the mutex still
    mutex.unlock();
    EXPECT_TRUE(thread.join(10s));
    EXPECT_EQ(steps, 2);
}

TEST(Thread, WhatEscapesItIsReportedAndThreadDeathIsNot) {
    host::HostProcess process;
    const auto reports = make_object<Reports>();
    process.offerService(IUncaughtExceptions::IID, static_cast<IUncaughtExceptions*>(reports.get()));
    Thread(u"failing", [] { throw std::runtime_error("broken"); }).join();
    Thread(u"odd", [] { throw 5; }).join();
    Thread(u"stopped", [](const StopToken&) { throw ThreadDeath(); }).join();
    ASSERT_EQ(reports->all.size(), 2U);
    EXPECT_EQ(reports->all[0].first, u"failing");
    EXPECT_NE(reports->all[0].second.find(u"broken"), wstring::npos);
    EXPECT_EQ(reports->all[1].first, u"odd");
}

/// Lets go of something when it goes.
class Holder : public IRunnable {
  public:
    using Interfaces = InterfaceList<IRunnable>;
    explicit Holder(std::atomic<SCOM_Process*>& gone) : gone_(gone) {}
    ~Holder() { gone_ = current_process(); }
    void run(const StopToken& stop) override {
        while (!stop.requested())
            std::this_thread::yield();
    }

  private:
    std::atomic<SCOM_Process*>& gone_;
};

TEST(Thread, IsAComponent) {
    const host::HostProcess process;
    std::atomic<SCOM_Process*> gone = nullptr;
    auto thread = create_object<IThread>(kThreadClass);
    ASSERT_TRUE(thread);
    EXPECT_TRUE(thread->finished() && thread->join(0ms));
    thread->start(u"work", make_object<Holder>(gone).get());
    EXPECT_EQ(thread->name(), u"work");
    EXPECT_THROW(thread->start(u"more", make_object<Holder>(gone).get()), ThreadException);
    EXPECT_FALSE(thread->join(10ms));
    EXPECT_EQ(wait_any({*thread}, 10ms), std::nullopt);
    thread.reset();                 // stops it
    EXPECT_EQ(gone, process.get()); // the work went in the process that it was made for
    for (const GUID& clsid : {kMutexClass, kRWMutexClass, kSemaphoreClass, kOneTimeSemaphoreClass})
        EXPECT_TRUE(create_object<IUnknown>(clsid));
    const auto semaphore = create_object<ISemaphore>(kOneTimeSemaphoreClass);
    semaphore->signal();
    EXPECT_TRUE(semaphore->wait(0ms) && semaphore->wait(0ms));
    const auto mutex = create_object<IMutex>(kMutexClass);
    EXPECT_TRUE(mutex->tryLock() && create_object<IRWMutex>(kRWMutexClass));
    mutex->unlock();
}

TEST(Thread, MayDestroyItself) {
    std::atomic<bool> done = false;
    auto thread = std::make_unique<Thread>();
    ISemaphoreImpl go;
    *thread = Thread(u"self", [&] {
        go.wait(kForever);
        thread.reset();
        done = true;
    });
    go.signal();
    while (!done)
        std::this_thread::yield();
}

TEST(Thread, AProcessEndsAfterItsThreads) {
    std::atomic<int> ended = 0;
    std::vector<Thread> threads;
    {
        host::HostProcess process;
        threads.emplace_back(u"outer", [&](const StopToken& stop) {
            Thread inner(u"inner", [&] {
                while (true)
                    Thread::sleep(1h);
            });
            while (!stop.requested())
                std::this_thread::yield();
            std::this_thread::sleep_for(20ms);
            EXPECT_NE(current_process(), nullptr);
            ++ended;
        });
        std::this_thread::sleep_for(10ms);
    }
    EXPECT_EQ(ended, 1);
    EXPECT_TRUE(threads.front().finished());
}

TEST(Thread, AThousandComeAndGo) {
    const host::HostProcess process;
    std::atomic<int> ran = 0;
    std::size_t before = 0;
    for (int i = 0; i < 250; ++i) {
        if (i == 50) // what is made once is made by then
            before = test::bytes_in_use();
        std::vector<Thread> threads;
        for (int k = 0; k < 4; ++k)
            threads.emplace_back(u"brief", [&] {
                IMutexImpl mutex;
                const std::lock_guard guard(mutex);
                ++ran;
            });
        for (Thread& thread : threads)
            thread.join();
    }
    EXPECT_EQ(ran, 1000);
    EXPECT_LT(test::bytes_in_use(), before + (std::size_t{1} << 16));
}

TEST(StopToken, TellsWhatItsSourceAsksFor) {
    StopSource source;
    const StopToken token = source.token();
    EXPECT_FALSE(token.requested() || StopToken().requested());
    token.check();
    const StopSource copy = source;
    source.request();
    EXPECT_TRUE(token.requested() && copy.token().requested());
    EXPECT_THROW(token.check(), ThreadDeath);
    StopToken().check();
}

} // namespace
