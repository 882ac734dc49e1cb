// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def.h>
#include <core/values/ivalue.h>

namespace host::describe {

/// An object of a type that lives inside others only, such as a row: looks through what scripts can make
/// without arguments, the properties of that, and what its method Add returns. Null when none is found.
[[nodiscard]] core::InterfacePtr<core::IContext_> sample_of(const core::IType& type);

} // namespace host::describe
