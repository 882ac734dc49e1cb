// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/thread_locale.h"

#include "core/runtime/thread_slots.h"

#include <core/runtime/settings.h>

#include <memory>

namespace core::detail {
namespace {

/// The locale of this thread, made when it is first set.
Locale& own_locale() {
    thread_local const auto locale = std::make_unique<Locale>();
    return *locale;
}

} // namespace

const Locale* own_resource_locale() noexcept {
    return static_cast<const Locale*>(thread_slots.locale.get());
}

Locale resource_locale() {
    const Locale* const own = own_resource_locale();
    const Settings& settings = current_settings();
    return own != nullptr ? *own : settings.language == Locale() ? settings.locale : settings.language;
}

void set_resource_locale(const Locale& locale) {
    own_locale() = locale;
    thread_slots.locale.set(locale == Locale() ? nullptr : &own_locale());
}

} // namespace core::detail
