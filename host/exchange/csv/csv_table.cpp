// SPDX-License-Identifier: Apache-2.0
#include "host/exchange/csv/csv_table.h"

#include "host/exchange/csv/csv_reader.h"

#include <core/runtime/utf8.h>
#include <core/strings/char_class.h>
#include <core/strings/integer_text.h>
#include <core/strings/names.h>
#include <core/strings/term.h>
#include <core/strings/trim.h>
#include <core/values/errors.h>

#include <algorithm>
#include <unordered_map>

namespace host {

using namespace core;

namespace {

/// Names for columns, made of their titles.
class ColumnNames {
  public:
    wstring make(wstring_view title) {
        wstring name(trim_all(title));
        std::ranges::replace_if(
            name, [](wchar unit) { return !is_alnum(unit) && unit != u'_'; }, u'_');
        if (name.empty())
            name = u"Column";
        else if (!is_valid_name(name))
            name.insert(0, 1, u'_');        // it begins with a digit
        std::size_t& number = taken_[name]; // an element stays where it is
        for (const wstring first = name; number != 0 && !taken_.try_emplace(name, 1).second;)
            name = first + u"_" + string_intto(++number);
        number = std::max<std::size_t>(number, 1);
        return name;
    }

  private:
    std::unordered_map<wstring, std::size_t, NocaseHash, NocaseEqual> taken_; // with the last number given
};

class Loader {
  public:
    Loader(wstring_view file, const std::optional<std::vector<wstring>>& columns) : file_(file) {
        if (!columns)
            return;
        for (const wstring& name : *columns)
            table_->addColumn(name);
        cells_.resize(columns->size());
    }

    InterfacePtr<IValueTable> take() {
        if (cells_.empty())
            throw_error<ContextException>("IDS_SCRIPT_CSV_NO_HEADER", {file_});
        return std::move(table_);
    }

    void add(const CsvRow& row) {
        if (cells_.empty())
            return addColumns(row);
        if (row.fields.size() != cells_.size())
            throw_error<ContextException>("IDS_SCRIPT_CSV_FIELDS",
                                          {file_, string_intto(row.line), string_intto(row.fields.size()),
                                           string_intto(cells_.size())});
        std::ranges::transform(row.fields, cells_.begin(), [](wstring_view field) { return Value(field); });
        table_->appendRow(cells_);
    }

  private:
    void addColumns(const CsvRow& row) {
        ColumnNames names;
        for (const wstring_view title : row.fields) {
            const wstring name = names.make(title);
            table_->addColumn(name, {}, title != name ? title : wstring_view());
        }
        cells_.resize(row.fields.size());
    }

    wstring file_;
    InterfacePtr<IValueTable> table_ = create_value_table();
    std::vector<Value> cells_;
};

wstring text_of(const Value& value) {
    switch (value.kind()) {
    case ValueKind::undefined:
    case ValueKind::null:
        return {};
    case ValueKind::boolean:
        return value.isTrue() ? u"True" : u"False";
    case ValueKind::number:
        return value.asNumeric()->toString();
    case ValueKind::date:
        return value.asDate()->toString();
    case ValueKind::type:
        return value.asType()->name(kEnglish);
    default:
        return value.presentation();
    }
}

class Writer {
  public:
    Writer(wostream& out, char delimiter) : out_(*out.rdbuf()) { special_ += static_cast<wchar>(delimiter); }

    void row(std::span<const wstring> fields) {
        for (std::size_t i = 0; i < fields.size(); ++i) {
            if (i > 0)
                put(wstring_view(special_).substr(special_.size() - 1));
            field(fields[i], fields.size() == 1 && fields[i].empty());
        }
        put(u"\r\n");
    }

  private:
    /// An empty field that is a row by itself needs quotes: readers skip an empty line.
    void field(wstring_view text, bool needsQuotes) {
        if (!needsQuotes && text.find_first_of(special_) == wstring_view::npos)
            return put(text);
        put(u"\"");
        for (std::size_t quote = 0; (quote = text.find(u'"')) != wstring_view::npos;
             text.remove_prefix(quote + 1)) {
            put(text.substr(0, quote + 1));
            put(u"\"");
        }
        put(text);
        put(u"\"");
    }
    void put(wstring_view text) { out_.sputn(text.data(), static_cast<std::streamsize>(text.size())); }

    std::basic_streambuf<wchar>& out_;
    wstring special_ = u"\"\r\n"; // the delimiter last
};

} // namespace

bool is_csv_delimiter(wchar unit) noexcept {
    return unit < 0x80 && unit != u'"' && unit != u'\r' && unit != u'\n';
}

InterfacePtr<IValueTable> read_csv_table(const ByteReader& read, wstring_view name, char delimiter,
                                         const std::optional<std::vector<wstring>>& columns) {
    Loader loader(name, columns);
    read_csv(read, name, delimiter, [&](const CsvRow& row) { loader.add(row); });
    return loader.take();
}

void write_csv_table(wostream& out, const TableView& table, char delimiter) {
    std::vector<wstring> fields(table.columns.size());
    Writer writer(out, delimiter);
    std::ranges::transform(table.columns, fields.begin(), &TableView::Column::title);
    writer.row(fields);
    table.walk([&](std::span<const Value> cells, std::size_t) {
        std::ranges::transform(cells, fields.begin(), text_of);
        writer.row(fields);
        return true;
    });
}

} // namespace host
