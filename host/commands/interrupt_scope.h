// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/script/engine.h>

#include <atomic>
#include <csignal>

namespace host {

/// While it lives, Ctrl-C ends the script that an engine runs rather than the program, so that files are
/// closed and the error says where it stood. One at a time.
class InterruptScope {
  public:
    explicit InterruptScope(core::script::Engine& engine) {
        running_ = &engine;
        before_ = std::signal(SIGINT, [](int) { running_.load()->interrupt(); });
    }
    InterruptScope(const InterruptScope&) = delete;
    InterruptScope& operator=(const InterruptScope&) = delete;
    ~InterruptScope() { std::signal(SIGINT, before_); }

  private:
    static inline std::atomic<core::script::Engine*> running_{nullptr};
    void (*before_)(int);
};

} // namespace host
