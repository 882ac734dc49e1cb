// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/objects/enumeration.h>
#include <core/types/qualifiers.h>

/// Qualifiers as script values, "NumberQualifiers", "StringQualifiers" and "DateQualifiers", and the
/// enumerations that name their choices. The values never change and are equal when the qualifiers are.
namespace core {

/// The type id of "NumberQualifiers".
inline constexpr GUID kNumberQualifiersType = "3ddfbb22-4f12-4b8e-a284-e27feb2e01de"_guid;
/// The type id of "StringQualifiers".
inline constexpr GUID kStringQualifiersType = "62b1a33b-901d-48bf-8d27-b42137b0dacc"_guid;
/// The type id of "DateQualifiers".
inline constexpr GUID kDateQualifiersType = "c6302d50-d64d-4f3e-bb5d-2ff9ea25a9e6"_guid;

/// Returns a "NumberQualifiers" with the given qualifiers. Throws std::bad_alloc.
[[nodiscard]] CORE_API GenericValue create_qualifiers_value(const NumericQualifiers& qualifiers);
/// Returns a "StringQualifiers" with the given qualifiers. Throws std::bad_alloc.
[[nodiscard]] CORE_API GenericValue create_qualifiers_value(const StringQualifiers& qualifiers);
/// Returns a "DateQualifiers" with the given qualifiers. Throws std::bad_alloc.
[[nodiscard]] CORE_API GenericValue create_qualifiers_value(const DateQualifiers& qualifiers);

/// Returns the qualifiers that a "NumberQualifiers" holds, borrowed from it; null for any other value.
[[nodiscard]] CORE_API const NumericQualifiers* numeric_qualifiers_of(const Value& value) noexcept;
/// Returns the qualifiers that a "StringQualifiers" holds, borrowed from it; null for any other value.
[[nodiscard]] CORE_API const StringQualifiers* string_qualifiers_of(const Value& value) noexcept;
/// Returns the qualifiers that a "DateQualifiers" holds, borrowed from it; null for any other value.
[[nodiscard]] CORE_API const DateQualifiers* date_qualifiers_of(const Value& value) noexcept;

/// Returns the enumeration "AllowedSign": 0 any, 1 non-negative.
[[nodiscard]] CORE_API const Enumeration& allowed_sign() noexcept;
/// Returns the enumeration "AllowedLength": 0 fixed, 1 variable.
[[nodiscard]] CORE_API const Enumeration& allowed_length() noexcept;
/// Returns the enumeration "DateFractions", with the numbers of the C++ enumeration.
[[nodiscard]] CORE_API const Enumeration& date_fractions() noexcept;

} // namespace core
