// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/library/surroundings.h"

#include <core/context/context_def.h>

namespace core::script {

/// What scripts call to bring tables in and out, and to print them. `surroundings` must outlive the result.
[[nodiscard]] InterfacePtr<IContext_> create_table_functions(const Surroundings& surroundings);

} // namespace core::script
