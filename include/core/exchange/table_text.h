// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/types/type_domain.h>
#include <core/values/value.h>

#include <cstddef>
#include <cstdint>
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

/// Where the cells of a column stand. The numbers are stored.
enum class ColumnAlignment : std::int32_t {
    automatic = 0, ///< on the right where all of them are numbers, else on the left
    left = 1,      ///< on the left
    center = 2,    ///< in the middle
    right = 3,     ///< on the right
};

/// Anything that has rows to show. Its cells belong to the caller that walks it.
struct TableView {
    /// What stands above a column, and how wide the column is.
    struct Column {
        wstring title;         ///< the text above the column
        std::size_t width = 0; ///< that the column is to have on a terminal; 0 for what it needs
        TypeDomain domain{};   ///< of the cells: it says how many digits of a number are shown
        ColumnAlignment alignment = ColumnAlignment::automatic; ///< of the title and the cells
        wstring format{}; ///< of the cells, as format_value() takes it; empty for what the domain says

        /// Returns the text of a cell of this column for people. Throws CtorException for a format that does
        /// not suit the cell, and what the cell's presentation throws.
        [[nodiscard]] CORE_API wstring text(const Value& cell) const;
    };
    /// Returns what a terminal is to be told before a cell so that it shows the cell in its look, and nothing
    /// for a cell without one. Rows are counted from 0; kHeader and kTotals stand for those two.
    using Paint = std::function<std::string(std::size_t row, std::size_t column)>;
    static constexpr std::size_t kHeader = std::numeric_limits<std::size_t>::max(); ///< the row of titles
    static constexpr std::size_t kTotals = kHeader - 1;                             ///< the row of totals
    /// What is called for each row: its cells, and how many rows it is below. False ends the walk.
    using Show = std::function<bool(std::span<const Value> cells, std::size_t level)>;

    std::vector<Column> columns;           ///< from left to right
    std::size_t rows = 0;                  ///< how many rows there are
    std::function<void(const Show&)> walk; ///< over all rows, again and again the same ones
    std::vector<wstring> totals{};         ///< a row below the others, as text; empty for none
    Paint paint{};                         ///< for terminals alone; empty for plain text
};

/// Writes the titles, the rows, the totals, and how many rows there are, in UTF-8. Of more than `most` rows
/// the first are shown, and how many are not. No line is longer than `width`; columns that find no place in
/// it are not shown.
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
