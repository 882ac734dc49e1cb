// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/numbers/numeric.h>
#include <core/runtime/shown.h>

#include <concepts>
#include <functional>

/// Numbers on streams of bytes and as keys of the standard library's tables.
namespace core {

namespace detail {

[[nodiscard]] CORE_API std::string ascii_of(const Numeric& number);

} // namespace detail

/// Returns the text of Numeric::toString() in ASCII. Takes numbers alone, so that nothing else becomes one in
/// order to be written. Throws std::bad_alloc.
template <std::same_as<Numeric> T>
[[nodiscard]] std::string to_utf8(const T& number) {
    return detail::ascii_of(number);
}
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
