// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def.h>

namespace core::script {

/// What scripts call to sort an array, and to work through a collection by a procedure.
[[nodiscard]] InterfacePtr<IContext_> create_collection_functions();

} // namespace core::script
