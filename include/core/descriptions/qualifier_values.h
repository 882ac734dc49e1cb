// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/objects/enumeration.h>
#include <core/types/qualifiers.h>

/// Qualifiers as script values, "NumberQualifiers", "StringQualifiers" and "DateQualifiers", and the
/// enumerations that name their choices. The values never change and are equal when the qualifiers are.
namespace core {

inline constexpr GUID kNumberQualifiersType = "3ddfbb22-4f12-4b8e-a284-e27feb2e01de"_guid;
inline constexpr GUID kStringQualifiersType = "62b1a33b-901d-48bf-8d27-b42137b0dacc"_guid;
inline constexpr GUID kDateQualifiersType = "c6302d50-d64d-4f3e-bb5d-2ff9ea25a9e6"_guid;

[[nodiscard]] CORE_API GenericValue create_qualifiers_value(const NumericQualifiers& qualifiers);
[[nodiscard]] CORE_API GenericValue create_qualifiers_value(const StringQualifiers& qualifiers);
[[nodiscard]] CORE_API GenericValue create_qualifiers_value(const DateQualifiers& qualifiers);

/// The qualifiers that a value holds, borrowed from it; null when it is any other value.
[[nodiscard]] CORE_API const NumericQualifiers* numeric_qualifiers_of(const Value& value) noexcept;
[[nodiscard]] CORE_API const StringQualifiers* string_qualifiers_of(const Value& value) noexcept;
[[nodiscard]] CORE_API const DateQualifiers* date_qualifiers_of(const Value& value) noexcept;

/// "AllowedSign": 0 any, 1 non-negative.
[[nodiscard]] CORE_API const Enumeration& allowed_sign() noexcept;
/// "AllowedLength": 0 fixed, 1 variable.
[[nodiscard]] CORE_API const Enumeration& allowed_length() noexcept;
/// "DateFractions": the numbers of the C++ enumeration.
[[nodiscard]] CORE_API const Enumeration& date_fractions() noexcept;

} // namespace core
