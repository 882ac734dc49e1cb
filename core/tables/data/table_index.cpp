// SPDX-License-Identifier: Apache-2.0
#include "core/tables/data/table_index.h"

#include <algorithm>

namespace core {
namespace {

std::uint32_t tag_of(std::uint64_t hash) noexcept {
    return static_cast<std::uint32_t>(hash ^ hash >> 32);
}

} // namespace

bool TableIndex::covers(const TableColumn& column) const noexcept {
    return std::find(columns_.begin(), columns_.end(), &column) != columns_.end();
}

void TableIndex::giveUp() noexcept {
    current_ = false;
    slots_ = {};
    links_ = {};
    keys_ = 0;
}

void TableIndex::refresh(RowRange rows) {
    if (current_)
        return;
    giveUp();
    rows.forEach([this](RowId row) { add(row); });
    current_ = true;
}

void TableIndex::link(RowId row) noexcept {
    if (!current_)
        return;
    try {
        add(row);
    } catch (const std::bad_alloc&) {
        giveUp();
    }
}

void TableIndex::unlink(RowId row) noexcept {
    if (!current_)
        return;
    const std::size_t slot = slotOf(row);
    const Link link = links_[row];
    if (link.next == row) {
        freeSlot(slot);
        return;
    }
    links_[link.previous].next = link.next;
    links_[link.next].previous = link.previous;
    if (slots_[slot].first == row)
        slots_[slot].first = link.next;
}

void TableIndex::find(std::span<const CellProbe> probes, std::vector<RowId>& rows) const {
    std::uint64_t hash = 0;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        if (!probes[i].possible)
            return;
        hash = table_hash_step(hash, columns_[i]->cells.hash(probes[i]));
    }
    if (slots_.empty())
        return;
    const std::size_t slot = search(tag_of(hash), [&](RowId row) {
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            if (!columns_[i]->cells.matches(row, probes[i]))
                return false;
        }
        return true;
    });
    const RowId first = slots_[slot].first;
    if (first == kNoRow)
        return;
    RowId row = first;
    do {
        rows.push_back(row);
        row = links_[row].next;
    } while (row != first);
}

std::uint32_t TableIndex::tagOf(RowId row) const noexcept {
    std::uint64_t hash = 0;
    for (const TableColumn* const column : columns_)
        hash = table_hash_step(hash, column->cells.hash(row));
    return tag_of(hash);
}

bool TableIndex::sameKey(RowId a, RowId b) const noexcept {
    return std::all_of(columns_.begin(), columns_.end(),
                       [=](const TableColumn* column) { return column->cells.equal(a, b); });
}

/// The slot of the tag whose first row matches, or the free one where its search ends.
template <class Matches>
std::size_t TableIndex::search(std::uint32_t tag, Matches matches) const noexcept {
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t i = tag & mask;; i = (i + 1) & mask) {
        const Slot& slot = slots_[i];
        if (slot.first == kNoRow || (slot.tag == tag && matches(slot.first)))
            return i;
    }
}

std::size_t TableIndex::slotOf(RowId row) const noexcept {
    return search(tagOf(row), [&](RowId first) { return sameKey(first, row); });
}

void TableIndex::add(RowId row) {
    if (slots_.size() < 2 * (keys_ + 1))
        growSlots();
    if (links_.size() <= row)
        links_.resize(std::size_t{row} + 1);
    const std::uint32_t tag = tagOf(row);
    Slot& slot = slots_[search(tag, [&](RowId first) { return sameKey(first, row); })];
    if (slot.first == kNoRow) {
        slot = {tag, row};
        links_[row] = {row, row};
        ++keys_;
        return;
    }
    // At the end of the ring, so that rows added in order are found in order.
    const RowId last = links_[slot.first].previous;
    links_[row] = {.next = slot.first, .previous = last};
    links_[last].next = row;
    links_[slot.first].previous = row;
}

void TableIndex::growSlots() {
    std::vector<Slot> slots(std::max<std::size_t>(16, 2 * slots_.size()));
    const std::size_t mask = slots.size() - 1;
    for (const Slot& slot : slots_) {
        if (slot.first == kNoRow)
            continue;
        std::size_t i = slot.tag & mask;
        while (slots[i].first != kNoRow)
            i = (i + 1) & mask;
        slots[i] = slot;
    }
    slots_.swap(slots);
}

/// Frees a slot, and moves those behind it forward whose search would end there.
void TableIndex::freeSlot(std::size_t slot) noexcept {
    const std::size_t mask = slots_.size() - 1;
    std::size_t gap = slot;
    for (std::size_t i = (slot + 1) & mask; slots_[i].first != kNoRow; i = (i + 1) & mask) {
        const std::size_t home = slots_[i].tag & mask;
        if (((i - home) & mask) >= ((i - gap) & mask)) {
            slots_[gap] = slots_[i];
            gap = i;
        }
    }
    slots_[gap].first = kNoRow;
    --keys_;
}

} // namespace core
