// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/errors.h>

/// The failures that all collections share; each travels in a ContextException.
namespace core {

namespace messages {

/// A key of a structure is not a name; {0} is the key.
inline constexpr const char* kBadKey = "IDS_VS_BADPROPNAME_ERROR";

/// A map or a structure has no such key; {0} is the presentation of the key.
inline constexpr const char* kNoKey = "IDS_COLLECTION_NO_KEY";

} // namespace messages

/// Returns the message of kBadIndex: there is no element with that index.
[[nodiscard]] CORE_API wstring collect_error_bad_index();
/// Returns the message of kBadOffset: the move would take an element out of the collection.
[[nodiscard]] CORE_API wstring collect_error_bad_offset();

} // namespace core
