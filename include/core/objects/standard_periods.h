// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/dates/standard_period.h>
#include <core/objects/native_enumeration.h>

/// Standard periods and beginning dates as values: `New StandardPeriod(StandardPeriodVariant.ThisMonth)`,
/// `New StandardPeriod(Begin, End)`, `New
/// StandardBeginningDate(StandardBeginningDateVariant.BeginningOfThisYear)`
/// (`СтандартныйПериод`, `СтандартнаяДатаНачала`). They never change once made, and are equal as the C++
/// types are. docs/periods.md shows them.
namespace core {

inline constexpr GUID kStandardPeriodClass = "b2c4e368-f710-4103-bcb6-2a92f7a30047"_guid;        ///< class id
inline constexpr GUID kStandardPeriodType = "83172b9e-839b-4a4c-a6b8-440f4ac5dde8"_guid;         ///< type id
inline constexpr GUID kStandardBeginningDateClass = "d9a9279d-899e-4c5a-8367-a06ec88a2fa7"_guid; ///< class id
inline constexpr GUID kStandardBeginningDateType = "ae3c2572-cd21-44a6-8411-c3f36a116982"_guid;  ///< type id

/// Returns the enumeration `StandardPeriodVariant`, borrowed for ever.
[[nodiscard]] CORE_API Enumeration* script_enumeration(StandardPeriodVariant) noexcept;
/// Returns the enumeration `StandardBeginningDateVariant`, borrowed for ever.
[[nodiscard]] CORE_API Enumeration* script_enumeration(StandardBeginningDateVariant) noexcept;

/// Returns the period that a value holds, borrowed from the value; null for any other value.
[[nodiscard]] CORE_API const StandardPeriod* as_standard_period(const Value& value) noexcept;
/// Returns the beginning date that a value holds, borrowed from the value; null for any other value.
[[nodiscard]] CORE_API const StandardBeginningDate* as_standard_beginning_date(const Value& value) noexcept;

/// A standard period: a StandardPeriod, or a value of StandardPeriodVariant.
template <>
struct NativeValue<StandardPeriod> {
    /// Returns the period; refuses the type of any other value.
    static CORE_API StandardPeriod from(const Value& value, ValueReceiver receiver);
    /// Returns a StandardPeriod as scripts know it.
    static CORE_API Value to(const StandardPeriod& period);
    /// Returns the id of StandardPeriod.
    static const GUID* type() noexcept { return &kStandardPeriodType; }
};

/// A standard beginning date: a StandardBeginningDate, a value of StandardBeginningDateVariant, or a Date.
template <>
struct NativeValue<StandardBeginningDate> {
    /// Returns the beginning date; refuses the type of any other value.
    static CORE_API StandardBeginningDate from(const Value& value, ValueReceiver receiver);
    /// Returns a StandardBeginningDate as scripts know it.
    static CORE_API Value to(const StandardBeginningDate& date);
    /// Returns the id of StandardBeginningDate.
    static const GUID* type() noexcept { return &kStandardBeginningDateType; }
};

} // namespace core
