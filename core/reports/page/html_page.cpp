// SPDX-License-Identifier: Apache-2.0
#include "core/exchange/tables/cell_texts.h"
#include "core/exchange/tables/escaped_text.h"
#include "core/reports/page/page_script.h"
#include "core/reports/page/page_styles.h"
#include "core/reports/report_view.h"
#include "core/strings/base64.h"

#include <core/exchange/column_text.h>
#include <core/exchange/whole_file.h>
#include <core/presentation/presentation_values.h>
#include <core/presentation/services.h>
#include <core/runtime/threads/thread.h>
#include <core/runtime/utf8.h>
#include <core/strings/integer_text.h>

#include <algorithm>
#include <ostream>

namespace core {
namespace {

/// What a browser calls a format; empty for one that browsers do not show.
std::string_view media_type(PictureFormat format) noexcept {
    switch (format) {
    case PictureFormat::png:
        return "image/png";
    case PictureFormat::jpeg:
        return "image/jpeg";
    case PictureFormat::gif:
        return "image/gif";
    case PictureFormat::bmp:
        return "image/bmp";
    case PictureFormat::ico:
        return "image/x-icon";
    case PictureFormat::webp:
        return "image/webp";
    case PictureFormat::svg:
        return "image/svg+xml";
    default:
        return {};
    }
}

/// The picture that a cell shows; empty where it holds none that browsers know.
std::string image_of(const Value& cell) {
    if (!cell.isObject() || cell.type().id() != kPictureType)
        return {};
    const Picture content = from_value<Picture>(cell).resolved();
    const std::string_view type = media_type(content.info().format);
    if (type.empty())
        return {};
    return "<img alt=\"" + in_html(to_utf8(content.presentation())) + "\" src=\"data:" + std::string(type) +
           ";base64," + to_utf8(base64_encode(content.bytes())) + "\">";
}

/// What a cell is sorted by beside its text: ` data-n="…"`, or nothing.
std::string sort_key(const Value& cell) {
    const auto key = [](const std::string& number) { return " data-n=" + number; };
    switch (cell.kind()) {
    case ValueKind::number:
        return key(to_utf8(cell.asNumeric()->toString()));
    case ValueKind::date:
        return key(std::to_string(cell.asDate()->ticks()));
    case ValueKind::boolean:
        return key(cell.isTrue() ? "1" : "0");
    default:
        return {};
    }
}

class PageWriter {
  public:
    PageWriter(const ByteWriter& write, const Report& report)
        : write_(write), report_(report), shown_(report), texts_(shown_.view()) {}

    void writePage() {
        constexpr std::size_t kTitle = 200; // in one line
        const std::string language = Thread::getResourceLocale().language();
        text_ += "<!DOCTYPE html>\n<html lang=\"" + (language.empty() ? "en" : language) +
                 "\">\n<meta charset=\"utf-8\">\n"
                 "<meta name=\"viewport\" content=\"width=device-width,initial-scale=1\">\n"
                 "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
                 "style-src 'unsafe-inline'; script-src 'unsafe-inline'; img-src data:\">\n<title>" +
                 in_html(fitted_text(title(), kTitle).text) + "</title>\n<style>\n" +
                 page_styles(shown_.style(), legendLooks()) + "</style>\n<main>\n<table>\n";
        if (!report_.style.title.empty())
            text_ += "<caption>" + in_html(to_utf8(report_.style.title)) + "</caption>\n";
        writeTitles();
        writeRows();
        writeTotals();
        text_ += "</table>\n";
        writeLegend();
        text_ += "<p>" + in_html(to_utf8(message_text("IDS_TABLE_TEXT_ROWS", {string_intto(view().rows)}))) +
                 "</p>\n</main>\n";
        if (isSorted())
            text_ += "<script>\n" + std::string(kPageScript) + "</script>\n";
        flush();
    }

  private:
    [[nodiscard]] const TableView& view() const noexcept { return shown_.view(); }
    [[nodiscard]] bool isSorted() const noexcept { return !shown_.isTree() && !view().columns.empty(); }
    [[nodiscard]] wstring title() const {
        return report_.style.title.empty() ? report_.table.type().presentation() : report_.style.title;
    }

