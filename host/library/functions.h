// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/library/surroundings.h"

#include <core/context/context_def.h>

namespace core::script {

/// What scripts call without an object in front: printing, text forms, files, dates, and the everyday
/// functions of texts and numbers. `surroundings` must outlive the result.
[[nodiscard]] InterfacePtr<IContext_> create_script_functions(const Surroundings& surroundings);

} // namespace core::script
