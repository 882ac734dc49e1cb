// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def.h>

namespace core {

/// Returns what scripts find without an object in front to work with settings: a context whose one property,
/// Settings, is the profile of the current process. Throws std::bad_alloc.
[[nodiscard]] CORE_API InterfacePtr<IContext_> create_settings_functions();

} // namespace core
