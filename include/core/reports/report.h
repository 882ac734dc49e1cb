// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/reports/report_style.h>
#include <core/streams/text_writer.h>

#include <cstddef>
#include <iosfwd>
#include <limits>
#include <optional>
#include <string>

/// Reports: a value table, tree or list in a style, on a terminal and as a page. Of a tree, rules and totals
/// see all rows in one table, with a column Level, 0 for topmost rows. All functions throw ContextException
/// ("IDS_PARAMETER_N_TYPE_MISMATCH") for a value that is not one of the three and
/// ("IDS_VT_UNKNOWN_COLUMN_ERROR") for a style of columns that the table does not have, ExpressionException
/// for a rule or a total that does not suit it, and CtorException for a format that does not.
namespace core {

/// The type id of "Report".
inline constexpr GUID kReportType = "4e440c8f-8b82-42f6-974c-f84231bc2a71"_guid;

/// A table with the style that it is to be shown in.
struct Report {
    Value table{};       ///< a value table, tree or list
    ReportStyle style{}; ///< how it is shown
};

/// How many colours a terminal knows.
enum class TerminalColors : unsigned char {
    none,    ///< no escape sequence is written
    sixteen, ///< those of the first terminals with colours
    indexed, ///< the 256 with numbers
    full,    ///< 8 bits a channel
};

/// Writes a report for a terminal, in UTF-8: the title, and the table as print_table() writes it. Colours
/// and fonts that the style sets are said by escape sequences, as far as the terminal knows them; what it
/// does not set has the terminal's own colours. Throws as said above.
CORE_API void print_report(std::ostream& out, const Report& report, std::size_t width,
                           std::size_t most = std::numeric_limits<std::size_t>::max(),
                           TerminalColors colors = TerminalColors::none);

/// Hands a page of HTML to `write`, in pieces: one file that needs no other, in the language and with the
/// formats of the thread. Its rows are sorted by a click on a column, those of a tree excepted; it has a dark
/// and a light look, as the reader's system asks, and one for paper. A text that could not be read on its
/// background has the nearest colour that can. Pictures in cells are shown. Throws as said above, and what
/// `write` throws.
CORE_API void write_html_page(const ByteWriter& write, const Report& report);
/// Writes the page to a stream of bytes; a stream that does not take them becomes bad. Throws as
/// write_html_page() does.
CORE_API void save_html(std::ostream& out, const Value& table, const ReportStyle& style = {});
/// Makes the page the content of a file, a path in UTF-8; the old file stays until the new one is whole.
/// Throws as write_html_page() does, FileException, and PresentationException where the process does not
/// allow saving (require_output_right()).
CORE_API void save_html(const std::string& file, const Value& table, const ReportStyle& style = {});

/// Returns the report that a value is, with copies of its parts; nothing for any other value.
[[nodiscard]] CORE_API std::optional<Report> report_of(const Value& value);

/// A Report.
template <>
struct NativeValue<Report> {
    /// Returns the content; refuses the type of any other value.
    static CORE_API Report from(const Value& value, ValueReceiver receiver);
    /// Returns a new object with that content.
    static CORE_API Value to(const Report& report);
    /// Returns the id of Report.
    static const GUID* type() noexcept { return &kReportType; }
};

} // namespace core
