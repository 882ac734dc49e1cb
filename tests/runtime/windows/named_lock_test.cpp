// SPDX-License-Identifier: Apache-2.0
#include <core/runtime/random.h>
#include <core/runtime/threads/named_lock.h>

#include <gtest/gtest.h>

#include <memory>
#include <thread>

using namespace core;

TEST(NamedMutex, TheNextOneIsToldWhenTheThreadThatHeldItEnded) {
    const wstring name = to_string(new_guid());
    NamedMutex mutex(name);
    auto left = std::make_unique<NamedMutex>(name);
    std::thread([&] { EXPECT_EQ(left->lock(), NamedLockResult::locked); }).join();
    EXPECT_EQ(mutex.tryLock(), NamedLockResult::abandoned);
    mutex.unlock();
    EXPECT_EQ(mutex.tryLock(), NamedLockResult::locked) << "told once";
}