    /// Those of the cells, and behind them those of the rules that the legend shows.
    [[nodiscard]] std::vector<CellLook> legendLooks() const {
        std::vector<CellLook> looks = shown_.looks();
        for (const ReportRule& rule : report_.style.rules)
            looks.push_back(look_of(rule.style));
        return looks;
    }
    [[nodiscard]] std::string alignment(std::size_t column) const {
        switch (view().columns[column].alignment) {
        case ColumnAlignment::left:
            return "left";
        case ColumnAlignment::center:
            return "center";
        case ColumnAlignment::right:
            return "right";
        default:
            return texts_.areNumbers(column) ? "right" : "";
        }
    }
    /// Begins a cell with its classes, as far as there are some.
    void begin(std::string_view tag, const std::string& classes) {
        text_ += '<';
        text_ += tag;
        if (!classes.empty())
            text_ += (classes.find(' ') == std::string::npos ? " class=" : " class=\"") + classes +
                     (classes.find(' ') == std::string::npos ? "" : "\"");
    }

    void writeTitles() {
        text_ += "<thead><tr>";
        for (std::size_t i = 0; i < view().columns.size(); ++i) {
            begin("th", alignment(i));
            const std::string title = in_html(to_utf8(view().columns[i].title));
            text_ += isSorted() ? " scope=col aria-sort=none><button type=button>" + title + "</button></th>"
                                : " scope=col>" + title + "</th>";
        }
        text_ += "</tr></thead>\n<tbody>\n";
    }
    void writeRows() {
        std::size_t row = 0;
        view().walk([&](std::span<const Value> cells, std::size_t level) {
            text_ += "<tr>";
            for (std::size_t i = 0; i < cells.size(); ++i)
                writeCell(cells[i], row, i, i == 0 ? level : 0);
            text_ += "</tr>\n";
            ++row;
            constexpr std::size_t kPiece = std::size_t{64} << 10U;
            if (text_.size() >= kPiece)
                flush();
            return true;
        });
        text_ += "</tbody>\n";
    }
    void writeCell(const Value& cell, std::size_t row, std::size_t column, std::size_t level) {
        std::string classes = alignment(column);
        const auto add = [&classes](const std::string& name) {
            classes += (classes.empty() ? "" : " ") + name;
        };
        if (const std::size_t look = shown_.look(row, column); look != 0)
            add('k' + std::to_string(look));
        if (level > 0)
            add("level");
        begin("td", classes);
        if (level > 0)
            text_ += " style=\"--level:" + std::to_string(level) + '"';
        if (isSorted())
            text_ += sort_key(cell);
        const std::string image = image_of(cell);
        text_ += '>' + (image.empty() ? in_html(to_utf8(texts_.text(column, cell))) : image) + "</td>";
    }
    void writeTotals() {
        if (view().totals.empty())
            return;
        text_ += "<tfoot><tr>";
        for (std::size_t i = 0; i < view().totals.size(); ++i) {
            begin("td", alignment(i));
            text_ += '>' + in_html(to_utf8(view().totals[i])) + "</td>";
        }
        text_ += "</tr></tfoot>\n";
    }
    /// What the colours mean, for those who do not see them, too.
    void writeLegend() {
        std::string items;
        for (std::size_t i = 0; i < report_.style.rules.size(); ++i) {
            if (const wstring& meaning = report_.style.rules[i].title; !meaning.empty())
                items += "<li><span class=k" + std::to_string(shown_.looks().size() + i) + '>' +
                         in_html(to_utf8(meaning)) + "</span></li>\n";
        }
        if (!items.empty())
            text_ += "<ul class=rules>\n" + items + "</ul>\n";
    }
    void flush() {
        write_(std::as_bytes(std::span(text_)));
        text_.clear();
    }

    const ByteWriter& write_;
    const Report& report_;
    ReportView shown_;
    CellTexts texts_;
    std::string text_;
};

} // namespace

void write_html_page(const ByteWriter& write, const Report& report) {
    PageWriter(write, report).writePage();
}

void save_html(std::ostream& out, const Value& table, const ReportStyle& style) {
    write_html_page(
        [&out](std::span<const std::byte> bytes) {
            out.write(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes));
        },
        {table, style});
}

void save_html(const std::string& file, const Value& table, const ReportStyle& style) {
    require_output_right(OutputRight::save);
    write_whole_file(file, [&](const ByteWriter& write) { write_html_page(write, {table, style}); });
}

} // namespace core
