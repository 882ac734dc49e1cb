// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/row_search.h"
#include "core/tables/shape/tree_filling.h"
#include "core/tables/shape/tree_rows.h"

#include <core/strings/integer_text.h>
#include <core/tables/errors.h>
#include <core/values/errors.h>

#include <numeric>

namespace core {
namespace {

constexpr std::uint32_t kNone = NewTreeRow::kNone;

bool is_blank(const Value& value) noexcept {
    return value.isUndefined() || value.kind() == ValueKind::null;
}

std::vector<std::size_t> all_columns(const TableData& table) {
    std::vector<std::size_t> columns(table.columnCount());
    std::iota(columns.begin(), columns.end(), std::size_t{0});
    return columns;
}

/// The rows of a tree by their paths.
class Paths {
  public:
    Paths(wstring_view separator, std::vector<NewTreeRow>& rows) : separator_(separator), rows_(rows) {}

    /// Adds the row of a path, and those above it that are not there yet.
    void add(RowId source, const wstring& path) {
        const std::size_t end = path.rfind(separator_);
        const std::uint32_t parent = end != wstring::npos ? rowOf(path.substr(0, end)) : kNone;
        enter(path, source, parent, end != wstring::npos ? path.substr(end + separator_.size()) : path);
    }

  private:
    std::uint32_t rowOf(const wstring& path) {
        // From the longest beginning of the path that is there on, row by row: a path may have many parts.
        std::vector<std::size_t> ends;
        std::size_t end = path.size();
        std::uint32_t row = kNone;
        while (true) {
            if (const auto known = byPath_.find(path.substr(0, end)); known != byPath_.end()) {
                row = known->second;
                break;
            }
            ends.push_back(end);
            end = end != 0 ? path.rfind(separator_, end - 1) : wstring::npos;
            if (end == wstring::npos)
                break;
        }
        while (!ends.empty()) {
            const std::size_t begin = end != wstring::npos ? end + separator_.size() : 0;
            end = ends.back();
            ends.pop_back();
            row = enter(path.substr(0, end), kNoRow, row, path.substr(begin, end - begin));
        }
        return row;
    }
    std::uint32_t enter(const wstring& path, RowId source, std::uint32_t parent, const wstring& name) {
        const auto row = static_cast<std::uint32_t>(rows_.size());
        rows_.push_back({source, parent, Value(name)});
        byPath_.emplace(path, row); // what is below a path that comes twice is below the first one
        return row;
    }

    wstring_view separator_;
    std::vector<NewTreeRow>& rows_;
    std::unordered_map<wstring, std::uint32_t> byPath_;
};

} // namespace

void tree_by_parent(const TableData& table, std::size_t key, std::size_t parent, TableData& tree,
                    WorkWatch& watch) {
    const RowList list(table, kNoRow, false);
    const RowRange range = list.range();
    const TableColumn& keys = table.column(key);
    const TableColumn& parents = table.column(parent);
    ValueDictionary dictionary;
    for (std::size_t i = 0; i < range.size(); ++i) {
        watch.turn();
        const Value value = keys.cells.get(range[i]);
        if (is_blank(value))
            throw_error<ContextException>(messages::kTreeNoKey, {row_number(i), keys.info.name});
        if (dictionary.add(value) != i + 1)
            throw_error<ContextException>(messages::kTreeKeyTwice,
                                          {row_number(i), value.presentation(), keys.info.name});
    }
    const wstring nothing;
    std::vector<NewTreeRow> rows(range.size());
    for (std::size_t i = 0; i < range.size(); ++i) {
        watch.turn();
        rows[i].source = range[i];
        const Value above = parents.cells.get(range[i]);
        const auto found = is_blank(above) ? std::optional<ValueDictionary::Code>(0) : dictionary.find(above);
        if (!found && !above.equals(Value(nothing)))
            throw_error<ContextException>(messages::kTreeNoParent,
                                          {row_number(i), above.presentation(), keys.info.name});
        rows[i].parent = found && *found != 0 ? *found - 1 : kNone;
    }
    const std::uint32_t lost = fill_tree(tree, table, {all_columns(table)}, rows, watch);
    if (lost != kNone)
        throw_error<ContextException>(messages::kTreeCircle,
                                      {row_number(lost), keys.cells.get(range[lost]).presentation()});
}

void tree_by_path(const TableData& table, std::size_t path, wstring_view separator, TableData& tree,
                  WorkWatch& watch) {
    const RowList list(table, kNoRow, false);
    const RowRange range = list.range();
    const TableColumn& column = table.column(path);
    std::vector<NewTreeRow> rows;
    Paths paths(separator, rows);
    for (std::size_t i = 0; i < range.size(); ++i) {
        watch.turn();
        const Value value = column.cells.get(range[i]);
        const wstring_view* const text = value.asString();
        if (text == nullptr)
            throw_error<ContextException>(messages::kTreeNoPath, {row_number(i), column.info.name});
        paths.add(range[i], wstring(*text));
    }
    static_cast<void>(fill_tree(tree, table, {all_columns(table), path}, rows, watch));
}

void tree_by_level(const TableData& table, std::size_t level, TableData& tree, WorkWatch& watch) {
    const RowList list(table, kNoRow, false);
    const RowRange range = list.range();
    const TableColumn& column = table.column(level);
    std::vector<NewTreeRow> rows(range.size());
    std::vector<std::uint32_t> above; // the last row of each level
    for (std::size_t i = 0; i < range.size(); ++i) {
        watch.turn();
        const Value value = column.cells.get(range[i]);
        const auto depth = value.asSmallWhole();
        if (!depth || *depth < 0 || static_cast<std::size_t>(*depth) > above.size())
            throw_error<ContextException>(
                messages::kTreeLevel,
                {row_number(i), value.presentation(), column.info.name, string_intto(above.size())});
        above.resize(static_cast<std::size_t>(*depth));
        rows[i] = {.source = range[i], .parent = above.empty() ? kNone : above.back()};
        above.push_back(static_cast<std::uint32_t>(i));
    }
    std::vector<std::size_t> columns = all_columns(table);
    columns.erase(columns.begin() + static_cast<std::ptrdiff_t>(level));
    static_cast<void>(fill_tree(tree, table, {std::move(columns)}, rows, watch));
}

} // namespace core
