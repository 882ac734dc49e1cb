// SPDX-License-Identifier: Apache-2.0
#include "core/exchange/cells/column_list.h"
#include "core/exchange/cells/typed_column.h"
#include "core/exchange/csv/csv_scanner.h"
#include "core/exchange/csv/csv_shape.h"
#include "core/tables/convert/column_names.h"
#include "core/tables/data/unknown_column.h"
#include "core/tables/objects/table_parts.h"

#include <core/exchange/csv.h>
#include <core/exchange/errors.h>
#include <core/files/disk_file.h>
#include <core/files/file_system.h>
#include <core/runtime/process.h>
#include <core/runtime/threads/thread.h>
#include <core/runtime/utf8.h>
#include <core/strings/integer_text.h>
#include <core/strings/trim.h>

#include <algorithm>
#include <new>

namespace core {
namespace {

/// A row in so many asks whether to stop, and tells how far it is.
constexpr std::size_t kAskedRows = 4096;

/// A column while it is read: of a type that was given, or of one that is found.
struct LoadedColumn {
    wstring name;
    wstring title; ///< empty for the name
    std::unique_ptr<TypedColumn> typed;
    ColumnBuilder found;

    void reserve(std::size_t rows) { typed ? typed->reserve(rows) : found.reserve(rows); }
};

class Loader {
  public:
    Loader(wstring_view name, const CsvReadOptions& options)
        : name_(name), options_(options), listed_(read_column_list(options.columns)) {
        if (options.locale)
            forms_.emplace(*options.locale);
    }

    InterfacePtr<IValueTable> load(ByteReader bytes) {
        CsvScanner scanner(in_utf8(std::move(bytes), name_, options_.encoding), name_);
        const std::string_view first = scanner.look();
        // Where numbers have a comma, a column that stands alone would be cut by it.
        const char alone = forms_ && forms_->number("0,5") ? ';' : ',';
        scanner.setRules({.delimiter = options_.delimiter.value_or(find_delimiter(first, false, alone)),
                          .strict = options_.strict});
        CsvRow row;
        bool reads = scanner.next(row);
        if (makeColumns(reads ? &row : nullptr))
            reads = scanner.next(row);
        for (; reads; reads = scanner.next(row)) {
            add(row);
            if (++rows_ % kAskedRows == 0)
                pause(scanner.bytesTaken());
        }
        pause(scanner.bytesTaken());
        return finish();
    }

  private:
    void pause(std::uint64_t taken) {
        if (rows_ >= kNoRow - kAskedRows)
            throw std::bad_alloc(); // a table has no ids for more rows
        options_.stop.check();
        Thread::check();
        if (options_.progress)
            options_.progress(taken);
        if (rows_ != kAskedRows || options_.length == 0)
            return;
        // What the first rows took tells how many there will be, with some room: to grow means to copy.
        const double wanted = static_cast<double>(options_.length) / static_cast<double>(taken) * kAskedRows;
        for (LoadedColumn& column : columns_)
            column.reserve(static_cast<std::size_t>(wanted * 1.02) + 1);
    }

    /// Returns whether the first row held titles and is done with.
    bool makeColumns(const CsvRow* first) {
        const bool typed =
            std::ranges::any_of(listed_, [](const auto& one) { return !one.domain.isEmpty(); });
        const bool titles = options_.headers.value_or(listed_.empty() || typed);
        if (first == nullptr && (titles || listed_.empty()))
            throw_error<ContextException>(messages::kCsvNoHeader, {wstring(name_)});
        ColumnNames names;
        if (!titles && !listed_.empty()) {
            for (ListedColumn& one : listed_)
                addColumn(one.name, {}, std::move(one.domain));
            return false;
        }
        for (std::size_t i = 0; i < first->fields.size(); ++i) {
            const wstring title =
                titles ? text_of(first->fields[i], first->line) : u"Column" + string_intto(i + 1);
            wstring name = names.make(title);
            addColumn(name, title != name ? title : wstring(), takeDomain(name, trim_all(title)));
        }
        if (titles && !listed_.empty()) {
            NearestName nearest(listed_.front().name);
            for (const auto& column : columns_)
                nearest.add(column.name);
            throw_unknown_column(listed_.front().name, nearest);
        }
        return titles;
    }
    void addColumn(const wstring& name, const wstring& title, TypeDomain domain) {
        LocaleForms* const forms = forms_ ? &*forms_ : nullptr;
        columns_.push_back(
            {name, title,
             domain.isEmpty() ? nullptr : std::make_unique<TypedColumn>(std::move(domain), forms),
             ColumnBuilder(forms, options_.stop)});
    }
    /// The type that the list gives a column, which leaves the list.
    TypeDomain takeDomain(const wstring& name, wstring_view title) {
        const auto found = std::ranges::find_if(listed_, [&](const ListedColumn& one) {
            return compare_nocase(one.name, name) == 0 || compare_nocase(one.name, title) == 0;
        });
        if (found == listed_.end())
            return {};
        TypeDomain domain = std::move(found->domain);
        listed_.erase(found);
        return domain;
    }

