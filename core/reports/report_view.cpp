// SPDX-License-Identifier: Apache-2.0
#include "core/reports/report_view.h"

#include "core/tables/data/unknown_column.h"

#include <core/context/arguments.h>
#include <core/presentation/services.h>
#include <core/runtime/process.h>
#include <core/strings/compare.h>
#include <core/tables/trees.h>
#include <core/values/errors.h>

#include <algorithm>
#include <map>

namespace core {
namespace {

TableView shown(const Value& table) {
    auto view = table_view(table);
    if (!view)
        parameter_type_mismatch(0);
    return std::move(*view);
}

Style style_of(const ReportStyle& style) {
    if (style.style)
        return *style.style;
    const IPresentationService* const look = get_service<IPresentationService>();
    return look != nullptr ? look->style() : Style();
}

/// The column with the levels of a tree has a name that no other one has.
wstring level_name(const std::vector<wstring>& names) {
    wstring level = u"Level";
    while (std::ranges::any_of(names, [&level](const wstring& name) {
        return compare_nocase(wstring_view(name), wstring_view(level)) == 0;
    }))
        level += u'_';
    return level;
}

/// The rows in one table, in the order in which they are shown: that of the report, or a copy.
InterfacePtr<IValueTableBaseRO> rows_of(const Value& table, const std::vector<wstring>& names) {
    if (auto rows = table.query<IValueTableBaseRO>())
        return rows;
    if (const auto tree = table.query<IValueTree>())
        return table_by_level(*tree, level_name(names)).query<IValueTableBaseRO>();
    const auto copy = create_value_table();
    for (const wstring& name : names)
        copy->addColumn(name);
    table_view(table, ViewFor::programs)->walk([&copy](std::span<const Value> cells, std::size_t) {
        copy->appendRow(cells);
        return true;
    });
    return copy.query<IValueTableBaseRO>();
}

/// Puts what a style sets for cells over a look.
void put_over(CellLook& below, const Style& style) {
    CellLook look = look_of(style);
    below.text = look.text ? look.text : below.text;
    below.back = look.back ? look.back : below.back;
    below.font = look.font.inheriting(below.font);
}

bool names_column(const ReportRule& rule, wstring_view name) {
    return rule.columns.empty() || std::ranges::any_of(rule.columns, [name](const wstring& column) {
               return compare_nocase(wstring_view(column), name) == 0;
           });
}

} // namespace

CellLook look_of(const Style& style) {
    const auto color = [&style](wstring_view item) {
        const auto set = style.color(*find_color(style_colors(), item));
        return set && !set->isAutomatic() ? set : std::nullopt;
    };
    return {color(u"TextColor"), color(u"BackColor"), style.font(*find_style_font(u"TextFont"))};
}

Rgba strongest_on(Rgba background) noexcept {
    constexpr Rgba black{0, 0, 0}, white{255, 255, 255};
    return contrast(black, background) >= contrast(white, background) ? black : white;
}

ReportView::ReportView(const Report& report)
    : view_(shown(report.table)), isTree_(report.table.query<IValueTree>() != nullptr),
      style_(style_of(report.style)) {
    auto forPrograms = table_view(report.table, ViewFor::programs);
    for (TableView::Column& column : forPrograms->columns)
        names_.push_back(std::move(column.title));
    if (isTree_)
        names_.erase(names_.begin()); // the level
    setColumns(report.style);
    const bool hasTotals = std::ranges::any_of(
        report.style.columns, [](const ColumnStyle& column) { return !column.total.empty(); });
    std::vector<Rules> sets{{}};
    if (hasTotals || !report.style.rules.empty()) {
        const auto rows = rows_of(report.table, names_);
        if (hasTotals)
            setTotals(report.style, *rows);
        sets = findRules(report.style, *rows);
    }
    makeLooks(report.style, sets);
}

std::size_t ReportView::columnOf(wstring_view name) const {
    const auto found = std::ranges::find_if(
        names_, [name](const wstring& known) { return compare_nocase(wstring_view(known), name) == 0; });
    if (found == names_.end()) {
        NearestName nearest(name);
        for (const wstring& known : names_)
            nearest.add(known);
        throw_unknown_column(name, nearest);
    }
    return static_cast<std::size_t>(found - names_.begin());
}

void ReportView::setColumns(const ReportStyle& style) {
    for (const ColumnStyle& said : style.columns) {
        if (said == ColumnStyle{.name = said.name})
            continue; // it was only asked for
        TableView::Column& column = view_.columns[columnOf(said.name)];
        if (!said.title.empty())
            column.title = said.title;
        column.alignment = said.alignment;
        column.format = said.format;
    }
    for (const ReportRule& rule : style.rules) {
        for (const wstring& name : rule.columns)
            static_cast<void>(columnOf(name));
    }
}

void ReportView::setTotals(const ReportStyle& style, IValueTableBaseRO& rows) {
    std::vector<wstring> totals(view_.columns.size());
    for (const ColumnStyle& said : style.columns) {
        if (said.total.empty())
            continue;
        const std::size_t index = columnOf(said.name);
        const GenericValue total = total_rows(rows, said.total);
        try {
            totals[index] = view_.columns[index].text(total);
        } catch (const CtorException&) { // the count of a column of dates
            totals[index] = view_.columns[index].domain.presentation(total);
        }
    }
    if (totals.front().empty())
        totals.front() = message_text("IDS_REPORT_TOTAL");
    view_.totals = std::move(totals);
}

std::vector<ReportView::Rules> ReportView::findRules(const ReportStyle& style,
                                                     const IValueTableBaseRO& rows) {
    std::vector<Rules> sets{{}};
    rulesOfRow_.assign(view_.rows, 0);
    for (std::size_t rule = 0; rule < style.rules.size(); ++rule) {
        std::map<std::uint32_t, std::uint32_t> withRule; // by the set without it
        for (const std::size_t row : find_rows(rows, style.rules[rule].condition)) {
            std::uint32_t& set = rulesOfRow_[row];
            const auto fresh = static_cast<std::uint32_t>(sets.size());
            const auto [found, isNew] = withRule.try_emplace(set, fresh);
            if (isNew) {
                Rules rules = sets[set];
                rules.push_back(rule);
                sets.push_back(std::move(rules));
            }
            set = found->second;
        }
    }
    return sets;
}

void ReportView::makeLooks(const ReportStyle& style, const std::vector<Rules>& sets) {
    for (const Rules& rules : sets) {
        std::vector<std::uint32_t>& indexes = looksOfRules_.emplace_back();
        for (const wstring& name : names_) {
            CellLook look;
            if (const ColumnStyle* const column = style.find(name))
                put_over(look, column->style);
            for (const std::size_t rule : rules) {
                if (names_column(style.rules[rule], name))
                    put_over(look, style.rules[rule].style);
            }
            const auto found = std::ranges::find(looks_, look);
            indexes.push_back(static_cast<std::uint32_t>(found - looks_.begin()));
            if (found == looks_.end())
                looks_.push_back(std::move(look));
        }
        indexes.resize(view_.columns.size()); // a list has a column of pictures, which no style names
    }
}

} // namespace core
