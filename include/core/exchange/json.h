// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/threads/stop_token.h>
#include <core/streams/text_reader.h>
#include <core/tables/table.h>
#include <core/values/generic_value.h>

#include <string>
#include <string_view>

/// JSON and values: numbers exact, members in their order.
namespace core {

/// What objects of JSON become.
enum class Objects : unsigned char {
    structures, ///< a Structure where all names are names to the library, too; else a Map
    maps        ///< always a Map
};

/// Returns the value of a JSON text: null is Undefined, an array an Array. Throws ContextException for
/// malformed text, with its place, and for nesting deeper than values may have.
[[nodiscard]] CORE_API GenericValue from_json(std::string_view text, Objects objects = Objects::structures);
/// Returns the values of a text in JSON Lines, each line one JSON text, as an Array; blank lines are skipped.
/// Throws as from_json() does, with the line in the whole text.
[[nodiscard]] CORE_API GenericValue from_json_lines(std::string_view text,
                                                    Objects objects = Objects::structures);

/// Returns the JSON text of a value: Undefined and Null are null, a Date is an ISO 8601 string, a Structure
/// and a Map are objects, a value table, tree or list an array of its rows or items, which are objects, any
/// other collection an array of its elements, any other object its presentation. With `indent` above 0, on
/// many lines. Throws ContextException for nesting deeper than values may have, and for two keys of a map
/// that would be one name.
[[nodiscard]] CORE_API std::string to_json(const GenericValue& value, int indent = 0);
/// Returns the elements of a collection, or the rows of a table, as JSON Lines: each on a line of its own,
/// any other value on one line. Throws as to_json() does.
[[nodiscard]] CORE_API std::string to_json_lines(const GenericValue& value);

/// How JSON becomes a table.
struct JsonTableOptions {
    /// Columns by name, each with or without its type: "Day Date, Price Number(10,2)". They stand first; the
    /// others follow in the order of their first appearance, of the type that all their values have.
    wstring columns{};
    Losses* losses = nullptr; ///< receives what does not fit; null: reading throws when something does not
    StopToken stop{};         ///< is asked at each row; ThreadDeath ends reading
};

/// Returns the table of a text that is an array of objects, or JSON Lines of objects: a row an object, a
/// column a name. A member that is not there is Undefined. Names become valid as those of read_csv() do. A
/// text in a column of dates is read in the ISO forms. Messages call the text `name`. Throws as from_json()
/// does, ContextException ("IDS_JSON_NO_TABLE") for elements that are not objects, and ConversionException.
[[nodiscard]] CORE_API Table read_json_table(std::string_view text, wstring_view name = {},
                                             const JsonTableOptions& options = {});
/// Returns the table in a file in UTF-8, a path or a URL. Throws as read_json_table() does, and
/// FileException.
[[nodiscard]] CORE_API Table load_json_table(std::string_view file, const JsonTableOptions& options = {});

} // namespace core
