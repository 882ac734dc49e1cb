// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/group_table.h"

#include <core/tables/errors.h>
#include <core/values/errors.h>

namespace core {
namespace {

/// Throws ContextException for what is computed and has no name of its own: it is called as it is written.
void require_name(const wstring& name) {
    if (!is_valid_name(name))
        throw_error<ContextException>(messages::kColumnUnnamed, {name});
}

TableContent groups_alone(RowRange rows, std::span<const TableColumn* const> keys,
                          std::span<const BoundAggregate> aggregates, WorkWatch& watch) {
    const RowGroups groups = group_rows(rows, cells_of(keys), watch);
    NewColumns columns(groups.firstRows.size());
    for (const TableColumn* const key : keys)
        columns.add(key->info, key->cells.copy(RowRange(groups.firstRows)));
    for (const BoundAggregate& aggregate : aggregates)
        columns.add({.name = aggregate.name, .domain = domain_of(aggregate)},
                    aggregate_cells(aggregate, rows, groups, watch));
    return columns.take();
}

/// The groups of all levels: by no column, by the first one, and so on.
class Levels {
  public:
    Levels(RowRange rows, std::span<const TableColumn* const> keys, WorkWatch& watch) {
        levels_.push_back(one_group(rows));
        for (const TableColumn* const key : keys) {
            levels_.push_back(levels_.back());
            split_groups(levels_.back(), rows, key->cells, watch);
        }
        gatherChildren();
        if (rows.size() != 0)
            enter(0, 0);
    }

    /// A row of the result.
    struct Place {
        std::uint32_t level;
        std::uint32_t group; ///< of that level
    };
    /// Each group before those that it consists of.
    [[nodiscard]] std::span<const Place> places() const noexcept { return places_; }
    [[nodiscard]] const RowGroups& operator[](std::size_t level) const noexcept { return levels_[level]; }
    [[nodiscard]] std::size_t count() const noexcept { return levels_.size(); }

  private:
    /// A group of the next level follows its last sister, or is the first one.
    struct Children {
        std::vector<std::uint32_t> first; ///< by the group
        std::vector<std::uint32_t> next;  ///< by the group of the next level: its sister
    };
    static constexpr std::uint32_t kNone = ~std::uint32_t{0};

    void gatherChildren() {
        for (std::size_t level = 0; level + 1 < levels_.size(); ++level) {
            const RowGroups& above = levels_[level];
            const RowGroups& below = levels_[level + 1];
            Children children{std::vector<std::uint32_t>(above.firstRows.size(), kNone),
                              std::vector<std::uint32_t>(below.firstRows.size(), kNone)};
            std::vector<std::uint32_t> last(above.firstRows.size(), kNone);
            std::uint32_t met = 0;
            for (std::size_t i = 0; i < below.groups.size(); ++i) {
                if (below.groups[i] != met)
                    continue; // groups are numbered in the order of their first rows
                std::uint32_t& sister = last[above.groups[i]];
                (sister == kNone ? children.first[above.groups[i]] : children.next[sister]) = met;
                sister = met++;
            }
            children_.push_back(std::move(children));
        }
    }
    void enter(std::uint32_t level, std::uint32_t group) {
        places_.push_back({level, group});
        if (level == children_.size())
            return;
        for (std::uint32_t child = children_[level].first[group]; child != kNone;
             child = children_[level].next[child])
            enter(level + 1, child);
    }

    std::vector<RowGroups> levels_;
    std::vector<Children> children_; // by level
    std::vector<Place> places_;
};

TableContent groups_with_totals(RowRange rows, std::span<const TableColumn* const> keys,
                                std::span<const BoundAggregate> aggregates, wstring_view name,
                                WorkWatch& watch) {
    const Levels levels(rows, keys, watch);
    const auto places = levels.places();
    NewColumns columns(places.size());
    std::vector<std::int64_t> words;
    for (const auto& place : places)
        words.push_back(place.level);
    columns.add({.name = wstring(name), .domain = TypeDomain(kNumberType)},
                CellColumn::ofWords(CellColumn::Form::numbers, 0, std::move(words)));
    for (std::size_t key = 0; key < keys.size(); ++key) {
        std::vector<RowId> picked;
        for (const auto& place : places)
            picked.push_back(place.level > key ? levels[place.level].firstRows[place.group] : kNoRow);
        ColumnInfo info = keys[key]->info;
        admit_undefined(info.domain);
        columns.add(std::move(info), picked_cells(keys[key]->cells, picked));
    }
    for (const BoundAggregate& aggregate : aggregates) {
        std::vector<CellColumn> byLevel;
        for (std::size_t level = 0; level < levels.count(); ++level)
            byLevel.push_back(aggregate_cells(aggregate, rows, levels[level], watch));
        CellColumn cells;
        cells.grow(places.size());
        for (std::size_t i = 0; i < places.size(); ++i)
            cells.put(static_cast<RowId>(i), byLevel[places[i].level].get(places[i].group));
        columns.add({.name = aggregate.name, .domain = domain_of(aggregate)}, std::move(cells));
    }
    return columns.take();
}

} // namespace

TableContent group_table(RowRange rows, std::span<const TableColumn* const> keys,
                         std::span<const BoundAggregate> aggregates, wstring_view levels, WorkWatch& watch) {
    for (const TableColumn* const key : keys)
        require_name(key->info.name);
    for (const BoundAggregate& aggregate : aggregates)
        require_name(aggregate.name);
    return levels.empty() ? groups_alone(rows, keys, aggregates, watch)
                          : groups_with_totals(rows, keys, aggregates, levels, watch);
}

} // namespace core
