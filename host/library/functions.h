// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/terminal/console.h"

#include <core/context/context_def.h>

namespace host::script {

/// What scripts call without an object in front: printing, text forms, files, dates, and the everyday
/// functions of texts and numbers. `console`, where Print writes, must outlive the result.
[[nodiscard]] core::InterfacePtr<core::IContext_> create_host_functions(Console& console);

/// Everything that a script finds without an object in front, as one context: these
/// functions, those of tables, the global context of the library, and the enumerations by
/// name. `console` must outlive the result.
[[nodiscard]] core::InterfacePtr<core::IContext_> create_globals(Console& console);

} // namespace host::script
