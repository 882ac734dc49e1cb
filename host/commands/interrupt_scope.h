// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/language/interpreter.h"

#include <csignal>

namespace host::script {

/// While it lives, Ctrl-C ends the script that an interpreter runs rather than the program, so that files are
/// closed and the error says where it stood. One at a time.
class InterruptScope {
  public:
    explicit InterruptScope(Interpreter& interpreter) {
        running_ = &interpreter;
        before_ = std::signal(SIGINT, [](int) { running_.load()->interrupt(); });
    }
    InterruptScope(const InterruptScope&) = delete;
    InterruptScope& operator=(const InterruptScope&) = delete;
    ~InterruptScope() { std::signal(SIGINT, before_); }

  private:
    static inline std::atomic<Interpreter*> running_{nullptr};
    void (*before_)(int);
};

} // namespace host::script