    void add(const CsvRow& row) {
        if (row.fields.size() != columns_.size()) [[unlikely]]
            checkWidth(row);
        try {
            for (std::size_t i = 0; i < columns_.size(); ++i) {
                const std::string_view text = i < row.fields.size() ? row.fields[i] : std::string_view();
                LoadedColumn& column = columns_[i];
                if (!column.typed)
                    column.found.add(text);
                else if (const auto lost = column.typed->add(text)) [[unlikely]]
                    losses_.add({rows_, row.line, column.name, from_utf8(text), *lost});
            }
        } catch (const ConverterException&) {
            throw_error<ContextException>(messages::kCsvNotUtf8, {wstring(name_), string_intto(row.line)});
        }
    }
    /// A row with more or fewer fields than there are columns.
    void checkWidth(const CsvRow& row) {
        const std::size_t fields = row.fields.size();
        if (options_.losses == nullptr)
            throw_error<ContextException>(messages::kCsvFields,
                                          {wstring(name_), string_intto(row.line), string_intto(fields),
                                           string_intto(columns_.size())});
        if (fields < columns_.size())
            losses_.add({rows_, row.line, columns_[fields].name, {}, LossReason::missingCells});
        for (std::size_t i = columns_.size(); i < fields; ++i)
            losses_.add({rows_, row.line, {}, from_utf8(row.fields[i]), LossReason::noColumn});
    }
    wstring text_of(std::string_view field, std::uint64_t line) {
        try {
            return wstring(*text_value(field, scratch_).asString());
        } catch (const ConverterException&) {
            throw_error<ContextException>(messages::kCsvNotUtf8, {wstring(name_), string_intto(line)});
        }
    }

    InterfacePtr<IValueTable> finish() {
        if (options_.losses != nullptr)
            *options_.losses = losses_;
        else
            losses_.check(name_);
        std::vector<std::unique_ptr<TableColumn>> columns;
        for (LoadedColumn& column : columns_) {
            BuiltColumn built = column.typed ? column.typed->finish() : column.found.finish();
            const auto id = static_cast<ColumnId>(columns.size());
            columns.push_back(std::make_unique<TableColumn>(
                id, ColumnInfo{column.name, std::move(built.domain), column.title, 0}));
            columns.back()->cells = std::move(built.cells);
        }
        return make_value_table(std::move(columns), rows_, std::move(losses_));
    }

    wstring_view name_;
    const CsvReadOptions& options_;
    std::vector<ListedColumn> listed_;
    std::optional<LocaleForms> forms_;
    std::vector<LoadedColumn> columns_;
    std::size_t rows_ = 0;
    Losses losses_;
    wstring scratch_;
};

} // namespace

bool is_csv_delimiter(wchar unit) noexcept {
    return unit < 0x80 && unit != u'"' && unit != u'\r' && unit != u'\n';
}

Table read_csv(ByteReader bytes, wstring_view name, const CsvReadOptions& options) {
    return Loader(name, options).load(std::move(bytes));
}

Table load_csv(std::string_view file, CsvReadOptions options) {
    const auto opened = require_service<IFileSystem>().openURL(from_utf8(file), OpenMode::read);
    options.length = opened->length();
    return read_csv([opened](std::span<std::byte> bytes) { return opened->read(bytes.data(), bytes.size()); },
                    from_utf8(file), options);
}

} // namespace core
