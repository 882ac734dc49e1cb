// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def.h>

namespace core::script {

/// What scripts call to reckon beside the operators. All results are exact.
[[nodiscard]] InterfacePtr<IContext_> create_number_functions();

} // namespace core::script
