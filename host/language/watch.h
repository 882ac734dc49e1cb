// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/language/source.h"

#include <core/runtime/threads/stop_scope.h>
#include <core/script/engine.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>

namespace core::script {

/// Sees to it that a script stops when it is told to and takes no more than it may. A step costs a decrement
/// and a load; the clock and the memory are looked at now and then only.
class Watch {
  public:
    void setLimits(const Limits& limits) noexcept { limits_ = limits; }
    [[nodiscard]] const Limits& limits() const noexcept { return limits_; }

    /// Stops the script at its next step. Any thread, signal handlers among them.
    void interrupt() noexcept { interrupted_.store(true, std::memory_order_relaxed); }

    /// Makes the script exit with a code at its next step; no effect while none runs.
    void exit(int code) noexcept {
        if (!running())
            return;
        exit_ = code;
        interrupt();
    }
    /// Whether it was told to, and the script has not met its next step since.
    [[nodiscard]] bool isInterrupted() const noexcept { return interrupted_.load(std::memory_order_relaxed); }

    /// One run, which may stand inside another. The outermost one begins to count. While it lives, long work
    /// of the library that the script calls is stopped by interrupt(), with ThreadDeath.
    class Run {
      public:
        explicit Run(Watch& watch) : watch_(watch) {
            if (watch.runs_ == 0) {
                stops_.emplace(StopToken({std::shared_ptr<void>(), &watch.interrupted_}));
                watch.begin();
            }
            ++watch.runs_;
        }
        Run(const Run&) = delete;
        Run& operator=(const Run&) = delete;
        ~Run() { --watch_.runs_; }

      private:
        Watch& watch_;
        std::optional<StopScope> stops_;
    };

    [[nodiscard]] bool running() const noexcept { return runs_ > 0; }
    /// Whether a run stands inside another one.
    [[nodiscard]] bool nested() const noexcept { return runs_ > 1; }

    /// A statement, or a round of a loop. Throws ScriptError when it may not be taken, and ScriptExit.
    void step(Span span) {
        if (--fuse_ <= 0 || interrupted_.load(std::memory_order_relaxed)) [[unlikely]]
            check(span);
    }
    /// Something happened that may have taken time and memory.
    void hurry() noexcept {
        if (watching_ && fuse_ > 1) {
            taken_ += static_cast<std::uint64_t>(granted_ - fuse_);
            granted_ = fuse_ = 1;
        }
    }
    /// Whether a text of so many units may be made.
    void requireRoom(Span span, std::size_t units) const {
        if (limits_.memory != 0 && units > limits_.memory / sizeof(wchar)) [[unlikely]]
            failMemory(span);
    }

    /// One level of nesting while it lives. Throws ScriptError when it lies too deep.
    class Level {
      public:
        Level(Watch& watch, Span span) : depth_(watch.depth_) {
            if (watch.depth_ >= watch.limits_.depth || (watch.depth_ % kStackLevels == kStackLevels - 1))
                [[unlikely]]
                watch.checkDepth(span);
            ++depth_;
        }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;
        ~Level() { --depth_; }

      private:
        int& depth_;
    };
    /// Throws ScriptError when the stack of the thread is nearly used up.
    void requireStack(Span span) const;

  private:
    static constexpr int kStackLevels = 16; // of nesting, from one look at the stack to the next

    void begin();
    void grant() noexcept;
    void check(Span span);
    void checkMemory(Span span, std::chrono::steady_clock::time_point now);
    void checkDepth(Span span) const;
    [[noreturn]] void failMemory(Span span) const;

    Limits limits_;
    std::atomic<bool> interrupted_{false};
    std::optional<int> exit_; // of the thread of the script alone
    int runs_ = 0;
    int depth_ = 0;
    bool watching_ = false;    // the clock or the memory
    std::int64_t fuse_ = 0;    // steps until the next look
    std::int64_t granted_ = 0; // what the fuse began with
    std::uint64_t taken_ = 0;  // steps before that
    std::chrono::steady_clock::time_point start_;
    std::chrono::steady_clock::time_point nextMemory_;
    std::uint64_t memoryAtStart_ = 0;
};

} // namespace core::script
