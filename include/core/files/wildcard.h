// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/types.h>

namespace core {

/// Whether a file name fits a pattern in which "*" stands for any run of characters and "?" for one; all else
/// stands for itself, in its own case. The time is bounded by the product of the lengths.
[[nodiscard]] CORE_API bool matches_wildcard(wstring_view name, wstring_view pattern) noexcept;

[[nodiscard]] constexpr bool has_wildcard(wstring_view pattern) noexcept {
    return pattern.find_first_of(u"*?") != wstring_view::npos;
}

} // namespace core
