// SPDX-License-Identifier: Apache-2.0
#include <core/runtime.h>
#include <core/runtime/errors.h>
#include <host/host_process.h>

#include <gtest/gtest.h>
#include <pthread.h>

#include <vector>

namespace core {
namespace {

TEST(ProcessSlots, ThreadSlotsThatRunOutFailTheAttachAndLeaveNothing) {
    std::vector<pthread_key_t> keys;
    for (pthread_key_t key = 0; pthread_key_create(&key, nullptr) == 0;)
        keys.push_back(key);
    for (int left = 0; left < 3; ++left) {
        try {
            const LibraryScope library;
            ADD_FAILURE() << "attached with " << left;
        } catch (const ProcessInitException& e) {
            EXPECT_STREQ(e.messageId(), messages::kThreadSlots);
        }
        EXPECT_TRUE(core_module().classTable().empty());
        pthread_key_delete(keys.back());
        keys.pop_back();
    }
    { const host::HostProcess process; }
    pthread_key_t key = 0;
    for (int i = 0; i < 3; ++i) {
        ASSERT_EQ(pthread_key_create(&key, nullptr), 0) << "all three slots are given back";
        keys.push_back(key);
    }
    for (const pthread_key_t one : keys)
        pthread_key_delete(one);
}

} // namespace
} // namespace core
