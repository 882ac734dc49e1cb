// SPDX-License-Identifier: Apache-2.0
#include "host/language/watch.h"

#include "host/language/machine.h"
#include "host/language/script_error.h"
#include "host/language/script_exit.h"

#include <core/strings/integer_text.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <span>

namespace core::script {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::int64_t kSlice = 64;            // steps between two looks at the clock
constexpr std::chrono::milliseconds kPause{1}; // between two looks at the memory

} // namespace

void Watch::begin() {
    interrupted_.store(false, std::memory_order_relaxed); // it was meant for the script before
    exit_.reset();
    watching_ = limits_.time.count() != 0 || limits_.memory != 0;
    taken_ = 0;
    if (watching_) {
        start_ = Clock::now();
        nextMemory_ = start_ + kPause;
        memoryAtStart_ = limits_.memory != 0 ? resident_memory() : 0;
    }
    grant();
}

void Watch::grant() noexcept {
    constexpr auto kMost = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    std::uint64_t most = watching_ ? kSlice : kMost;
    if (limits_.steps != 0) // the step behind the last one is to be noticed
        most = std::min(most, limits_.steps - std::min(taken_, limits_.steps) + 1);
    granted_ = fuse_ = static_cast<std::int64_t>(std::min(most, kMost));
}

void Watch::check(Span span) {
    if (interrupted_.exchange(false, std::memory_order_relaxed)) {
        if (exit_)
            throw ScriptExit{*exit_};
        fail_at(span, messages::kScriptInterrupted);
    }
    taken_ += static_cast<std::uint64_t>(granted_ - fuse_);
    granted_ = fuse_;
    if (limits_.steps != 0 && taken_ > limits_.steps)
        fail_at(span, messages::kScriptStepLimit, {string_intto(limits_.steps)});
    if (watching_) {
        const Clock::time_point now = Clock::now();
        if (limits_.time.count() != 0 && now - start_ > limits_.time) {
            const auto most = std::chrono::duration_cast<std::chrono::milliseconds>(limits_.time);
            fail_at(span, messages::kScriptTimeLimit, {string_intto(most.count())});
        }
        checkMemory(span, now);
    }
    grant();
}

void Watch::checkMemory(Span span, Clock::time_point now) {
    if (limits_.memory == 0 || now < nextMemory_)
        return;
    nextMemory_ = now + kPause;
    const std::uint64_t memory = resident_memory();
    if (memory > memoryAtStart_ && memory - memoryAtStart_ > limits_.memory)
        failMemory(span);
}

void Watch::failMemory(Span span) const {
    fail_at(span, messages::kScriptMemoryLimit, {string_intto(limits_.memory)});
}

void Watch::checkDepth(Span span) const {
    if (depth_ >= limits_.depth)
        fail_at(span, messages::kScriptDepthLimit, {string_intto(limits_.depth)});
    requireStack(span);
}

void Watch::requireStack(Span span) const {
    // Asked for once a thread, and only by scripts that nest: it reads a file of the system on the first one.
    thread_local const std::span<const std::byte> reserve = stack_reserve();
    const auto here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
    const auto lowest = reinterpret_cast<std::uintptr_t>(reserve.data());
    if (here - lowest < reserve.size()) // a stack that the program made itself lies elsewhere
        fail_at(span, messages::kScriptNoStack);
}

} // namespace core::script
