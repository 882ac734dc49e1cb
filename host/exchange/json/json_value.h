// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/generic_value.h>

#include <string>
#include <string_view>

/// JSON and values: numbers exact, members in their order.
namespace host {

enum class Objects {
    structures, ///< a Structure where all names are names to the library, too; else a Map
    maps        ///< always a Map
};

/// The value of a JSON text: null is Undefined, an array an Array. ContextException for malformed text, with
/// its place, and for nesting deeper than values may have.
[[nodiscard]] core::GenericValue from_json(std::string_view text, Objects objects = Objects::structures);

/// The JSON text of a value: Undefined and Null are null, a Date is an ISO 8601 string, a Structure and a Map
/// are objects, a value table, tree or list an array of its rows or items, which are objects, any other
/// collection an array of its elements, any other object its presentation. With `indent` above 0, on many
/// lines. ContextException for nesting deeper than values may have.
[[nodiscard]] std::string to_json(const core::GenericValue& value, int indent = 0);

} // namespace host
