// SPDX-License-Identifier: Apache-2.0
// Locks by name, within one process.
#include <core/runtime/random.h>
#include <core/runtime/threads/errors.h>
#include <core/runtime/threads/named_lock.h>
#include <core/runtime/threads/thread.h>

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace {

using namespace core;
using namespace std::chrono_literals;

TEST(NamedMutex, IsHeldByOneThread) {
    const wstring name = to_string(new_guid());
    NamedMutex mutex(name);
    EXPECT_EQ(mutex.lock(), NamedLockResult::locked);
    EXPECT_THROW(static_cast<void>(mutex.tryLock()), ThreadException);
    std::thread([&] {
        NamedMutex same(name);
        EXPECT_EQ(same.tryLock(), NamedLockResult::timedOut);
        EXPECT_EQ(same.tryLockFor(30ms), NamedLockResult::timedOut);
        EXPECT_THROW(same.unlock(), ThreadException);
    }).join();
    Thread waiting(u"waiting", [&] { static_cast<void>(NamedMutex(name).tryLockFor(kForever)); });
    EXPECT_FALSE(waiting.join(30ms));
    waiting.stop();
    EXPECT_TRUE(waiting.join(10s));
    mutex.unlock();
    EXPECT_THROW(mutex.unlock(), ThreadException);
    std::thread([&] { EXPECT_EQ(NamedMutex(name).tryLock(), NamedLockResult::locked); }).join();
    EXPECT_EQ(mutex.tryLock(), NamedLockResult::locked) << "which the end of an object unlocks";
}

TEST(NamedSemaphore, CountsSignalsOfAllItsObjects) {
    const wstring name = to_string(new_guid());
    NamedSemaphore semaphore(name, 2);
    NamedSemaphore same(name, 7); // it is there already
    EXPECT_TRUE(same.wait(0ms));
    EXPECT_TRUE(semaphore.wait());
    EXPECT_FALSE(semaphore.wait(30ms));
    std::thread([&] { same.signal(); }).join();
    EXPECT_TRUE(semaphore.wait(10s));
    Thread waiting(u"waiting", [&] { static_cast<void>(semaphore.wait()); });
    EXPECT_FALSE(waiting.join(30ms));
    waiting.stop();
    EXPECT_TRUE(waiting.join(10s));
    EXPECT_THROW(NamedMutex mutex(name), ThreadException); // it is another kind of lock
}

TEST(NamedLock, ANameMayBeAnythingThatFits) {
    const wstring longest(150, u'a');
    for (const wstring& name :
         {wstring(u".."), wstring(u"Блокировка/1"), wstring(u"a%b~c d\n"), wstring(u"😀"), longest}) {
        NamedMutex first(name), second(name);
        EXPECT_EQ(first.lock(), NamedLockResult::locked);
        EXPECT_THROW(static_cast<void>(second.tryLock()), ThreadException); // it is the same
    }
    for (const wstring& name : {wstring(), longest + u'a', wstring(1, wchar{0xD800})})
        EXPECT_THROW(NamedMutex mutex(name), ThreadException);
}

} // namespace
