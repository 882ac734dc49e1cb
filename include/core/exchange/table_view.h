// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/exchange/table_text.h>
#include <core/values/value.h>

#include <iosfwd>
#include <optional>

namespace core {

/// For whom a table is shown.
enum class ViewFor : unsigned char {
    people,   ///< titles are those that users read
    programs, ///< English names are the titles; a tree has a column Level in front, 0 for topmost rows
};

/// Returns what a value table, a value tree or a value list shows; nothing for any other value. A tree's rows
/// stand below the row that they are below, a list's items as value, presentation and check mark. The view
/// keeps the value alive; it is to be used before the value changes.
[[nodiscard]] CORE_API std::optional<TableView> table_view(const Value& value,
                                                           ViewFor whom = ViewFor::people);

/// Writes a value table, tree or list in a form, in UTF-8; of a form for people at most `most` rows and
/// `width` columns of text are shown. Throws ContextException ("IDS_PARAMETER_N_TYPE_MISMATCH") for any other
/// value, and what the form throws.
CORE_API void write_table(std::ostream& out, const Value& table, TableForm form, std::size_t width,
                          std::size_t most = std::numeric_limits<std::size_t>::max());

} // namespace core
