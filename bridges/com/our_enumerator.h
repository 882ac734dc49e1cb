// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridges/com/ole.h"

#include <core/context/iteration.h>

namespace core::com {

/// Returns a walk over a collection of ours as for-each of other languages makes it, an IEnumVARIANT.
[[nodiscard]] ComPtr<::IUnknown> our_enumerator(InterfacePtr<IValueCollection> collection);

} // namespace core::com
