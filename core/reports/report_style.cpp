// SPDX-License-Identifier: Apache-2.0
#include "core/collections/stored_count.h"

#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/reports/report_style.h>
#include <core/runtime/persistable.h>
#include <core/strings/compare.h>
#include <core/strings/names.h>
#include <core/strings/trim.h>
#include <core/tables/errors.h>
#include <core/values/errors.h>

#include <algorithm>
#include <tuple>

namespace core {
namespace {

/// All parts except the name, which may differ in case.
auto parts_of(const ColumnStyle& column) noexcept {
    return std::tie(column.title, column.format, column.alignment, column.style, column.total);
}

/// A column that was only asked for says nothing.
bool says_nothing(const ColumnStyle& column) noexcept {
    static const ColumnStyle nothing;
    return parts_of(column) == parts_of(nothing);
}

std::size_t saying_columns(const ReportStyle& style) noexcept {
    return static_cast<std::size_t>(std::ranges::count_if(
        style.columns, [](const ColumnStyle& column) { return !says_nothing(column); }));
}

void put(ListOutStream& out, const ColumnStyle& column) {
    out.putBeginOfList();
    out.put(column.name);
    out.put(column.title);
    out.put(column.format);
    out.put(static_cast<std::int32_t>(column.alignment));
    to_stream(out, column.style);
    out.put(column.total);
    out.putEndOfList();
}

ColumnStyle get_column(ListInStream& in) {
    ColumnStyle column;
    std::int32_t alignment = 0;
    in.getBeginOfList();
    in.get(column.name);
    in.get(column.title);
    in.get(column.format);
    in.get(alignment);
    from_stream(in, column.style);
    in.get(column.total);
    in.getEndOfList();
    if (!is_valid_name(column.name) || alignment < 0 ||
        alignment > static_cast<std::int32_t>(ColumnAlignment::right))
        throw_malformed();
    column.alignment = static_cast<ColumnAlignment>(alignment);
    return column;
}

void put(IOutPersistenceStorage* storage, const ReportRule& rule) {
    ListOutStream& out = storage->listStream();
    out.putBeginOfList();
    rule.condition.serialize(storage);
    to_stream(out, rule.style);
    out.put(static_cast<std::int64_t>(rule.columns.size()));
    for (const wstring& column : rule.columns)
        out.put(column);
    out.put(rule.title);
    out.putEndOfList();
}

ReportRule get_rule(IInPersistenceStorage* storage) {
    ListInStream& in = storage->listStream();
    ReportRule rule;
    in.getBeginOfList();
    rule.condition = Filter::deserialize(storage);
    from_stream(in, rule.style);
    for (std::int64_t left = get_count(in); left > 0; --left)
        in.get(rule.columns.emplace_back());
    in.get(rule.title);
    in.getEndOfList();
    return rule;
}

} // namespace

const ColumnStyle* ReportStyle::find(wstring_view name) const noexcept {
    const auto found = std::ranges::find_if(columns, [name](const ColumnStyle& column) {
        return compare_nocase(wstring_view(column.name), name) == 0;
    });
    return found != columns.end() ? &*found : nullptr;
}

ColumnStyle& ReportStyle::column(wstring_view name) {
    name = trim_all(name);
    if (const ColumnStyle* const found = find(name))
        return columns[static_cast<std::size_t>(found - columns.data())];
    if (!is_valid_name(name))
        throw_error<ContextException>(messages::kBadColumnName, {wstring(name)});
    return columns.emplace_back(ColumnStyle{.name = wstring(name)});
}

void ReportStyle::serialize(IOutPersistenceStorage* storage) const {
    ListOutStream& out = storage->listStream();
    out.putBeginOfList();
    out.put(title);
    out.put(style.has_value());
    if (style)
        to_stream(out, *style);
    out.put(static_cast<std::int64_t>(saying_columns(*this)));
    for (const ColumnStyle& column : columns) {
        if (!says_nothing(column))
            put(out, column);
    }
    out.put(static_cast<std::int64_t>(rules.size()));
    for (const ReportRule& rule : rules)
        put(storage, rule);
    out.putEndOfList();
}

ReportStyle ReportStyle::deserialize(IInPersistenceStorage* storage) {
    ListInStream& in = storage->listStream();
    ReportStyle read;
    bool hasStyle = false;
    in.getBeginOfList();
    in.get(read.title);
    in.get(hasStyle);
    if (hasStyle)
        from_stream(in, read.style.emplace());
    for (std::int64_t left = get_count(in); left > 0; --left) {
        ColumnStyle column = get_column(in);
        if (read.find(column.name) != nullptr)
            throw_malformed();
        read.columns.push_back(std::move(column));
    }
    for (std::int64_t left = get_count(in); left > 0; --left)
        read.rules.push_back(get_rule(storage));
    in.getEndOfList();
    return read;
}

bool operator==(const ReportStyle& a, const ReportStyle& b) noexcept {
    return a.title == b.title && a.style == b.style && a.rules == b.rules &&
           saying_columns(a) == saying_columns(b) &&
           std::ranges::all_of(a.columns, [&b](const ColumnStyle& column) {
               const ColumnStyle* const other = b.find(column.name);
               return says_nothing(column) || (other != nullptr && parts_of(column) == parts_of(*other));
           });
}

std::int32_t ReportStyle::hash() const noexcept {
    auto hash = static_cast<std::uint32_t>(style ? style->hash() : 0);
    for (const wchar unit : title)
        hash = hash * 31 + unit;
    return static_cast<std::int32_t>(hash * 31 +
                                     static_cast<std::uint32_t>(rules.size() * 31 + saying_columns(*this)));
}

} // namespace core
