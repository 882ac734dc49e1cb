// SPDX-License-Identifier: Apache-2.0
// A scope lets a token stop what a thread does: its checks and waits, while the scope lives, on no other
// thread, and not while an exception is on its way.
#include <core/runtime/threads/stop_scope.h>
#include <core/runtime/threads/thread.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

namespace {

using namespace core;

TEST(StopScope, StopsChecksAndWaitsOfItsThreadWhileItLives) {
    StopSource outer, inner;
    EXPECT_NO_THROW(Thread::check());
    {
        const StopScope scope(outer.token());
        {
            const StopScope within(inner.token());
            EXPECT_NO_THROW(Thread::check());
            inner.request();
            EXPECT_THROW(Thread::check(), ThreadDeath);
            EXPECT_THROW(Thread::sleep(0), ThreadDeath);
            std::thread([] { EXPECT_NO_THROW(Thread::check()); }).join();
        }
        EXPECT_NO_THROW(Thread::check()) << "the inner scope has ended";
        outer.request();
        const StopScope within(StopToken{});
        EXPECT_TRUE(within.requested());
        EXPECT_THROW(Thread::check(), ThreadDeath) << "the outer one counts inside of others";
    }
    EXPECT_NO_THROW(Thread::check());
}

TEST(StopScope, LeavesDestructorsAloneThatRunForAnException) {
    struct Checks {
        bool& reached;
        ~Checks() {
            Thread::check();
            reached = true;
        }
    };
    StopSource source;
    source.request();
    bool reached = false;
    try {
        const StopScope scope(source.token());
        const Checks checks{reached};
        throw std::runtime_error("on its way");
    } catch (const std::runtime_error&) {
    }
    EXPECT_TRUE(reached);
}

} // namespace
