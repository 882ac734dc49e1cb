// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/table_column.h"

#include <core/exchange/table_view.h>

#include <string>
#include <vector>

namespace core {

/// Appends a text in UTF-8. Throws ConverterException for half of a surrogate pair; `name` is what it calls
/// the text that is written.
void append_strictly(std::string& out, wstring_view text, wstring_view name);

/// Appends a value as every language has it: Undefined and Null as nothing, numbers plain, dates in the ISO
/// form, a midnight without its time, Booleans as True and False, a type by its English name, a collection as
/// JSON, any other value as its presentation. Throws as append_strictly() does.
void append_value(std::string& out, const Value& value, wstring_view name);
/// Returns whether a value is an object whose elements or members can be written as JSON.
[[nodiscard]] bool has_elements(const Value& value);
/// Appends a date as 2024-02-29T13:05:07, with digits of a second behind a point where it has some.
void append_full_date(std::string& out, Date date);
/// Appends a date in the same form, a midnight without its time.
void append_iso_date(std::string& out, Date date);
/// Appends the number `word` × 10^-`scale` without zeros at its end.
void append_number(std::string& out, std::int64_t word, std::uint32_t scale);

} // namespace core
