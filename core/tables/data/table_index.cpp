// SPDX-License-Identifier: Apache-2.0
#include "core/tables/data/table_index.h"

#include <algorithm>

namespace core {
bool TableIndex::covers(const TableColumn& column) const noexcept {
    return std::find(columns_.begin(), columns_.end(), &column) != columns_.end();
}

void TableIndex::giveUp() noexcept {
    forgetSorted();
    current_ = false;
    index_.clear();
    links_ = {};
}

void TableIndex::refresh(RowRange rows) {
    if (current_)
        return;
    index_.clear();
    links_ = {};
    rows.forEach([this](RowId row) { add(row); });
    current_ = true;
}

void TableIndex::link(RowId row) noexcept {
    forgetSorted();
    if (!current_)
        return;
    try {
        add(row);
    } catch (const std::bad_alloc&) {
        giveUp();
    }
}

void TableIndex::unlink(RowId row) noexcept {
    forgetSorted();
    if (!current_)
        return;
    const std::uint64_t hash = hashOf(row);
    const RowId first = firstWithKeyOf(row, hash);
    const Link link = links_[row];
    if (link.next == row) {
        index_.remove(hash, row);
        return;
    }
    links_[link.previous].next = link.next;
    links_[link.next].previous = link.previous;
    if (first == row)
        index_.move(hash, row, link.next);
}

void TableIndex::find(std::span<const CellProbe> probes, std::vector<RowId>& rows) const {
    std::uint64_t hash = 0;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        if (!probes[i].possible)
            return;
        hash = table_hash_step(hash, columns_[i]->cells.hash(probes[i]));
    }
    const RowId first = index_.find(hash, [&](RowId row) {
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            if (!columns_[i]->cells.matches(row, probes[i]))
                return false;
        }
        return true;
    });
    if (first == HashIndex::kNone)
        return;
    RowId row = first;
    do {
        rows.push_back(row);
        row = links_[row].next;
    } while (row != first);
}

std::uint64_t TableIndex::hashOf(RowId row) const noexcept {
    std::uint64_t hash = 0;
    for (const TableColumn* const column : columns_)
        hash = table_hash_step(hash, column->cells.hash(row));
    return hash;
}

/// The first row with the cells of `row`, of which the index knows; HashIndex::kNone if none exists.
RowId TableIndex::firstWithKeyOf(RowId row, std::uint64_t hash) const noexcept {
    return index_.find(hash, [&](RowId first) {
        return std::all_of(columns_.begin(), columns_.end(),
                           [=](const TableColumn* column) { return column->cells.equal(first, row); });
    });
}

void TableIndex::add(RowId row) {
    if (links_.size() <= row)
        links_.resize(std::size_t{row} + 1);
    const std::uint64_t hash = hashOf(row);
    const RowId first = firstWithKeyOf(row, hash);
    if (first == HashIndex::kNone) {
        index_.add(hash, row);
        links_[row] = {row, row};
        return;
    }
    // At the end of the ring, so that rows added in order are found in order.
    const RowId last = links_[first].previous;
    links_[row] = {.next = first, .previous = last};
    links_[last].next = row;
    links_[first].previous = row;
}

} // namespace core
