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

// Growing pauses. Other threads of the processor come first.
constexpr int kYields = 8;
constexpr int kPart = 8;
constexpr std::chrono::microseconds kShortest = 50us;
constexpr std::chrono::microseconds kLongest = 2ms;

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
        if (asked_ < kYields) {
            ++asked_;
            std::this_thread::yield();
            return true;
        }
        const auto part = std::clamp(waited_ / kPart, kShortest, kLongest);
        waited_ += part;
        if (part < 1ms) {
            std::this_thread::sleep_for(part);
            return true;
        }
        pause = std::chrono::duration_cast<std::chrono::milliseconds>(part);
    }
    if (slept_ >= kTime || universal_now() > deadline_)
        return false;
    Thread::sleep(pause);
    slept_ += pause;
    return true;
}

} // namespace core
