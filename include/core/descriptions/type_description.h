// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/types/type_domain.h>

/// A type description as a script value, "TypeDescription". It never changes, and is equal to every other one
/// of equal types and qualifiers.
///
/// A script makes one from the types (their names in a String with commas between, one Type, or a collection
/// of Types; none admits every value) and optional qualifiers of Number, String and Date.
namespace core {

inline constexpr GUID kTypeDescriptionType = "64bcd8e6-250c-426b-8e55-53e7cc7dfa3e"_guid;

[[nodiscard]] CORE_API GenericValue create_type_description(TypeDomain domain);
/// The description that a value holds, borrowed from it; null when it is any other value.
[[nodiscard]] CORE_API const TypeDomain* type_domain_of(const Value& value) noexcept;

} // namespace core
