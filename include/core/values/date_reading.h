// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/value.h>

#include <optional>

namespace core {

/// Returns the date that a value is read as: by its own reading (IValue::getDate), and for a text of eight
/// digits also as a day, as in 20240229. Nothing for a value that is not a date. Throws std::bad_alloc.
[[nodiscard]] CORE_API std::optional<Date> date_reading(const Value& value);

} // namespace core
