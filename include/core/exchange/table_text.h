// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/types/type_domain.h>
#include <core/values/value.h>

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Tables as text: for people, columns aligned by what a terminal shows; for pages, Markdown and HTML.
namespace core {

/// Anything that has rows to show. Its cells belong to the caller that walks it.
struct TableView {
    /// What stands above a column, and how wide the column is.
    struct Column {
        wstring title;         ///< the text above the column
        std::size_t width = 0; ///< that the column is to have on a terminal; 0 for what it needs
        TypeDomain domain{};   ///< of the cells: it says how many digits of a number are shown
    };
    /// What is called for each row: its cells, and how many rows it is below. False ends the walk.
    using Show = std::function<bool(std::span<const Value> cells, std::size_t level)>;

    std::vector<Column> columns;           ///< from left to right
    std::size_t rows = 0;                  ///< how many rows there are
    std::function<void(const Show&)> walk; ///< over all rows, again and again the same ones
};

/// Writes the titles, the rows, and how many they are, in UTF-8. Of more than `most` rows the first are
/// shown, and how many are not. No line is longer than `width`; columns that find no place in it are not
/// shown.
CORE_API void print_table(std::ostream& out, const TableView& view, std::size_t width,
                          std::size_t most = std::numeric_limits<std::size_t>::max());

/// Writes the titles and the rows in columns of equal width, each as wide as its longest cell, with two
/// blanks between them: nothing is cut, nothing is added.
CORE_API void write_fixed_width(std::ostream& out, const TableView& view);
/// Writes a Markdown table. What Markdown would read as its own is escaped; a line break becomes "<br>".
CORE_API void write_markdown(std::ostream& out, const TableView& view);
/// Writes an HTML table without anything around it: `<table>`, a row of `<th>`, rows of `<td>`.
CORE_API void write_html(std::ostream& out, const TableView& view);

/// The forms in which a program can be asked to write a table.
enum class TableForm : unsigned char {
    table,    ///< aligned columns for people, as print_table() writes them
    csv,      ///< comma-separated values
    json,     ///< an array of objects
    jsonl,    ///< an object a line
    markdown, ///< a Markdown table
    html,     ///< an HTML table
    list,     ///< a brace list, which reads back as the same object
    fixed     ///< columns of equal width without a cut
};

/// Returns the form with a name: "table", "csv", "json", "jsonl", "markdown", "html", "list" or "fixed";
/// nothing for any other name.
[[nodiscard]] CORE_API std::optional<TableForm> table_form(std::string_view name) noexcept;

} // namespace core
