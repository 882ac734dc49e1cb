// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <csignal>
#include <exception>

namespace host {

/// The user, or the system, has asked the program to end.
class Interrupted : public std::exception {
  public:
    [[nodiscard]] const char* what() const noexcept override { return "interrupted"; }
};

/// While one lives, Ctrl-C and the signals that ask a program to end wait until the work looks, so that it
/// can clear away what it has begun. A second such signal ends the program at once. One at a time.
class Interrupts {
  public:
    Interrupts();
    ~Interrupts();
    Interrupts(const Interrupts&) = delete;
    Interrupts& operator=(const Interrupts&) = delete;

    /// Throws Interrupted once a signal has come.
    void check() const;

  private:
    static constexpr std::array kSignals{SIGINT, SIGTERM, SIGHUP};

    std::array<struct sigaction, kSignals.size()> before_{};
};

} // namespace host
