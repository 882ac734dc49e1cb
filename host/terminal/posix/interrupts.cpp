// SPDX-License-Identifier: Apache-2.0
#include "host/terminal/interrupts.h"

#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>

namespace host {
namespace {

constexpr int kInterrupted = 130;
constexpr std::array kSignals{SIGINT, SIGTERM, SIGHUP};

std::atomic<int> come{0}; // the signal
std::atomic<bool> asked{false};
std::atomic<core::script::Engine*> running{nullptr};

void note(int signal) {
    if (come.exchange(signal) != 0)
        ::_exit(kInterrupted);
    asked = true;
    if (core::script::Engine* const engine = running.load(); engine != nullptr)
        engine->interrupt();
}

} // namespace

struct Interrupts::Before {
    std::array<struct sigaction, kSignals.size()> actions{};
};

Interrupts::Interrupts(core::script::Engine* engine) : before_(std::make_unique<Before>()) {
    come = 0;
    asked = false;
    running = engine;
    struct sigaction action {};
    action.sa_handler = &note;
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        ::sigaction(kSignals[i], &action, &before_->actions[i]);
        if (before_->actions[i].sa_handler == SIG_IGN) // who started the program wants it to go on
            ::sigaction(kSignals[i], &before_->actions[i], nullptr);
    }
}

Interrupts::~Interrupts() {
    for (std::size_t i = 0; i < kSignals.size(); ++i)
        ::sigaction(kSignals[i], &before_->actions[i], nullptr);
    running = nullptr;
}

void Interrupts::check() const {
    if (come != 0)
        throw Interrupted();
}

core::StopToken Interrupts::token() const {
    return core::StopToken({std::shared_ptr<void>(), &asked});
}

bool Interrupts::asksForEnd() const noexcept {
    return come != 0 && come != SIGINT;
}

} // namespace host
