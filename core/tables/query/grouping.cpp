// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/grouping.h"

#include "core/strings/hash_index.h"
#include "core/tables/data/word_span.h"

#include <array>

namespace core {
namespace {

/// Numbers pairs of a group and a key: new groups in the order of their first rows.
class GroupTable {
  public:
    /// Takes one after the other: taken together, small groups and small keys would have few different sums.
    [[nodiscard]] std::uint64_t hash(std::uint32_t group, std::uint64_t key) const noexcept {
        return table_hash_step(table_hash_step(seed_, group), key);
    }
    void prefetch(std::uint64_t hash) const noexcept { index_.prefetch(hash); }
    [[nodiscard]] std::uint32_t groupOf(std::uint64_t hash, std::uint32_t group, std::uint64_t key) {
        const std::uint32_t known = index_.find(hash, [&](std::uint32_t number) {
            return pairs_[number].key == key && pairs_[number].group == group;
        });
        if (known != HashIndex::kNone)
            return known;
        const auto number = static_cast<std::uint32_t>(pairs_.size());
        pairs_.push_back({key, group});
        index_.add(hash, number);
        return number;
    }

  private:
    struct Pair {
        std::uint64_t key;
        std::uint32_t group;
    };

    std::uint64_t seed_ = table_hash_seed();
    std::vector<Pair> pairs_; // by the number of the new group
    HashIndex index_;
};

/// Numbers pairs of which there are few enough to count them off in an array.
template <class Key, class Number>
void number_in_array(std::span<const std::uint32_t> groups, std::size_t before, std::size_t width, Key key,
                     Number number, WorkWatch& watch) {
    constexpr std::uint32_t kNew = ~std::uint32_t{0};
    std::vector<std::uint32_t> numbers(before * width, kNew);
    std::uint32_t next = 0;
    watch.inPieces(groups.size(), [&](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i) {
            std::uint32_t& group = numbers[groups[i] * width + static_cast<std::size_t>(key(i))];
            if (group == kNew)
                group = next++;
            number(i, group);
        }
    });
}

/// Numbers those of many possible pairs that occur. The table is larger than the caches of the processor:
/// the slots of some rows are fetched at a time.
template <class Key, class Number>
void number_in_table(std::span<const std::uint32_t> groups, Key key, Number number, WorkWatch& watch) {
    constexpr std::size_t kBatch = 32;
    std::array<std::uint64_t, kBatch> keys{};
    std::array<std::uint64_t, kBatch> hashes{};
    GroupTable table;
    watch.inPieces(groups.size(), [&](std::size_t first, std::size_t end) {
        for (std::size_t begin = first; begin < end; begin += kBatch) {
            const std::size_t count = std::min(kBatch, end - begin);
            for (std::size_t i = 0; i < count; ++i) {
                keys[i] = key(begin + i);
                hashes[i] = table.hash(groups[begin + i], keys[i]);
                table.prefetch(hashes[i]);
            }
            for (std::size_t i = 0; i < count; ++i)
                number(begin + i, table.groupOf(hashes[i], groups[begin + i], keys[i]));
        }
    });
}

/// Splits each group by the key of its rows, which is `highest` at the most.
template <class Key>
void split_by(RowGroups& groups, RowRange rows, std::uint64_t highest, Key key, WorkWatch& watch) {
    const std::size_t before = groups.firstRows.size();
    std::vector<RowId> firstRows;
    const auto number = [&](std::size_t i, std::uint32_t group) {
        if (group == firstRows.size())
            firstRows.push_back(rows[i]);
        groups.groups[i] = group;
    };
    const std::uint64_t fewPairs = std::max<std::size_t>(std::size_t{1} << 16, 2 * rows.size());
    if (before != 0 && highest < fewPairs / before)
        number_in_array(groups.groups, before, static_cast<std::size_t>(highest) + 1, key, number, watch);
    else
        number_in_table(groups.groups, key, number, watch);
    groups.firstRows.swap(firstRows);
}

} // namespace

RowGroups one_group(RowRange rows) {
    RowGroups groups;
    groups.groups.resize(rows.size());
    if (rows.size() != 0)
        groups.firstRows.push_back(rows[0]);
    return groups;
}

void split_groups(RowGroups& groups, RowRange rows, const CellColumn& cells, WorkWatch& watch) {
    rows.visit([&](auto row_at) {
        switch (cells.form()) {
        case CellColumn::Form::coded:
            split_by(
                groups, rows, cells.dictionary().size(),
                [codes = cells.codes(), row_at](std::size_t i) -> std::uint64_t { return codes[row_at(i)]; },
                watch);
            break;
        case CellColumn::Form::values: {
            ValueDictionary dictionary;
            std::vector<ValueDictionary::Code> codes(rows.size());
            watch.inPieces(codes.size(), [&](std::size_t begin, std::size_t end) {
                dictionary.add(
                    std::span(codes).subspan(begin, end - begin),
                    [&](std::size_t i) -> const Value& { return cells.values()[row_at(begin + i)]; });
            });
            split_by(
                groups, rows, dictionary.size(), [&](std::size_t i) -> std::uint64_t { return codes[i]; },
                watch);
            break;
        }
        default: {
            const auto words = cells.words();
            const WordSpan span(rows, words);
            split_by(
                groups, rows, span.highest(), [=](std::size_t i) { return span.distance(words[row_at(i)]); },
                watch);
        }
        }
    });
}

RowGroups group_rows(RowRange rows, std::span<const CellColumn* const> columns, WorkWatch& watch) {
    RowGroups groups = one_group(rows);
    for (const CellColumn* const cells : columns)
        split_groups(groups, rows, *cells, watch);
    return groups;
}

} // namespace core
