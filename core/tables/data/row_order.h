// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace core {

/// The number of a row or of a list's item for as long as it is there. Cells are stored by it.
using RowId = std::uint32_t;
inline constexpr RowId kNoRow = ~RowId{0};

/// Some neighbouring rows of one order.
struct RowChunk {
    std::uint32_t position = 0; // among the chunks of its order
    std::vector<RowId> rows;
};

/// The chunk that holds each row, or null. All orders over one set of ids share it; a row is in one of them
/// at the most.
using ChunksByRow = std::vector<RowChunk*>;

/// An order of rows: finds the row at a position and the position of a row, inserts and removes anywhere, all
/// in practically logarithmic time.
///
///  1. While rows 0, 1, 2, ... have only been appended and taken from the end, the order is plain: a count,
///     and nothing else.
///  2. Otherwise the rows are in chunks of up to kChunk rows, each of which knows its position among
///     them; empty_ of them, less than half, are empty. chunkOf_ has the chunk of every row.
///  3. With several chunks, sums_ is a tree over their sizes (Fenwick's): sums_[i] counts the rows of the
///     chunks that end at i and begin behind i without its lowest one bit, all counted from 1.
///
/// If an operation throws, nothing has changed.
class RowOrder {
  public:
    /// Keeps the address of `chunkOf`. A plain order is the only one over its ids.
    explicit RowOrder(ChunksByRow& chunkOf, bool plain) noexcept : chunkOf_(&chunkOf), plain_(plain) {}

    // inspect
    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    /// Says whether the row at each position has the position as its id.
    [[nodiscard]] bool isPlain() const noexcept { return plain_; }
    [[nodiscard]] RowId at(std::size_t position) const noexcept;
    /// Returns the position of a row that is in this order.
    [[nodiscard]] std::size_t positionOf(RowId row) const noexcept;
    /// Calls `work(row)` for every row in order until it returns false.
    template <class Work>
    void walk(Work work) const;
    [[nodiscard]] std::vector<RowId> rows() const;
    /// Says whether the row is in this order, or in another one over the same ids.
    [[nodiscard]] bool contains(RowId row) const noexcept {
        return plain_ ? row < size_ : row < chunkOf_->size() && (*chunkOf_)[row] != nullptr;
    }

    // modify
    void insert(std::size_t position, RowId row);
    void erase(std::size_t position);
    /// Takes a row out and puts it where it will have the position `to`.
    void move(std::size_t from, std::size_t to);
    void clear() noexcept;
    /// Becomes the plain order of `count` rows.
    void makePlain(std::size_t count) noexcept;
    /// Puts the same rows into another order.
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

    [[nodiscard]] RowChunk*& chunkRef(RowId row) const noexcept { return (*chunkOf_)[row]; }

    ChunksByRow* chunkOf_;
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
