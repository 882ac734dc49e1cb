// SPDX-License-Identifier: Apache-2.0
#include "core/exchange/tables/cell_texts.h"

#include <core/exchange/column_text.h>
#include <core/exchange/table_text.h>
#include <core/runtime/exception.h>
#include <core/runtime/utf8.h>
#include <core/strings/integer_text.h>
#include <core/values/format_value.h>

#include <algorithm>
#include <ostream>

namespace core {

namespace {

constexpr std::size_t kGap = 2;       // between two columns
constexpr std::size_t kNarrowest = 4; // a column that is made narrow to find its place
constexpr std::size_t kMostIndent = 40;

struct Column {
    std::size_t width = 0;
    ColumnAlignment alignment = ColumnAlignment::automatic;
    bool numbers = true; // its cells are numbers, as far as they are not empty
    bool empty = true;
};

class Printer {
  public:
    Printer(std::ostream& out, const TableView& view, std::size_t width, std::size_t most)
        : out_(out), view_(view), width_(std::max(width, kNarrowest)), columns_(view.columns.size()),
          shown_(view.rows <= most || view.rows - most == 1 ? view.rows : most), // one more is no longer
          texts_(view, shown_) {}

    void print() {
        measure();
        fit();
        if (!columns_.empty()) {
            titles(TableView::kHeader, [this](std::size_t i) { return view_.columns[i].title; });
            rule();
            walk([this](std::size_t row, std::size_t i, const Value& cell, std::size_t indent) {
                const std::size_t room = columns_[i].width;
                put(row, i, fitted_text(texts_.text(i, cell), room - std::min(room, indent)),
                    std::min(room, indent));
            });
            if (!view_.totals.empty()) {
                rule();
                titles(TableView::kTotals, [this](std::size_t i) { return view_.totals[i]; });
            }
        }
        if (shown_ < view_.rows)
            line("IDS_TABLE_TEXT_MORE_ROWS", view_.rows - shown_);
        if (columns_.size() < view_.columns.size())
            line("IDS_TABLE_TEXT_MORE_COLUMNS", view_.columns.size() - columns_.size());
        line("IDS_TABLE_TEXT_ROWS", view_.rows);
    }

  private:
    /// Visits the cells that are shown, row by row.
    template <class Visit>
    void walk(Visit visit) {
        if (shown_ == 0)
            return;
        std::size_t row = 0;
        view_.walk([&](std::span<const Value> cells, std::size_t level) {
            for (std::size_t i = 0; i < columns_.size(); ++i)
                visit(row, i, cells[i], i == 0 ? std::min(level * 2, kMostIndent) : 0);
            endLine();
            return ++row < shown_;
        });
    }

    /// A line of titles or totals.
    template <class Text>
    void titles(std::size_t row, Text text) {
        for (std::size_t i = 0; i < columns_.size(); ++i)
            put(row, i, fitted_text(text(i), columns_[i].width), 0);
        endLine();
    }
    void rule() {
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            line_.append(i > 0 ? kGap : 0, ' ');
            line_ += fitted_text(wstring(columns_[i].width, u'─'), columns_[i].width).text;
        }
        endLine();
    }

    /// The widths that the columns would like to have.
    void measure() {
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            const std::size_t total = view_.totals.empty() ? 0 : fitted_text(view_.totals[i], width_).columns;
            columns_[i].width = std::max(fitted_text(view_.columns[i].title, width_).columns, total);
        }
        walk([this](std::size_t, std::size_t i, const Value& cell, std::size_t indent) {
            const std::size_t width = indent + fitted_text(texts_.text(i, cell), width_).columns;
            Column& column = columns_[i];
            column.width = std::max(column.width, std::min(width, width_));
            if (width == indent)
                return;
            column.empty = false;
            column.numbers =
                column.numbers && cell.kind() == ValueKind::number && indent == 0; // it shows the levels
        });
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            Column& column = columns_[i];
            column.alignment = view_.columns[i].alignment;
            if (column.alignment == ColumnAlignment::automatic && column.numbers && !column.empty)
                column.alignment = ColumnAlignment::right;
            if (view_.columns[i].width > 0)
                column.width = std::min(view_.columns[i].width, width_);
            column.width = std::max<std::size_t>(column.width, 1);
        }
        line_.clear();
    }

    /// Lets the widest columns have less, and the last ones go, until the line is long enough.
    void fit() {
        const auto total = [this](std::size_t cap) {
            std::size_t sum = 0;
            for (const Column& column : columns_)
                sum += std::min(column.width, cap) + kGap;
            return sum - std::min(sum, kGap);
        };
        while (total(kNarrowest) > width_)
            columns_.pop_back();
        std::size_t cap = kNarrowest, beyond = width_ + 1;
        while (beyond - cap > 1) {
            const std::size_t middle = cap + (beyond - cap) / 2;
            (total(middle) <= width_ ? cap : beyond) = middle;
        }
        std::size_t left = width_ - total(cap);
        for (Column& column : columns_) {
            const bool more = column.width > cap && left > 0;
            left -= more ? 1 : 0;
            column.width = std::min(column.width, cap + (more ? 1 : 0));
        }
    }

    /// Appends a cell to the line, filled to the width of its column. Neighbours of one look have it between
    /// them, too.
    void put(std::size_t row, std::size_t column, const FittedText& cell, std::size_t indent) {
        const std::size_t room = columns_[column].width - cell.columns - indent;
        const std::size_t before = columns_[column].alignment == ColumnAlignment::right    ? room
                                   : columns_[column].alignment == ColumnAlignment::center ? room / 2
                                                                                           : 0;
        const std::string look = view_.paint ? view_.paint(row, column) : std::string();
        if (look != look_)
            endLook();
        if (column > 0)
            line_.append(kGap, ' ');
        if (look != look_)
            line_ += look_ = look;
        line_.append(indent + before, ' ');
        line_ += cell.text;
        line_.append(room - before, ' ');
    }
    void endLook() {
        line_ += look_.empty() ? "" : "\x1B[0m";
        look_.clear();
    }
    void endLine() {
        endLook();
        if (line_.empty())
            return;
        line_.erase(line_.find_last_not_of(' ') + 1);
        out_ << line_ << '\n';
        line_.clear();
    }
    void line(const char* id, std::size_t count) {
        out_ << to_utf8(message_text(id, {string_intto(count)})) << '\n';
    }

    std::ostream& out_;
    const TableView& view_;
    std::size_t width_;
    std::vector<Column> columns_;
    std::size_t shown_;
    CellTexts texts_;
    std::string line_;
    std::string look_; // that of the end of the line
};

} // namespace

wstring TableView::Column::text(const Value& cell) const {
    switch (cell.kind()) {
    case ValueKind::number:
    case ValueKind::date:
    case ValueKind::boolean:
    case ValueKind::undefined:
    case ValueKind::null:
        if (!format.empty())
            return format_value(cell, format);
        [[fallthrough]];
    default:
        return domain.presentation(cell);
    }
}

void print_table(std::ostream& out, const TableView& view, std::size_t width, std::size_t most) {
    Printer(out, view, width, most).print();
}

} // namespace core
