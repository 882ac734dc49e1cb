// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/types/type_domain.h>

/// A type description as a script value, "TypeDescription". It never changes, and is equal to every other one
/// of equal types and qualifiers.
///
/// A script makes one from the types (their names in a String with commas between, one Type, or a collection
/// of Types; none admits every value) and optional qualifiers of Number, String and Date.
namespace core {

/// The type id of "TypeDescription".
inline constexpr GUID kTypeDescriptionType = "64bcd8e6-250c-426b-8e55-53e7cc7dfa3e"_guid;

/// Returns a new "TypeDescription". Throws std::bad_alloc.
[[nodiscard]] CORE_API GenericValue create_type_description(TypeDomain domain);
/// Returns the description that a "TypeDescription" holds, borrowed from it; null for any other value.
[[nodiscard]] CORE_API const TypeDomain* type_domain_of(const Value& value) noexcept;

} // namespace core
