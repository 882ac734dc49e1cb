// SPDX-License-Identifier: Apache-2.0
#include "core/tables/query/row_totals.h"

#include "core/strings/hash_index.h"
#include "core/tables/data/word_span.h"

#include <core/strings/integer_text.h>
#include <core/strings/trim.h>
#include <core/tables/errors.h>
#include <core/values/errors.h>

namespace core {
namespace {

/// A sum of up to 2^32 words, exact: their halves are summed apart.
class WordSum {
  public:
    void add(std::int64_t word) noexcept {
        high_ += word >> 32;
        low_ += static_cast<std::uint32_t>(word);
    }
    [[nodiscard]] Numeric value(std::uint32_t scale) const {
        const std::int64_t carried = high_ + static_cast<std::int64_t>(low_ >> 32);
        const auto rest = static_cast<std::uint32_t>(low_);
        if (carried == static_cast<std::int32_t>(carried)) // the sum is a word itself
            return Numeric::fromScaled(carried * kHalf + rest, scale);
        return Numeric::fromScaled(carried, scale) * kHalf + Numeric::fromScaled(rest, scale);
    }

  private:
    static constexpr std::int64_t kHalf = std::int64_t{1} << 32;

    std::int64_t high_ = 0;
    std::uint64_t low_ = 0;
};

/// Numbers of any length.
class ValueSum {
  public:
    void add(const Numeric& number) { sum_ += number; }
    [[nodiscard]] Numeric value(std::uint32_t) const { return sum_; }

  private:
    Numeric sum_;
};

/// Sums the numbers of each group, in sums that hold them all.
template <class Sum, class NumberAt>
std::vector<Value> sums_of(RowRange rows, const RowGroups& groups, std::uint32_t scale, NumberAt number_at) {
    std::vector<Sum> sums(groups.firstRows.size());
    std::vector<bool> any(groups.firstRows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (const auto number = number_at(rows[i])) {
            const std::uint32_t group = groups.groups[i];
            sums[group].add(*number);
            any[group] = true;
        }
    }
    std::vector<Value> totals(sums.size());
    for (std::size_t i = 0; i < sums.size(); ++i) {
        if (any[i])
            totals[i] = Value(sums[i].value(scale));
    }
    return totals;
}

/// Numbers pairs of a group and a key: new groups in the order of their first rows.
class GroupTable {
  public:
    [[nodiscard]] std::uint32_t groupOf(std::uint32_t group, std::uint64_t key) {
        const std::uint64_t hash = table_hash_step(seed_ + group, key);
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

/// Splits each group by the key of its rows, which is `highest` at the most.
template <class Key>
void split_groups(RowGroups& groups, RowRange rows, std::uint64_t highest, Key key) {
    const std::size_t before = groups.firstRows.size();
    std::vector<RowId> firstRows;
    const auto number = [&](std::size_t i, std::uint32_t group) {
        if (group == firstRows.size())
            firstRows.push_back(rows[i]);
        groups.groups[i] = group;
    };
    // Few possible pairs are counted off in an array, many in a table of those that occur.
    const std::uint64_t fewPairs = std::max<std::size_t>(std::size_t{1} << 16, 2 * rows.size());
    if (before != 0 && highest < fewPairs / before) {
        constexpr std::uint32_t kNew = ~std::uint32_t{0};
        const auto width = static_cast<std::size_t>(highest) + 1;
        std::vector<std::uint32_t> numbers(before * width, kNew);
        for (std::size_t i = 0; i < rows.size(); ++i) {
            std::uint32_t& group = numbers[groups.groups[i] * width + static_cast<std::size_t>(key(i))];
            if (group == kNew)
                group = static_cast<std::uint32_t>(firstRows.size());
            number(i, group);
        }
    } else {
        GroupTable table;
        for (std::size_t i = 0; i < rows.size(); ++i)
            number(i, table.groupOf(groups.groups[i], key(i)));
    }
    groups.firstRows.swap(firstRows);
}

void split_groups(RowGroups& groups, RowRange rows, const CellColumn& cells) {
    switch (cells.form()) {
    case CellColumn::Form::coded: {
        const auto codes = cells.codes();
        split_groups(groups, rows, cells.dictionary().size(),
                     [=](std::size_t i) -> std::uint64_t { return codes[rows[i]]; });
        break;
    }
    case CellColumn::Form::values: {
        ValueDictionary dictionary;
        std::vector<ValueDictionary::Code> codes(rows.size());
        for (std::size_t i = 0; i < codes.size(); ++i)
            codes[i] = dictionary.add(cells.values()[rows[i]]);
        split_groups(groups, rows, dictionary.size(),
                     [&](std::size_t i) -> std::uint64_t { return codes[i]; });
        break;
    }
    default: {
        const auto words = cells.words();
        const WordSpan span(rows, words);
        split_groups(groups, rows, span.highest(),
                     [=](std::size_t i) { return span.distance(words[rows[i]]); });
    }
    }
}

} // namespace

RowGroups group_rows(RowRange rows, std::span<const CellColumn* const> columns) {
    RowGroups groups;
    groups.groups.resize(rows.size());
    if (rows.size() != 0)
        groups.firstRows.push_back(rows[0]);
    for (const CellColumn* const cells : columns)
        split_groups(groups, rows, *cells);
    return groups;
}

std::vector<Value> group_totals(RowRange rows, const RowGroups& groups, const CellColumn& cells) {
    switch (cells.form()) {
    case CellColumn::Form::numbers:
        return sums_of<WordSum>(rows, groups, cells.scale(), [words = cells.words()](RowId row) {
            return words[row] != CellColumn::kEmptyWord ? &words[row] : nullptr;
        });
    case CellColumn::Form::values:
        return sums_of<ValueSum>(rows, groups, 0,
                                 [values = cells.values()](RowId row) { return values[row].asNumeric(); });
    default:
        return std::vector<Value>(groups.firstRows.size());
    }
}

void require_no_texts(RowRange rows, const TableColumn& column) {
    const CellColumn& cells = column.cells;
    if (cells.form() != CellColumn::Form::coded && cells.form() != CellColumn::Form::values)
        return;
    std::optional<std::size_t> first;
    std::optional<std::size_t> odd;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const Value& cell = cells.form() == CellColumn::Form::coded
                                ? cells.dictionary()[cells.codes()[rows[i]]]
                                : cells.values()[rows[i]];
        const wstring_view* const text = cell.asString();
        if (text == nullptr && !cell.isUndefined() && cell.kind() != ValueKind::null)
            return; // with values of other kinds it is not a column of texts
        if (text == nullptr || trim_all(*text).empty() || odd)
            continue;
        if (Numeric number; !cell.getNumeric(number))
            odd = i;
        first = first.value_or(i);
    }
    if (odd)
        first = odd; // the one that keeps the column from being one of numbers
    if (first)
        throw_error<ContextException>(
            messages::kTotalOfTexts,
            {column.info.name, cells.get(rows[*first]).presentation(), string_intto(*first + 1)});
}

Value total(RowRange rows, const TableColumn& column) {
    require_no_texts(rows, column);
    if (rows.size() != 0)
        return group_totals(rows, group_rows(rows, {}), column.cells).front();
    return column.defaultValue.kind() == ValueKind::number ? column.defaultValue : Value();
}

} // namespace core
