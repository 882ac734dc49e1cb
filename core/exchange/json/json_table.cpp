// SPDX-License-Identifier: Apache-2.0
#include "core/exchange/cells/column_list.h"
#include "core/exchange/json/json_builder.h"
#include "core/exchange/json/json_row_lines.h"
#include "core/tables/convert/cell_fit.h"
#include "core/tables/convert/column_names.h"
#include "core/tables/objects/table_parts.h"

#include <core/exchange/errors.h>
#include <core/files/disk_file.h>
#include <core/files/file_io.h>
#include <core/files/file_system.h>
#include <core/lists/nesting.h>
#include <core/runtime/process.h>
#include <core/runtime/utf8.h>
#include <core/strings/integer_text.h>

#include <unordered_map>

namespace core {
namespace {

/// A column while its rows are read.
struct LoadedColumn {
    wstring name;
    wstring title;     ///< empty for the name
    TypeDomain domain; ///< that was given; empty where none was
    CellColumn cells;
    unsigned kinds = 0; ///< a bit for each kind of its values, Undefined and missing ones left out
};

/// The losses of an array of objects, with the lines in which their rows begin.
Losses with_lines(const Losses& losses, std::string_view text) {
    Losses located;
    JsonRowLines lines(text);
    for (Loss loss : losses.first()) {
        loss.line = lines.lineOf(loss.row);
        located.add(std::move(loss));
    }
    while (located.count() < losses.count())
        located.add({});
    return located;
}

/// Makes a table of the reader's events. The values of a row's members are built by a JsonBuilder.
class TableBuilder : public JsonEvents {
  public:
    TableBuilder(const JsonTableOptions& options, bool lines)
        : values_(Objects::structures), arrays_(lines ? 0 : 1), stop_(options.stop) {
        for (ListedColumn& listed : read_column_list(options.columns)) {
            byKey_.emplace(to_utf8(listed.name), columns_.size());
            columns_.push_back({names_.make(listed.name), {}, std::move(listed.domain), {}, 0});
        }
    }
    void setLine(std::uint64_t line) noexcept { line_ = line; }

    InterfacePtr<IValueTable> finish(std::string_view text, wstring_view name, Losses* losses) {
        if (arrays_ != 0 && !losses_.empty())
            losses_ = with_lines(losses_, text);
        if (losses != nullptr)
            *losses = losses_;
        else
            losses_.check(name);
        std::vector<std::unique_ptr<TableColumn>> columns;
        for (LoadedColumn& column : columns_) {
            column.cells.grow(rows_);
            const auto id = static_cast<ColumnId>(columns.size());
            columns.push_back(std::make_unique<TableColumn>(
                id, ColumnInfo{column.name, domainOf(column), column.title, 0}));
            columns.back()->cells = std::move(column.cells);
        }
        return make_value_table(std::move(columns), rows_, std::move(losses_));
    }

    void onNull() override { tell(&JsonBuilder::onNull); }
    void onBoolean(bool value) override { tell(&JsonBuilder::onBoolean, value); }
    void onNumber(std::string_view text) override { tell(&JsonBuilder::onNumber, text); }
    void onString(std::string_view piece, bool isLast) override {
        requireMember();
        values_.onString(piece, isLast);
        if (isLast)
            put();
    }
    void onName(std::string_view name) override {
        if (values_.isOpen())
            return values_.onName(name);
        member_ = columnOf(name);
    }
    void onArrayBegin() override {
        if (depth_ < arrays_) {
            ++depth_;
            return;
        }
        requireMember();
        values_.onArrayBegin();
    }
    void onArrayEnd() override {
        if (!values_.isOpen()) {
            --depth_;
            return;
        }
        values_.onArrayEnd();
        put();
    }
    void onObjectBegin() override {
        if (!inRow_ && depth_ == arrays_) {
            inRow_ = true;
            return;
        }
        requireMember();
        values_.onObjectBegin();
    }
    void onObjectEnd() override {
        if (values_.isOpen()) {
            values_.onObjectEnd();
            return put();
        }
        stop_.check();
        inRow_ = false;
        ++rows_;
    }

