// SPDX-License-Identifier: Apache-2.0
#include "core/tables/sort/row_sort.h"

#include "core/runtime/threads/loop_check.h"
#include "core/tables/data/word_span.h"
#include "core/tables/sort/heap_sort.h"
#include "core/tables/sort/value_ranks.h"
#include "core/tables/sort/word_sort.h"

#include <bit>

namespace core {
namespace {

constexpr unsigned kWordBits = 64;

/// Packs the cells of each row, as numbers of few bits, into a word that begins with the highest bits of the
/// first column. What does not fit goes on in further words. Comparing words compares rows.
class PackedKeys {
  public:
    explicit PackedKeys(std::size_t rows) : rows_(rows) { addWord(); }

    /// Adds a number below 2^`bits` for each row, less significant than those before.
    template <class Key>
    void add(unsigned bits, Key key) {
        if (bits == 0)
            return;
        if (used_ + bits > kWordBits)
            addWord();
        std::vector<std::uint64_t>& words = words_.back();
        const bool fresh = used_ == 0;
        for (std::size_t i = 0; i < rows_; ++i)
            words[i] = fresh ? key(i) : words[i] << bits | key(i);
        used_ += bits;
    }
    [[nodiscard]] std::span<std::uint64_t> word(std::size_t i) noexcept { return words_[i]; }
    [[nodiscard]] std::size_t count() const noexcept { return words_.size(); }

  private:
    void addWord() {
        words_.emplace_back(rows_);
        used_ = 0;
    }

    std::size_t rows_;
    std::vector<std::vector<std::uint64_t>> words_;
    unsigned used_ = 0;
};

/// Adds keys from 0 to `highest`, turned round for a descending column.
template <class Key>
void add_keys(PackedKeys& keys, std::uint64_t highest, bool descending, Key key) {
    const auto bits = static_cast<unsigned>(std::bit_width(highest));
    if (descending)
        keys.add(bits, [=](std::size_t i) { return highest - key(i); });
    else
        keys.add(bits, key);
}

std::uint64_t highest_of(std::span<const std::uint32_t> ranks) noexcept {
    return ranks.empty() ? 0 : *std::max_element(ranks.begin(), ranks.end());
}

void add_column(PackedKeys& keys, RowRange rows, const SortColumn& column) {
    const CellColumn& cells = *column.cells;
    switch (cells.form()) {
    case CellColumn::Form::coded: {
        const auto values = cells.dictionary().values();
        const auto ranks = rank_values(values, RowRange(values.size()));
        const auto codes = cells.codes();
        add_keys(keys, highest_of(ranks), column.descending,
                 [&](std::size_t i) -> std::uint64_t { return ranks[codes[rows[i]]]; });
        break;
    }
    case CellColumn::Form::values: {
        const auto ranks = rank_values(cells.values(), rows);
        add_keys(keys, highest_of(ranks), column.descending,
                 [&](std::size_t i) -> std::uint64_t { return ranks[i]; });
        break;
    }
    default: {
        const auto words = cells.words();
        const WordSpan span(rows, words);
        add_keys(keys, span.highest(), column.descending,
                 [=](std::size_t i) { return span.distance(words[rows[i]]); });
    }
    }
}

} // namespace

std::vector<std::uint32_t> sorted_positions(RowRange rows, std::span<const SortColumn> columns) {
    PackedKeys keys(rows.size());
    for (const SortColumn& column : columns) {
        Thread::check();
        add_column(keys, rows, column);
    }
    Thread::check();
    const auto words = keys.word(0);
    const auto deepen = [&](std::span<const std::uint32_t> equal, unsigned depth) {
        if (depth == keys.count())
            return false;
        for (const std::uint32_t i : equal)
            words[i] = keys.word(depth)[i];
        return true;
    };
    return sort_by_words(words, deepen, [](std::uint32_t, std::uint32_t) { return 0; }).order;
}

std::vector<RowId> sorted_rows(RowRange rows, std::span<const SortColumn> columns) {
    std::vector<RowId> sorted = sorted_positions(rows, columns);
    for (RowId& row : sorted)
        row = rows[row];
    return sorted;
}

std::vector<RowId> sorted_rows(RowRange rows, std::span<const SortColumn> columns,
                               ICompareValues& comparison) {
    std::vector<Value> cells;
    cells.reserve(rows.size() * columns.size());
    std::vector<std::uint32_t> positions(rows.size());
    detail::LoopCheck read;
    for (std::uint32_t i = 0; i < positions.size(); ++i) {
        positions[i] = i;
        read();
        for (const SortColumn& column : columns)
            cells.push_back(column.cells->get(rows[i]));
    }
    detail::LoopCheck check;
    heap_sort(std::span(positions), [&](std::uint32_t a, std::uint32_t b) {
        check();
        for (std::size_t i = 0; i < columns.size(); ++i) {
            const int order =
                comparison.compare(cells[a * columns.size() + i], cells[b * columns.size() + i]);
            if (order != 0)
                return columns[i].descending ? order > 0 : order < 0;
        }
        return a < b;
    });
    std::vector<RowId> sorted(rows.size());
    for (std::size_t i = 0; i < sorted.size(); ++i)
        sorted[i] = rows[positions[i]];
    return sorted;
}

} // namespace core
