// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/table_data.h"
#include "core/tables/query/work_watch.h"

#include <core/strings/names.h>

#include <unordered_map>

namespace core {

/// Adds rows to a table, all or none. First they are read and fitted, then put into the table, so that a
/// table can be added to itself, and a script that hears of the first row can change what the others came
/// from.
class AddedRows {
  public:
    /// Borrows both.
    AddedRows(TableData& data, WorkWatch& watch) : data_(data), watch_(watch), cells_(data.columnCount()) {}

    /// Reads rows of structures, arrays and rows of tables. Whatever a cell cannot keep is added to `losses`.
    /// Throws ContextException ("IDS_VT_NO_ROW") for any other value, "IDS_VT_MORE_VALUES" for an array that
    /// is longer than a row.
    void read(std::span<const Value> rows, Losses& losses);
    /// Reads all rows of a table.
    void read(const TableData& table, Losses& losses);
    /// Puts the rows behind those that are there.
    void put();

  private:
    [[nodiscard]] std::size_t columnFor(wstring_view name, const ColumnInfo* info);
    void readRow(const Value& row, Losses& losses);
    void readCell(std::size_t column, const Value& value, Losses& losses);
    void putRows();

    TableData& data_;
    WorkWatch& watch_;
    std::vector<CellColumn> cells_; // of the table's columns, then of those that it lacks
    std::vector<ColumnInfo> lacking_;
    std::unordered_map<wstring, std::size_t, NocaseHash, NocaseEqual> lackingNames_;
    std::size_t count_ = 0;
};

/// Returns values as the cells of the first columns of a new row. Throws ContextException
/// ("IDS_VT_MORE_VALUES") for more values than columns, without the Undefined ones at the end, and
/// ConversionException for a value that its column cannot keep.
[[nodiscard]] std::vector<Value> fitted_cells(const TableData& data, std::span<const GenericValue> values);

} // namespace core
