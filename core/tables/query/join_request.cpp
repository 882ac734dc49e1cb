// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/join_request.h"

#include "core/tables/data/unknown_column.h"

#include <core/strings/names.h>
#include <core/strings/split.h>
#include <core/strings/trim.h>
#include <core/tables/errors.h>
#include <core/values/errors.h>

#include <algorithm>

namespace core {
namespace {

const TableColumn& column_of(const TableData& data, wstring_view name) {
    const auto position = data.findColumn(name);
    if (!position)
        throw_unknown_column(data, name);
    return data.column(*position);
}

bool is_as(wstring_view word) {
    return compare_nocase(word, u"As") == 0 || compare_nocase(word, u"Как") == 0;
}

/// Reads "Name" or "Name As Other".
AddedColumn read_added_column(const TableData& right, wstring_view item) {
    const auto words = string_tokenize(item, u" \t\n\r");
    const bool renamed = words.size() == 3 && is_as(words[1]);
    if (words.size() != 1 && !renamed)
        throw_error<ContextException>(messages::kUnknownColumn, {wstring(item)});
    const TableColumn& column = column_of(right, words[0]);
    return {&column, renamed ? wstring(words[2]) : column.info.name};
}

/// Throws where a name is taken already.
void require_free_names(const TableData& left, std::span<const AddedColumn> added) {
    for (const AddedColumn& one : added) {
        const bool twice = std::any_of(added.begin(), added.end(), [&](const AddedColumn& other) {
            return &other != &one && compare_nocase(other.name, one.name) == 0;
        });
        if (twice || left.findColumn(one.name))
            throw_error<ContextException>(messages::kJoinNameTaken, {one.name});
        if (!is_valid_name(one.name))
            throw_error<ContextException>(messages::kBadColumnName, {one.name});
    }
}

} // namespace

std::vector<ColumnPair> read_join_pairs(const TableData& left, const TableData& right, wstring_view on) {
    std::vector<ColumnPair> pairs;
    for (const wstring_view item : string_tokenize(on, u",", EmptyTokens::keep)) {
        const auto names = string_tokenize(item, u"=", EmptyTokens::keep);
        const wstring_view first = trim_all(names.front());
        const wstring_view second = trim_all(names.back());
        if (names.size() > 2 || first.empty() || second.empty())
            throw_error<ContextException>(messages::kJoinCondition, {wstring(on)});
        pairs.push_back({&column_of(left, first), &column_of(right, second)});
    }
    return pairs;
}

std::vector<AddedColumn> read_added_columns(const TableData& left, const TableData& right,
                                            const JoinRequest& request, std::span<const ColumnPair> pairs) {
    std::vector<AddedColumn> added;
    const bool filters = request.kind == JoinKind::semi || request.kind == JoinKind::anti;
    if (request.columns) {
        if (trim_all(*request.columns).empty())
            return added;
        if (filters)
            throw_error<ContextException>(messages::kJoinAddsNothing, {wstring(trim_all(*request.columns))});
        for (const wstring_view item : string_tokenize(*request.columns, u",", EmptyTokens::keep))
            added.push_back(read_added_column(right, trim_all(item)));
    } else if (!filters) {
        for (std::size_t i = 0; i < right.columnCount(); ++i) {
            const TableColumn& column = right.column(i);
            const bool joined = std::any_of(pairs.begin(), pairs.end(),
                                            [&](const ColumnPair& pair) { return pair.right == &column; });
            if (!joined)
                added.push_back({&column, column.info.name});
        }
    }
    require_free_names(left, added);
    return added;
}

} // namespace core
