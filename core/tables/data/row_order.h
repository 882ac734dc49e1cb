// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace core {

/// Names a row, an item, a node of a table for as long as it is there; the place of its cells.
using RowId = std::uint32_t;
inline constexpr RowId kNoRow = ~RowId{0};

/// A run of neighbouring rows of one order.
struct RowChunk {
    std::uint32_t position = 0; // among the chunks of its order
    std::vector<RowId> rows;
};

/// Where each row stands: the chunk that holds it. Shared by all orders over one set of ids, each of which is
/// in one order at the most.
using RowPlaces = std::vector<RowChunk*>;

/// Rows in an order of their own: by position and back, inserted and removed anywhere, in
/// logarithmic time or practically so.
///
///  1. While rows 0, 1, 2, ... have only been appended and taken from the end, the order is plain: a count,
///     and nothing else.
///  2. Otherwise the rows stand in chunks of up to kChunk of them, each of which knows its position among
///     them; empty_ of them, less than half, are empty. places[row] is the chunk of every row.
///  3. With several chunks, sums_ is a tree over their sizes (Fenwick's): sums_[i] counts the rows of the
///     chunks that end at i and begin behind i without its lowest one bit, all counted from 1.
///
/// An operation that throws has changed nothing.
class RowOrder {
  public:
    /// `places` is kept by address. A plain order is one over ids that nobody else uses.
    explicit RowOrder(RowPlaces& places, bool plain) noexcept : places_(&places), plain_(plain) {}

    // inspect
    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    /// Whether the row at each position has the position as its id.
    [[nodiscard]] bool isPlain() const noexcept { return plain_; }
    [[nodiscard]] RowId at(std::size_t position) const noexcept;
    /// Of a row that is in this order.
    [[nodiscard]] std::size_t positionOf(RowId row) const noexcept;
    /// Calls `work(row)` for every row in order until one answers false.
    template <class Work>
    void walk(Work work) const;
    [[nodiscard]] std::vector<RowId> rows() const;
    /// Whether the row is in this order, or in one that shares its places.
    [[nodiscard]] bool contains(RowId row) const noexcept {
        return plain_ ? row < size_ : row < places_->size() && (*places_)[row] != nullptr;
    }

    // modify
    void insert(std::size_t position, RowId row);
    void erase(std::size_t position);
    /// Takes a row out and puts it where it will have the position `to`.
    void move(std::size_t from, std::size_t to);
    void clear() noexcept;
    /// Becomes the plain order of `count` rows.
    void makePlain(std::size_t count) noexcept;
    /// The same rows in another order.
    void reorder(std::span<const RowId> rows);

  private:
    static constexpr std::size_t kChunk = 512;
    static constexpr std::size_t kFill =
        384; // of a chunk that is made for many rows: room for some insertions

    struct Spot {
        std::size_t chunk;
        std::size_t offset;
    };
    [[nodiscard]] Spot spotOf(std::size_t position) const noexcept;
    [[nodiscard]] std::size_t rowsBefore(std::size_t chunk) const noexcept;
    void unfold();
    [[nodiscard]] Spot makeRoom(std::size_t position);
    RowChunk& addChunk(std::size_t position);
    void eraseAt(Spot spot) noexcept;
    void count(std::size_t chunk, std::uint32_t change) noexcept;
    void renumber(std::size_t from) noexcept;

    [[nodiscard]] RowChunk*& placeOf(RowId row) const noexcept { return (*places_)[row]; }

    RowPlaces* places_;
    std::vector<std::unique_ptr<RowChunk>> chunks_;
    std::vector<std::uint32_t> sums_;
    std::size_t size_ = 0;
    std::size_t empty_ = 0;
    bool plain_;
};

template <class Work>
void RowOrder::walk(Work work) const {
    if (plain_) {
        for (std::size_t i = 0; i < size_; ++i) {
            if (!work(static_cast<RowId>(i)))
                return;
        }
        return;
    }
    for (const auto& chunk : chunks_) {
        for (const RowId row : chunk->rows) {
            if (!work(row))
                return;
        }
    }
}

} // namespace core
