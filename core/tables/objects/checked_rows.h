// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/objects/table_arguments.h"
#include "core/tables/query/row_search.h"

#include <core/tables/value_columns.h>
#include <core/tables/value_table.h>

namespace core {

/// The rows below one parent, or those of a table, to C++ code: positions and ids of columns are checked, and
/// the same functions called that scripts call.
class CheckedRows {
  public:
    /// Borrows the data. The parent is kNoRow in a table.
    CheckedRows(TableData& data, RowId parent) noexcept : data_(data), parent_(parent) {}

    [[nodiscard]] RowId at(std::size_t position) const {
        if (position >= rows().size())
            throw_bad_index();
        return rows().at(position);
    }
    [[nodiscard]] std::size_t column(std::int32_t id) const { return column_with_id(data_, id); }
    [[nodiscard]] ColumnList columns(std::span<const std::int32_t> ids) const;
    /// The same; none stands for all.
    [[nodiscard]] ColumnList columnsOrAll(std::span<const std::int32_t> ids) const;

    [[nodiscard]] Value get(std::size_t row, std::int32_t id) const { return data_.get(at(row), column(id)); }
    void set(std::size_t row, std::int32_t id, const Value& value) { data_.set(at(row), column(id), value); }
    /// Checks what insert() needs, for a caller that makes the row's object first.
    void checkInsertion(std::size_t position, std::span<const Value> cells) const;
    void insert(std::size_t position, std::span<const Value> cells) {
        checkInsertion(position, cells);
        data_.insertRow(parent_, position, cells);
    }
    void remove(std::size_t row) {
        static_cast<void>(at(row));
        data_.removeRow(parent_, row);
    }
    void move(std::size_t from, std::size_t to);
    void load(std::int32_t id, std::span<const Value> values, Losses* losses) {
        data_.load(parent_, column(id), values, losses);
    }
    [[nodiscard]] std::vector<Value> unload(std::int32_t id) const;

    // `deep`: with the rows below them
    [[nodiscard]] RowId find(const Value& value, std::span<const std::int32_t> ids, bool deep) const;
    [[nodiscard]] std::vector<RowId> findRows(std::span<const VTFindParam> filter, bool deep) const;
    [[nodiscard]] Value total(std::int32_t id, bool deep) const;
    void sort(std::span<const VTSortParam> columns, bool deep, ICompareValues* comparison);

  private:
    [[nodiscard]] const RowOrder& rows() const noexcept { return data_.rowsOf(parent_); }

    TableData& data_;
    RowId parent_;
};

} // namespace core
