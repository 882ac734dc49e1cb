// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/numbers/numeric.h>
#include <core/runtime/shown.h>

#include <functional>

/// Numbers on streams of bytes and as keys of the standard library's tables.
namespace core {

/// Returns the text of Numeric::toString() in ASCII. Throws std::bad_alloc.
[[nodiscard]] CORE_API std::string to_utf8(const Numeric& number);
/// Numbers are written to streams.
template <>
inline constexpr bool kShown<Numeric> = true;

/// Returns a hash; equal numbers have equal ones.
[[nodiscard]] CORE_API std::size_t hash_value(const Numeric& number) noexcept;

} // namespace core

/// The hash of numbers.
template <>
struct std::hash<core::Numeric> {
    /// Returns the hash of a number.
    std::size_t operator()(const core::Numeric& number) const noexcept { return core::hash_value(number); }
};
