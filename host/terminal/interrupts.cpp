// SPDX-License-Identifier: Apache-2.0
#include "host/terminal/interrupts.h"

namespace host {
namespace {

volatile std::sig_atomic_t come = 0;

} // namespace

Interrupts::Interrupts() {
    come = 0;
    struct sigaction note {};
    note.sa_handler = [](int) { come = 1; };
    note.sa_flags = static_cast<int>(SA_RESETHAND);
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        ::sigaction(kSignals[i], &note, &before_[i]);
        if (before_[i].sa_handler == SIG_IGN) // who started the program wants it to go on
            ::sigaction(kSignals[i], &before_[i], nullptr);
    }
}

Interrupts::~Interrupts() {
    for (std::size_t i = 0; i < kSignals.size(); ++i)
        ::sigaction(kSignals[i], &before_[i], nullptr);
}

void Interrupts::check() const {
    if (come != 0)
        throw Interrupted();
}

} // namespace host
