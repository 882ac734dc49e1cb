// SPDX-License-Identifier: Apache-2.0
#include "core/exchange/cells/cell_writer.h"
#include "core/tables/objects/table_parts.h"

#include <core/context/arguments.h>
#include <core/exchange/csv.h>
#include <core/exchange/whole_file.h>
#include <core/runtime/threads/thread.h>
#include <core/runtime/utf8.h>

#include <ostream>

namespace core {
namespace {

/// What is collected before it is handed over.
constexpr std::size_t kPiece = std::size_t{256} << 10U;

/// The text, with its fields in quotes where they need them.
class CsvText {
  public:
    CsvText(const ByteWriter& write, wstring_view name, const CsvWriteOptions& options)
        : write_(write), name_(name), options_(options) {
        if (options.encoding != Encoding())
            recoded_.emplace(write, name_, TextWriterOptions{.encoding = options.encoding});
        bytes_.reserve(kPiece + kPiece / 4);
        constexpr std::string_view kPlain = "0123456789-.:T";
        plain_ = kPlain.find(options.delimiter) == std::string_view::npos;
    }

    /// Where the text of a field goes that is surely plain.
    [[nodiscard]] std::string& bytes() noexcept { return bytes_; }
    /// Whether numbers and dates need no quotes.
    [[nodiscard]] bool isPlain() const noexcept { return plain_; }
    [[nodiscard]] const wstring& name() const noexcept { return name_; }

    /// Ends a field that began at `begin` of bytes(): puts it in quotes where that is needed. An empty field
    /// that is a row by itself needs them: readers skip an empty line.
    void quote(std::size_t begin, bool alone) {
        const std::string_view field = std::string_view(bytes_).substr(begin);
        const char special[] = {'"', '\r', '\n', options_.delimiter};
        if (field.find_first_of(std::string_view(special, sizeof special)) == std::string_view::npos &&
            !(alone && field.empty()))
            return;
        std::string quoted = "\"";
        for (const char c : field)
            quoted.append(c == '"' ? 2 : 1, c);
        quoted += '"';
        bytes_.replace(begin, std::string::npos, quoted);
    }
    void delimit() { bytes_ += options_.delimiter; }
    void endRow() {
        bytes_ += "\r\n";
        if (bytes_.size() >= kPiece)
            flush();
    }
    void finish() {
        flush();
        if (recoded_)
            recoded_->finish();
    }

  private:
    void flush() {
        options_.stop.check();
        Thread::check();
        if (recoded_)
            recoded_->write(from_utf8(bytes_));
        else if (!bytes_.empty())
            write_(std::as_bytes(std::span(bytes_)));
        bytes_.clear();
    }

    const ByteWriter& write_;
    wstring name_;
    const CsvWriteOptions& options_;
    std::optional<TextWriter> recoded_;
    std::string bytes_;
    bool plain_;
};

/// Writes the cells of one column of a table. Each text of a dictionary is made ready once.
class ColumnWriter {
  public:
    ColumnWriter(CsvText& text, const CellColumn& cells, bool alone)
        : text_(text), cells_(cells), alone_(alone) {
        if (cells.form() == CellColumn::Form::coded)
            ready_.resize(cells.dictionary().size());
    }

    void write(RowId row) {
        std::string& out = text_.bytes();
        const std::size_t begin = out.size();
        switch (cells_.form()) {
        case CellColumn::Form::coded:
            return writeCode(cells_.codes()[row]);
        case CellColumn::Form::values:
            append_value(out, cells_.values()[row], text_.name());
            return text_.quote(begin, alone_);
        default:
            break;
        }
        const std::int64_t word = cells_.words()[row];
        if (word != CellColumn::kEmptyWord) {
            if (cells_.form() == CellColumn::Form::numbers)
                append_number(out, word, cells_.scale());
            else
                append_iso_date(out, Date(static_cast<std::uint64_t>(word)));
        }
        if (alone_ || !text_.isPlain())
            text_.quote(begin, alone_);
    }

  private:
    void writeCode(CellColumn::Code code) {
        std::string& out = text_.bytes();
        std::optional<std::string>& ready = ready_[code];
        if (!ready) {
            const std::size_t begin = out.size();
            append_value(out, cells_.dictionary()[code], text_.name());
            text_.quote(begin, alone_);
            ready = out.substr(begin);
            return;
        }
        out += *ready;
    }

    CsvText& text_;
    const CellColumn& cells_;
    bool alone_;
    std::vector<std::optional<std::string>> ready_; // by code
};

void write_titles(CsvText& text, const TableView& view) {
    for (std::size_t i = 0; i < view.columns.size(); ++i) {
        if (i != 0)
            text.delimit();
        const std::size_t begin = text.bytes().size();
        append_strictly(text.bytes(), view.columns[i].title, text.name());
        text.quote(begin, view.columns.size() == 1);
    }
    text.endRow();
}

void write_columns(CsvText& text, const TableData& data) {
    std::vector<ColumnWriter> columns;
    for (std::size_t i = 0; i < data.columnCount(); ++i)
        columns.emplace_back(text, data.column(i).cells, data.columnCount() == 1);
    data.rows().walk([&](RowId row) {
        for (std::size_t i = 0; i < columns.size(); ++i) {
            if (i != 0)
                text.delimit();
            columns[i].write(row);
        }
        text.endRow();
        return true;
    });
}

void write_rows(CsvText& text, const TableView& view) {
    view.walk([&](std::span<const Value> cells, std::size_t) {
        for (std::size_t i = 0; i < cells.size(); ++i) {
            if (i != 0)
                text.delimit();
            const std::size_t begin = text.bytes().size();
            append_value(text.bytes(), cells[i], text.name());
            text.quote(begin, cells.size() == 1);
        }
        text.endRow();
        return true;
    });
}

} // namespace

void write_csv(const ByteWriter& write, const Value& table, wstring_view name,
               const CsvWriteOptions& options) {
    const auto view = table_view(table, ViewFor::programs);
    if (!view)
        parameter_type_mismatch(1);
    CsvText text(write, name, options);
    write_titles(text, *view);
    const auto rows = table.query<IValueTableBaseRO>();
    if (const TableData* const data = rows ? table_data_of(*rows) : nullptr)
        write_columns(text, *data);
    else
        write_rows(text, *view);
    text.finish();
}

void save_csv(std::ostream& out, const InterfacePtr<IValueTable>& table, const CsvWriteOptions& options) {
    write_csv(
        [&out](std::span<const std::byte> bytes) {
            out.write(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes));
        },
        Value(table.query<IValue>()), u"csv", options);
}

void save_csv(const std::string& file, const Value& table, const CsvWriteOptions& options) {
    write_whole_file(file,
                     [&](const ByteWriter& write) { write_csv(write, table, from_utf8(file), options); });
}

} // namespace core