  private:
    template <class... Args>
    void tell(void (JsonBuilder::*event)(Args...), Args... arguments) {
        requireMember();
        (values_.*event)(arguments...);
        put();
    }
    /// What stands outside of a row is not a member of one.
    void requireMember() const {
        if (!inRow_)
            throw_error<ContextException>(messages::kJsonNoTable, {string_intto(rows_ + 1)});
    }

    /// The column of a name: the next one, as a rule, since objects are alike.
    std::size_t columnOf(std::string_view name) {
        const std::string key(name);
        const auto [found, isNew] = byKey_.try_emplace(key, columns_.size());
        if (isNew) {
            const wstring title = from_utf8(name);
            const wstring made = names_.make(title);
            columns_.push_back({made, made == title ? wstring() : title, {}, {}, 0});
        }
        return found->second;
    }

    /// Puts the value that is complete into its cell.
    void put() {
        if (values_.isOpen())
            return;
        LoadedColumn& column = columns_[member_];
        GenericValue value = values_.take();
        if (!column.domain.isEmpty())
            value = fitted(column, value);
        else if (!value.isUndefined())
            column.kinds |= 1U << static_cast<unsigned>(value.kind());
        column.cells.grow(rows_ + 1);
        Value cell = value;
        column.cells.exchange(static_cast<RowId>(rows_), cell);
    }
    GenericValue fitted(const LoadedColumn& column, const GenericValue& value) {
        if (value.isUndefined())
            return {};
        FittedCell cell = fit_cell(column.domain, value);
        if (cell.loss) {
            const bool kept = *cell.loss >= LossReason::tooLarge;
            losses_.add({rows_, line_, column.name, value.presentation(), *cell.loss});
            return kept ? cell.value : GenericValue();
        }
        return cell.value;
    }

    /// The type that was given, or the one that all values have; Undefined among them where one is missing.
    [[nodiscard]] static TypeDomain domainOf(const LoadedColumn& column) {
        TypeDomain domain = column.domain;
        const auto add_only = [&](ValueKind kind, const GUID& type) {
            if (column.domain.isEmpty() && column.kinds == 1U << static_cast<unsigned>(kind))
                domain.addType(type);
        };
        add_only(ValueKind::number, kNumberType);
        add_only(ValueKind::string, kStringType);
        add_only(ValueKind::boolean, kBooleanType);
        if (domain.isEmpty())
            return domain;
        for (std::size_t row = 0; row < column.cells.size(); ++row) {
            if (column.cells.get(static_cast<RowId>(row)).isUndefined()) {
                domain.addType(kUndefinedType);
                break;
            }
        }
        return domain;
    }

    JsonBuilder values_;
    int arrays_; // around the rows
    StopToken stop_;
    int depth_ = 0;
    bool inRow_ = false;
    std::size_t member_ = 0; // the column whose value comes
    std::uint64_t line_ = 0;
    std::size_t rows_ = 0;
    ColumnNames names_;
    std::unordered_map<std::string, std::size_t> byKey_;
    std::vector<LoadedColumn> columns_;
    Losses losses_;
};

} // namespace

Table read_json_table(std::string_view text, wstring_view name, const JsonTableOptions& options) {
    const std::size_t first = text.find_first_not_of("\xEF\xBB\xBF \t\r\n");
    const bool lines = first != std::string_view::npos && text[first] == '{';
    TableBuilder builder(options, lines);
    if (lines) {
        each_json_line(text, [&](std::string_view line, std::uint64_t number) {
            builder.setLine(number);
            JsonReader reader(builder, Nesting::kMaxDepth, number, name);
            reader.read(line);
            reader.finish();
        });
    } else {
        JsonReader reader(builder, Nesting::kMaxDepth, 1, name);
        reader.read(text);
        reader.finish();
    }
    return builder.finish(text, name, options.losses);
}

Table load_json_table(std::string_view file, const JsonTableOptions& options) {
    const auto opened = require_service<IFileSystem>().openURL(from_utf8(file), OpenMode::read);
    const std::vector<std::byte> bytes = read_whole(*opened);
    return read_json_table({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, from_utf8(file),
                           options);
}

} // namespace core
