// SPDX-License-Identifier: Apache-2.0
#include "core/tables/data/row_order.h"

#include <algorithm>
#include <bit>
#include <numeric>

namespace core {
namespace {

/// Returns the lowest one bit of an index into the tree of sums.
std::size_t low_bit(std::size_t i) noexcept {
    return i & (0 - i);
}

std::ptrdiff_t signed_of(std::size_t n) noexcept {
    return static_cast<std::ptrdiff_t>(n);
}

} // namespace

RowId RowOrder::at(std::size_t position) const noexcept {
    if (plain_)
        return static_cast<RowId>(position);
    const Spot spot = spotOf(position);
    return chunks_[spot.chunk]->rows[spot.offset];
}

std::size_t RowOrder::positionOf(RowId row) const noexcept {
    if (plain_)
        return row;
    const RowChunk& chunk = *chunkRef(row);
    const auto offset = std::find(chunk.rows.begin(), chunk.rows.end(), row) - chunk.rows.begin();
    return rowsBefore(chunk.position) + static_cast<std::size_t>(offset);
}

std::vector<RowId> RowOrder::rows() const {
    std::vector<RowId> rows;
    rows.reserve(size_);
    walk([&](RowId row) {
        rows.push_back(row);
        return true;
    });
    return rows;
}

void RowOrder::insert(std::size_t position, RowId row) {
    if (plain_ && position == size_ && row == size_) {
        ++size_;
        return;
    }
    if (plain_)
        unfold();
    if (chunkOf_->size() <= row)
        chunkOf_->resize(std::size_t{row} + 1);
    const Spot spot = makeRoom(position);
    RowChunk& chunk = *chunks_[spot.chunk];
    empty_ -= chunk.rows.empty() ? 1U : 0U;
    chunk.rows.insert(chunk.rows.begin() + signed_of(spot.offset), row);
    chunkRef(row) = &chunk;
    count(spot.chunk, 1);
    ++size_;
}

void RowOrder::erase(std::size_t position) {
    if (plain_ && position + 1 != size_)
        unfold();
    if (!plain_) {
        chunkRef(at(position)) = nullptr;
        eraseAt(spotOf(position));
    }
    --size_;
}

void RowOrder::move(std::size_t from, std::size_t to) {
    if (from == to)
        return;
    if (plain_)
        unfold();
    const RowId row = at(from);
    // Inserted first: only that can fail.
    insert(to > from ? to + 1 : to, row);
    eraseAt(spotOf(to > from ? from : from + 1));
    --size_;
}

void RowOrder::clear() noexcept {
    for (const auto& chunk : chunks_) {
        for (const RowId row : chunk->rows)
            chunkRef(row) = nullptr;
    }
    chunks_.clear();
    sums_.clear();
    size_ = 0;
    empty_ = 0;
}

void RowOrder::makePlain(std::size_t count) noexcept {
    clear();
    *chunkOf_ = ChunksByRow(); // given back
    plain_ = true;
    size_ = count;
}

void RowOrder::reorder(std::span<const RowId> rows) {
    if (plain_)
        unfold();
    for (const auto& chunk : chunks_) {
        const auto mine = rows.first(chunk->rows.size());
        std::copy(mine.begin(), mine.end(), chunk->rows.begin());
        for (const RowId row : mine)
            chunkRef(row) = chunk.get();
        rows = rows.subspan(mine.size());
    }
}

RowOrder::Spot RowOrder::spotOf(std::size_t position) const noexcept {
    std::size_t chunk = 0;
    if (chunks_.size() > 1) {
        for (std::size_t step = std::bit_floor(chunks_.size()); step != 0; step /= 2) {
            if (chunk + step <= chunks_.size() && sums_[chunk + step - 1] <= position) {
                chunk += step;
                position -= sums_[chunk - 1];
            }
        }
    }
    return {chunk, position};
}

std::size_t RowOrder::rowsBefore(std::size_t chunk) const noexcept {
    std::size_t rows = 0;
    for (; chunk != 0; chunk -= low_bit(chunk))
        rows += sums_[chunk - 1];
    return rows;
}

void RowOrder::unfold() {
    std::vector<std::unique_ptr<RowChunk>> chunks;
    for (std::size_t first = 0; first < size_; first += kFill) {
        auto& rows = chunks.emplace_back(std::make_unique<RowChunk>())->rows;
        rows.resize(std::min(kFill, size_ - first));
        std::iota(rows.begin(), rows.end(), static_cast<RowId>(first));
    }
    std::vector<std::uint32_t> sums(chunks.size());
    if (chunkOf_->size() < size_)
        chunkOf_->resize(size_);
    for (std::size_t row = 0; row < size_; ++row)
        chunkRef(static_cast<RowId>(row)) = chunks[row / kFill].get();
    chunks_.swap(chunks);
    sums_.swap(sums);
    renumber(0);
    plain_ = false;
}

/// Returns the spot for a row that is to have the position, in a chunk with room for it.
RowOrder::Spot RowOrder::makeRoom(std::size_t position) {
    const bool last = position == size_;
    Spot spot = last ? Spot{chunks_.size() - 1, 0} : spotOf(position);
    if (chunks_.empty()) {
        addChunk(0);
        spot.chunk = 0;
    }
    if (last)
        spot.offset = chunks_[spot.chunk]->rows.size();
    RowChunk& full = *chunks_[spot.chunk];
    if (full.rows.size() == full.rows.capacity() && full.rows.size() < kChunk)
        full.rows.reserve(std::clamp<std::size_t>(2 * full.rows.size(), 4, kChunk));
    if (full.rows.size() < kChunk)
        return spot;
    // Rows that are appended one by one fill their chunks.
    const std::size_t kept = last ? kChunk : kChunk / 2;
    RowChunk& added = addChunk(spot.chunk + 1);
    added.rows.assign(full.rows.begin() + signed_of(kept), full.rows.end());
    empty_ -= added.rows.empty() ? 0U : 1U;
    for (const RowId row : added.rows)
        chunkRef(row) = &added;
    full.rows.resize(kept);
    renumber(spot.chunk);
    return spot.offset < kept ? spot : Spot{spot.chunk + 1, spot.offset - kept};
}

/// A new chunk with room for all its rows where several chunks make up the order; renumber() is to follow
/// when it has its rows.
RowChunk& RowOrder::addChunk(std::size_t position) {
    auto chunk = std::make_unique<RowChunk>();
    if (!chunks_.empty())
        chunk->rows.reserve(kChunk);
    if (sums_.size() <= chunks_.size())
        sums_.resize(2 * chunks_.size() + 1);
    RowChunk& added = **chunks_.insert(chunks_.begin() + signed_of(position), std::move(chunk));
    ++empty_;
    return added;
}

void RowOrder::eraseAt(Spot spot) noexcept {
    auto& rows = chunks_[spot.chunk]->rows;
    rows.erase(rows.begin() + signed_of(spot.offset));
    count(spot.chunk, ~std::uint32_t{0});
    if (!rows.empty())
        return;
    // Empty chunks go many at a time: closing the gap of each would move all those behind it.
    rows = {};
    if (2 * ++empty_ < chunks_.size())
        return;
    std::erase_if(chunks_, [](const auto& chunk) { return chunk->rows.empty(); });
    empty_ = 0;
    renumber(0);
}

/// Adds `change`, modulo 2^32, to the size of a chunk.
void RowOrder::count(std::size_t chunk, std::uint32_t change) noexcept {
    for (std::size_t i = chunk + 1; i <= chunks_.size(); i += low_bit(i))
        sums_[i - 1] += change;
}

/// Brings positions and sums up to date where chunks have changed from `from` on.
void RowOrder::renumber(std::size_t from) noexcept {
    for (std::size_t i = from; i < chunks_.size(); ++i)
        chunks_[i]->position = static_cast<std::uint32_t>(i);
    for (std::size_t i = 1; i <= chunks_.size(); ++i)
        sums_[i - 1] = static_cast<std::uint32_t>(chunks_[i - 1]->rows.size());
    for (std::size_t i = 1; i <= chunks_.size(); ++i) {
        if (i + low_bit(i) <= chunks_.size())
            sums_[i + low_bit(i) - 1] += sums_[i - 1];
    }
}

} // namespace core
