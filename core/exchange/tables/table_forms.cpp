// SPDX-License-Identifier: Apache-2.0
#include "core/exchange/cells/cell_writer.h"
#include "core/exchange/tables/cell_texts.h"
#include "core/exchange/tables/escaped_text.h"

#include <core/context/arguments.h>
#include <core/exchange/column_text.h>
#include <core/exchange/csv.h>
#include <core/exchange/json.h>
#include <core/runtime/utf8.h>
#include <core/values/generic_value.h>

#include <algorithm>
#include <array>
#include <ostream>

namespace core {
namespace {

std::string in_markdown(std::string_view text) {
    return replaced(text, [](char c) -> std::string_view {
        switch (c) {
        case '|':
            return "\\|";
        case '\\':
            return "\\\\";
        case '`':
            return "\\`";
        case '*':
            return "\\*";
        case '_':
            return "\\_";
        case '[':
            return "\\[";
        case '<':
            return "&lt;";
        case '&':
            return "&amp;";
        case '\n':
        case '\r':
            return "<br>";
        default:
            return {};
        }
    });
}

} // namespace

void write_fixed_width(std::ostream& out, const TableView& view) {
    constexpr std::size_t kAny = std::numeric_limits<std::size_t>::max() / 2;
    const CellTexts texts(view);
    const auto fitted = [&texts](std::size_t column, const Value& cell) {
        return fitted_text(texts.text(column, cell), kAny);
    };
    std::vector<FittedText> titles;
    std::vector<std::size_t> widths;
    for (const TableView::Column& column : view.columns) {
        titles.push_back(fitted_text(column.title, kAny));
        widths.push_back(titles.back().columns);
    }
    view.walk([&](std::span<const Value> cells, std::size_t) {
        for (std::size_t i = 0; i < cells.size(); ++i)
            widths[i] = std::max(widths[i], fitted(i, cells[i]).columns);
        return true;
    });
    std::string line;
    const auto put = [&](std::size_t i, const FittedText& text) {
        const std::string room(widths[i] - text.columns, ' ');
        line += i != 0 ? "  " : "";
        line += texts.areNumbers(i) ? room + text.text : text.text + room;
    };
    const auto end_line = [&] {
        line.erase(line.find_last_not_of(' ') + 1);
        out << line << '\n';
        line.clear();
    };
    for (std::size_t i = 0; i < titles.size(); ++i)
        put(i, titles[i]);
    end_line();
    view.walk([&](std::span<const Value> cells, std::size_t) {
        for (std::size_t i = 0; i < cells.size(); ++i)
            put(i, fitted(i, cells[i]));
        end_line();
        return true;
    });
}

void write_markdown(std::ostream& out, const TableView& view) {
    const CellTexts texts(view);
    for (const TableView::Column& column : view.columns)
        out << "| " << in_markdown(to_utf8(column.title)) << ' ';
    out << "|\n";
    for (std::size_t i = 0; i < view.columns.size(); ++i)
        out << (texts.areNumbers(i) ? "| ---: " : "| --- ");
    out << "|\n";
    view.walk([&](std::span<const Value> cells, std::size_t) {
        for (std::size_t i = 0; i < cells.size(); ++i)
            out << "| " << in_markdown(to_utf8(texts.text(i, cells[i]))) << ' ';
        out << "|\n";
        return true;
    });
}

void write_html(std::ostream& out, const TableView& view) {
    const CellTexts texts(view);
    out << "<table>\n<tr>";
    for (const TableView::Column& column : view.columns)
        out << "<th>" << in_html(to_utf8(column.title)) << "</th>";
    out << "</tr>\n";
    view.walk([&](std::span<const Value> cells, std::size_t) {
        out << "<tr>";
        for (std::size_t i = 0; i < cells.size(); ++i)
            out << (texts.areNumbers(i) ? "<td align=\"right\">" : "<td>")
                << in_html(to_utf8(texts.text(i, cells[i]))) << "</td>";
        out << "</tr>\n";
        return true;
    });
    out << "</table>\n";
}

std::optional<TableForm> table_form(std::string_view name) noexcept {
    constexpr std::array<std::string_view, 8> kNames = {"table",    "csv",  "json", "jsonl",
                                                        "markdown", "html", "list", "fixed"};
    const auto found = std::ranges::find(kNames, name);
    if (found == kNames.end())
        return std::nullopt;
    return static_cast<TableForm>(found - kNames.begin());
}

void write_table(std::ostream& out, const Value& table, TableForm form, std::size_t width, std::size_t most) {
    const auto view = table_view(table);
    if (!view)
        parameter_type_mismatch(0);
    switch (form) {
    case TableForm::table:
        return print_table(out, *view, width, most);
    case TableForm::csv:
        return write_csv(
            [&out](std::span<const std::byte> bytes) {
                out.write(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes));
            },
            table, u"csv");
    case TableForm::json:
        out << to_json(table) << '\n';
        return;
    case TableForm::jsonl:
        out << to_json_lines(table);
        return;
    case TableForm::markdown:
        return write_markdown(out, *view);
    case TableForm::html:
        return write_html(out, *view);
    case TableForm::list: {
        wstring text;
        GenericValue(table).toString(text);
        out << to_utf8(text) << '\n';
        return;
    }
    case TableForm::fixed:
        write_fixed_width(out, *view);
    }
}

} // namespace core
