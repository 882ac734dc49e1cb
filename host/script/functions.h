// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def.h>

#include <iosfwd>

namespace host::script {

/// What scripts call without an object in front: printing, text forms, files, dates, and the everyday
/// functions of texts and numbers. `out` must outlive the result.
[[nodiscard]] core::InterfacePtr<core::IContext_> create_host_functions(std::ostream& out);

/// Everything that a script finds without an object in front, as one context: the functions of the host, the
/// global context of the library, and the enumerations by name.
[[nodiscard]] core::InterfacePtr<core::IContext_> create_globals(std::ostream& out);

} // namespace host::script
