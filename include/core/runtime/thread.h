// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/locale.h>

#include <chrono>

namespace core {

/// The calling thread.
class CORE_API Thread {
  public:
    /// Returns the locale of the messages shown to this thread's user. Until one is set, it is the locale of
    /// the process's settings.
    [[nodiscard]] static Locale getResourceLocale();
    /// Sets the locale of the messages shown to this thread's user, until the thread ends.
    static void setResourceLocale(const Locale& locale);

    /// Waits for at least `time`, by the library's clock.
    static void sleep(std::chrono::milliseconds time);
    /// Waits for at least that many milliseconds, by the library's clock.
    static void sleep(std::int64_t milliseconds) { sleep(std::chrono::milliseconds(milliseconds)); }
};

} // namespace core
