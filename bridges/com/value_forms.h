// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridges/com/values.h"

#include <charconv>
#include <string_view>

namespace core::com {

/// The shortest decimal that reads back to a number of a type.
template <class T>
Numeric shortest(T number) {
    char text[400];
    const auto end = std::to_chars(text, text + sizeof text, number, std::chars_format::fixed).ptr;
    return *Numeric::parse(std::string_view(text, end));
}

/// Throws COMException: a value has no exact form as a type.
[[noreturn]] void refuse(const Value& value, VARTYPE type);

} // namespace core::com
