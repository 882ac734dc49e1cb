// SPDX-License-Identifier: Apache-2.0
#include "core/storage/patience.h"

#include <core/files/file_time.h>
#include <core/runtime/threads/thread.h>

#include <algorithm>
#include <thread>

namespace core {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::seconds kTime = 20s;
constexpr std::chrono::milliseconds kPause = 20ms;
constexpr std::chrono::milliseconds kLongest = 2ms;

// Growing pauses: other threads of the processor come first, then from 50 microseconds each is twice as long
// as the one before.
constexpr int kYields = 8;
constexpr int kShort = 5;

} // namespace

Patience::Patience(Pauses pauses) : pauses_(pauses) {
    renew();
}

void Patience::renew() {
    deadline_ = universal_now() + DateSpan(kTime.count() * kTicksPerSecond);
    slept_ = 0ms;
}

bool Patience::sleep() {
    std::chrono::milliseconds pause = kPause;
    if (pauses_ == Pauses::growing) {
        const int turn = asked_++;
        if (turn < kYields) {
            std::this_thread::yield();
            return true;
        }
        if (turn < kYields + kShort) {
            std::this_thread::sleep_for(50us * (1 << (turn - kYields)));
            return true;
        }
        pause = kLongest;
    }
    if (slept_ >= kTime || universal_now() > deadline_)
        return false;
    Thread::sleep(pause);
    slept_ += pause;
    return true;
}

} // namespace core
