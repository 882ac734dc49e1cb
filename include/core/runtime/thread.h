// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/locale.h>

#include <chrono>

namespace core {

/// The calling thread.
class CORE_API Thread {
  public:
    /// The locale of the messages shown to this thread's user. Until one is set, that
    /// of the process's settings.
    [[nodiscard]] static Locale getResourceLocale();
    static void setResourceLocale(const Locale& locale);

    /// Waits, by the library's clock.
    static void sleep(std::chrono::milliseconds time);
    static void sleep(std::int64_t milliseconds) { sleep(std::chrono::milliseconds(milliseconds)); }
};

} // namespace core
