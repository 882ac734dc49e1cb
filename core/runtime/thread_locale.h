// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/locale.h>

namespace core::detail {

/// The locale that the calling thread has set for its messages, borrowed; null when it has set none.
[[nodiscard]] const Locale* own_resource_locale() noexcept;
/// The locale of the calling thread's messages: its own, else that of the process's settings.
[[nodiscard]] Locale resource_locale();
/// Sets the calling thread's own; Locale() takes it back.
void set_resource_locale(const Locale& locale);

} // namespace core::detail
