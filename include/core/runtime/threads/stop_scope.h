// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/threads/stop_token.h>

namespace core {

/// Lets a token stop what the calling thread does: while the scope lives, Thread::check() and the thread's
/// waits throw ThreadDeath once the token asks for a stop. Long work in the library checks many times a
/// second, so that it can be stopped also where no token can be handed to it, as in a call from a script.
/// Scopes stand inside each other on one thread, and each token counts.
class CORE_API StopScope {
  public:
    /// Begins the scope. Throws std::bad_alloc.
    explicit StopScope(StopToken token);
    StopScope(const StopScope&) = delete;
    StopScope& operator=(const StopScope&) = delete;
    /// Ends the scope, on the thread that began it.
    ~StopScope();

    /// Returns whether the token of this scope, or of one around it, asks for a stop.
    [[nodiscard]] bool requested() const noexcept;

  private:
    StopToken token_;
    const StopScope* around_;
};

} // namespace core
