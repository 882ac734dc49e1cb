// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/threads/stop_token.h>
#include <core/script/engine.h>

#include <exception>
#include <memory>

namespace host {

/// The user, or the system, has asked the program to end.
class Interrupted : public std::exception {
  public:
    [[nodiscard]] const char* what() const noexcept override { return "interrupted"; }
};

/// While one lives, Ctrl-C and the signals that ask a program to end wait until the work looks, so that it
/// can clear away what it has begun; a script, and what it has called, looks by itself. A second such signal
/// ends the program at once, with the code 130. One at a time.
class Interrupts {
  public:
    /// `engine` runs the script that is to stop; null for other work.
    explicit Interrupts(core::script::Engine* engine = nullptr);
    ~Interrupts();
    Interrupts(const Interrupts&) = delete;
    Interrupts& operator=(const Interrupts&) = delete;

    /// Throws Interrupted once a signal has come.
    void check() const;
    /// Asks for a stop once a signal has come; for a StopScope inside of this one's life.
    [[nodiscard]] core::StopToken token() const;
    /// Whether a signal has come that asks the program to end, and not only its work.
    [[nodiscard]] bool asksForEnd() const noexcept;

  private:
    struct Before; // what the system did with them
    std::unique_ptr<Before> before_;
};

} // namespace host
