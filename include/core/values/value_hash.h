// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/strings/table_hash.h>
#include <core/values/value.h>

namespace core {

/// The hash by which tables in memory find values (see table_hash.h): equal values have equal ones. Never 0.
///
/// An odd hash is exact: it belongs to a whole number or a date, and no other value of that kind has it.
[[nodiscard]] CORE_API std::uint64_t value_table_hash(const Value& value) noexcept;

/// Whether two values with the same hash are equal. Touches neither of their objects where the hash tells.
[[nodiscard]] inline bool equal_by_table_hash(std::uint64_t hash, const Value& a, const Value& b) noexcept {
    const bool exact = (hash & 1) != 0 && a.kind() == b.kind() && !a.isObject();
    return exact || a.equals(b);
}

} // namespace core
