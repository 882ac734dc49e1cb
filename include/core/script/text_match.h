// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/generic_value.h>

#include <cstddef>
#include <vector>

/// Where a regular expression matches, as scripts see it.
namespace core::script {

/// Returns a match as a value of the type "TextMatch": the text, its position from 1 in units, and what the
/// groups of the pattern matched, Undefined for those that took no part. Throws std::bad_alloc.
[[nodiscard]] CORE_API GenericValue create_text_match(wstring_view text, std::size_t position,
                                                      std::vector<Value> groups);

} // namespace core::script
