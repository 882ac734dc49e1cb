// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/console.h"

#include <core/context/context_def.h>

namespace host::script {

/// What scripts call to bring tables in and out. `console` must outlive the result.
[[nodiscard]] core::InterfacePtr<core::IContext_> create_table_functions(Console& console);

} // namespace host::script
