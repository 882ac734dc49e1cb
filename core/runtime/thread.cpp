// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/thread_slots.h"

#include <core/runtime/clock.h>
#include <core/runtime/settings.h>
#include <core/runtime/thread.h>

#include <memory>

namespace core {
namespace {

/// The locale of this thread, made when it is first set.
Locale& own_locale() {
    thread_local const auto locale = std::make_unique<Locale>();
    return *locale;
}

} // namespace

Locale Thread::getResourceLocale() {
    const auto* const own = static_cast<const Locale*>(detail::thread_slots.locale.get());
    return own != nullptr ? *own : current_settings().locale;
}

void Thread::setResourceLocale(const Locale& locale) {
    own_locale() = locale;
    detail::thread_slots.locale.set(&own_locale());
}

void Thread::sleep(std::chrono::milliseconds time) {
    current_clock().sleep(time);
}

} // namespace core
