// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def.h>

namespace core {

/// Returns what scripts find without an object in front to work with containers: a context whose one
/// property, Containers, has the methods Open(File, [ReadOnly]), which opens a container, and Create(File),
/// which makes it if it does not exist. Both take a path or a URL and return a Container. Throws
/// std::bad_alloc.
[[nodiscard]] CORE_API InterfacePtr<IContext_> create_container_functions();

} // namespace core
