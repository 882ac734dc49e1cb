// SPDX-License-Identifier: Apache-2.0
#include <core/context/events/event.h>

#include <gtest/gtest.h>
#include <pthread.h>

#include <thread>

namespace core {
namespace {

constexpr const EventNames& kChanged = named<u"Changed", u"ПриИзменении">;

TEST(CancelledThread, EndsInASinkOfAnEvent) {
    std::thread([] {
        Event<> event(kChanged);
        const Connection kept = event.connect([] {
            pthread_cancel(pthread_self());
            pthread_testcancel();
        });
        event.raise();
        ADD_FAILURE() << "the thread goes on";
    }).join();
}

} // namespace
} // namespace core
