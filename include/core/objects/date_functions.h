// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def.h>

namespace core {

/// Returns the functions of dates that scripts call without an object in front: the parts of a date, the
/// beginnings and ends of its periods, months later, differences in a unit, and time zones, as Date has them.
/// Throws std::bad_alloc.
[[nodiscard]] CORE_API InterfacePtr<IContext_> create_date_functions();

} // namespace core
