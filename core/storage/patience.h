// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/dates/date.h>

#include <chrono>

namespace core {

/// The waiting for something that is asked for again and again: how long to sleep in between, and when to
/// give up. It ends after 20 seconds by the clock or 20 seconds of sleep, whichever comes first: a clock that
/// is set back does not make it endless.
class Patience {
  public:
    enum class Pauses {
        steady, ///< 20 milliseconds each
        /// an eighth of the time waited so far, from 50 microseconds to 2 milliseconds: what is waited for
        /// may be there at once, and who comes late comes late by a small part of the wait
        growing
    };

    explicit Patience(Pauses pauses);

    /// Sleeps until it is worth asking again. False, at once, when it is time to give up. Throws ThreadDeath.
    [[nodiscard]] bool sleep();
    /// Begins the 20 seconds again.
    void renew();
    /// The next pause is a short one again: what is waited for now is another thing.
    void restart() noexcept {
        asked_ = 0;
        waited_ = std::chrono::microseconds(0);
    }

  private:
    const Pauses pauses_;
    int asked_ = 0;
    std::chrono::microseconds waited_{0}; // in growing pauses
    Date deadline_;
    std::chrono::milliseconds slept_{0};
};

} // namespace core
