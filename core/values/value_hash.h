// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/strings/table_hash.h"

#include <core/values/value.h>

namespace core {

/// The hash by which tables in memory find values (see table_hash.h): equal values have equal ones. Never 0.
/// That of a String is computed once.
///
/// An odd hash is exact: it belongs to a whole number or a date, and no other value of that kind has it.
[[nodiscard]] CORE_API std::uint64_t value_table_hash(const Value& value) noexcept;
/// That of a String with this text.
[[nodiscard]] std::uint64_t text_table_hash(wstring_view text) noexcept;

/// The hash by which tables find names without regard to case. Even, never 0.
[[nodiscard]] std::uint64_t name_table_hash(wstring_view name) noexcept;
/// That of a String that is a valid name, computed once; 0 for every other value.
[[nodiscard]] std::uint64_t name_table_hash(const Value& value) noexcept;

/// Whether two values with the same hash are equal. Touches neither of their objects where the hash tells.
[[nodiscard]] inline bool equal_by_table_hash(std::uint64_t hash, const Value& a, const Value& b) noexcept {
    const bool exact = (hash & 1) != 0 && a.kind() == b.kind() && !a.isObject();
    return exact || a.equals(b);
}

} // namespace core
