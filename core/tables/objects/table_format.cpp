// SPDX-License-Identifier: Apache-2.0
#include "core/tables/objects/table_format.h"

#include "core/collections/stored_count.h"
#include "core/lists/list_run.h"
#include "core/lists/malformed.h"
#include "core/objects/stored_text.h"
#include "core/runtime/threads/loop_check.h"
#include "core/tables/objects/table_cells.h"

#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/strings/names.h>

namespace core {
namespace {

void put_count(ListOutStream& out, std::size_t count) {
    out.put(static_cast<std::int64_t>(count));
}

void put_columns(ListOutStream& out, const TableData& data) {
    out.putBeginOfList();
    put_count(out, data.columnCount());
    for (std::size_t i = 0; i < data.columnCount(); ++i) {
        const ColumnInfo& info = data.column(i).info;
        out.putBeginOfList();
        out.put(info.name);
        put_plain_text(out, info.title);
        out.put(info.width);
        info.domain.pattern().serialize(out);
        put_languages(out, info.title);
        out.putEndOfList();
    }
    out.putEndOfList();
}

void get_columns(ListInStream& in, TableData& data) {
    in.getBeginOfList();
    for (std::int64_t left = get_count(in); left > 0; --left) {
        ColumnInfo info;
        TypeDomainPattern pattern;
        in.getBeginOfList();
        in.get(info.name);
        info.title = get_plain_text(in);
        in.get(info.width);
        pattern.deserialize(in);
        get_languages(in, info.title);
        in.getEndOfList();
        if (!is_valid_name(info.name) || data.findColumn(info.name) || info.width < 0)
            throw_malformed();
        info.domain = TypeDomain(std::move(pattern));
        data.insertColumn(data.columnCount(), std::move(info));
    }
    in.getEndOfList();
}

void put_indexes(ListOutStream& out, const TableData& data) {
    out.putBeginOfList();
    put_count(out, data.indexes().size());
    for (const auto& index : data.indexes()) {
        out.putBeginOfList();
        put_count(out, index->columns().size());
        for (const TableColumn* const column : index->columns())
            put_count(out, data.positionOf(*column));
        out.putEndOfList();
    }
    out.putEndOfList();
}

void get_indexes(ListInStream& in, TableData& data) {
    in.getBeginOfList();
    for (std::int64_t left = get_count(in); left > 0; --left) {
        std::vector<const TableColumn*> columns;
        in.getBeginOfList();
        for (std::int64_t count = get_count(in); count > 0; --count) {
            const auto position = static_cast<std::uint64_t>(get_count(in));
            if (position >= data.columnCount())
                throw_malformed();
            columns.push_back(&data.column(static_cast<std::size_t>(position)));
            if (std::count(columns.begin(), columns.end(), columns.back()) != 1)
                throw_malformed();
        }
        in.getEndOfList();
        if (columns.empty())
            throw_malformed();
        data.addIndex(std::move(columns));
    }
    in.getEndOfList();
}

/// `check` counts the rows of all levels: a tree may have few below each row.
void put_rows(IOutPersistenceStorage* storage, const TableData& data, RowId parent,
              detail::LoopCheck& check) {
    const Nesting::Level level(storage->nesting());
    ListOutStream& out = storage->listStream();
    const RowOrder& rows = data.rowsOf(parent);
    out.putBeginOfList();
    put_count(out, rows.size());
    rows.walk([&](RowId row) {
        check();
        out.putBeginOfList();
        for (std::size_t i = 0; i < data.columnCount(); ++i)
            serialize_value(storage, data.get(row, i));
        if (data.isTree())
            put_rows(storage, data, row, check);
        out.putEndOfList();
        return true;
    });
    out.putEndOfList();
}

void get_rows(IInPersistenceStorage* storage, TableData& data, RowId parent, detail::LoopCheck& check) {
    const Nesting::Level level(storage->nesting());
    ListInStream& in = storage->listStream();
    std::vector<Value> cells;
    in.getBeginOfList();
    for (std::int64_t left = get_count(in); left > 0; --left) {
        check();
        in.getBeginOfList();
        cells.clear();
        for (std::size_t i = 0; i < data.columnCount(); ++i) {
            cells.push_back(GenericValue::deserialize(storage));
            if (!data.column(i).info.domain.canHold(cells.back()))
                throw_malformed(); // no column of this description ever held it
        }
        const RowId row = data.insertRow(parent, data.rowsOf(parent).size(), cells, CellSource::stored);
        if (data.isTree())
            get_rows(storage, data, row, check);
        in.getEndOfList();
    }
    in.getEndOfList();
}

/// Returns whether the compact form has the cells column by column. The rows of a tree stand in each other;
/// those of a table without columns cost their bytes, so that a count alone makes none.
bool stands_by_columns(const TableData& data) noexcept {
    return !data.isTree() && data.columnCount() != 0;
}

} // namespace

void serialize_table(IOutPersistenceStorage* storage, const TableData& data) {
    ListOutStream& out = storage->listStream();
    out.putBeginOfList();
    put_columns(out, data);
    if (!data.isTree())
        put_indexes(out, data);
    detail::LoopCheck check;
    detail::CompactWriter* const compact = detail::ListRun::compact(out);
    if (compact != nullptr && stands_by_columns(data))
        put_cells(storage, *compact, data);
    else
        put_rows(storage, data, kNoRow, check);
    out.putEndOfList();
}

void deserialize_table(IInPersistenceStorage* storage, TableData& data) {
    ListInStream& in = storage->listStream();
    TableData fresh(data.owner(), data.isTree());
    in.getBeginOfList();
    get_columns(in, fresh);
    if (!fresh.isTree())
        get_indexes(in, fresh);
    detail::LoopCheck check;
    detail::CompactReader* const compact = detail::ListRun::compact(in);
    if (compact != nullptr && stands_by_columns(fresh))
        get_cells(storage, *compact, fresh);
    else
        get_rows(storage, fresh, kNoRow, check);
    in.getEndOfList();
    data.replace(fresh);
}

} // namespace core
