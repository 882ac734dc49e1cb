// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/generic_value.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace core::script {

/// What a variable holds; none while it has no value.
using Slot = std::optional<GenericValue>;

/// A variable of a call or of a script: its own, or one of somebody else's, which a parameter refers to.
struct Cell {
    Slot value;
    Slot* at = nullptr;
};

/// The variables of calls that stand inside each other. Cells never move, so that parameters can refer to
/// them; memory that was taken once is kept for the calls to come.
class Frames {
  public:
    /// The variables of one call while it lives; those made last end first.
    class Frame {
      public:
        Frame(Frames& frames, std::size_t count)
            : frames_(frames), count_(count), cells_(frames.take(count)) {
            for (std::size_t i = 0; i < count; ++i)
                cells_[i].at = &cells_[i].value;
        }
        Frame(const Frame&) = delete;
        Frame& operator=(const Frame&) = delete;
        ~Frame() {
            for (std::size_t i = 0; i < count_; ++i)
                cells_[i].value.reset();
            frames_.give(count_);
        }

        [[nodiscard]] Cell* cells() const noexcept { return cells_; }

      private:
        Frames& frames_;
        std::size_t count_;
        Cell* cells_;
    };

  private:
    struct Chunk {
        std::unique_ptr<Cell[]> cells;
        std::size_t size = 0;
        std::size_t used = 0;
    };
    static constexpr std::size_t kChunk = 1024; // cells

    Cell* take(std::size_t count) {
        if (top_ == chunks_.size() || chunks_[top_].size - chunks_[top_].used < count)
            nextChunk(count);
        Chunk& chunk = chunks_[top_];
        Cell* const cells = chunk.cells.get() + chunk.used;
        chunk.used += count;
        return cells;
    }
    void give(std::size_t count) noexcept {
        chunks_[top_].used -= count;
        while (top_ > 0 && chunks_[top_].used == 0)
            --top_;
    }
    void nextChunk(std::size_t count) {
        const std::size_t next = top_ == chunks_.size() || chunks_[top_].used == 0 ? top_ : top_ + 1;
        const std::size_t size = std::max(count, kChunk);
        if (next == chunks_.size() || chunks_[next].size < size) {
            Chunk chunk{std::make_unique<Cell[]>(size), size, 0};
            if (next == chunks_.size())
                chunks_.push_back(std::move(chunk));
            else
                chunks_[next] = std::move(chunk);
        }
        top_ = next;
    }

    std::vector<Chunk> chunks_;
    std::size_t top_ = 0;
};

} // namespace core::script
