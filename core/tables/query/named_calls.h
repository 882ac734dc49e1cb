// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <vector>

namespace core {

/// A function as a list names it: "Sum(Price) As Total". All parts are borrowed from the list.
struct NamedCall {
    wstring_view text;                   ///< all of it
    wstring_view function;               ///< empty for a name alone
    std::vector<wstring_view> arguments; ///< for a name alone that name
    wstring_view name;                   ///< of the result; empty where none is given
};

/// Reads functions with "," between them. Throws ContextException ("IDS_VT_CALL_MALFORMED") for an item that
/// is neither a name nor a function with its arguments in parentheses, followed or not by As and a name.
[[nodiscard]] std::vector<NamedCall> read_named_calls(wstring_view list);

} // namespace core
