// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/types.h>

/// The messages of the failures that all collections share; each travels in a ContextException.
namespace core {

/// "IDS_INDEX_OFFBOUND": there is no element with that index.
[[nodiscard]] CORE_API wstring collect_error_bad_index();
/// "IDS_COLLECTION_BADOFFSET": moving an element that far would take it out of the collection.
[[nodiscard]] CORE_API wstring collect_error_bad_offset();

} // namespace core
