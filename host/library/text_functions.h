// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def.h>

namespace core::script {

/// What scripts call to search texts, take them apart and put them together, regular expressions among it.
[[nodiscard]] InterfacePtr<IContext_> create_text_functions();

} // namespace core::script
