// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/threads/thread.h>
#include <core/tables/table_work.h>

#include <algorithm>
#include <cstddef>

namespace core {

/// Sees to it that long work ends when it is asked to, and tells how far it is.
class WorkWatch {
  public:
    /// Borrows `work`.
    explicit WorkWatch(const TableWork& work) noexcept : work_(work) {}

    /// So many cells more are to be done.
    void expect(std::uint64_t cells) noexcept { total_ += cells; }
    /// So many cells are done. Throws ThreadDeath when the work is to end.
    void step(std::uint64_t cells) {
        work_.stop.check();
        Thread::check();
        done_ += cells;
        total_ = std::max(total_, done_);
        if (work_.progress)
            work_.progress(done_, total_);
    }
    /// A turn of a loop whose cells are not counted. Now and then looks whether the work is to end.
    void turn() {
        constexpr std::uint32_t kTurns = 1024;
        if (++turns_ % kTurns == 0)
            step(0);
    }
    /// Calls `work(begin, end)` for all positions below `count`, some at a time, with a step before each.
    template <class Work>
    void inPieces(std::size_t count, Work work) {
        constexpr std::size_t kPiece = std::size_t{1} << 17; // less than a millisecond for most loops
        for (std::size_t begin = 0; begin < count; begin += kPiece) {
            const std::size_t end = std::min(count, begin + kPiece);
            step(end - begin);
            work(begin, end);
        }
    }

  private:
    const TableWork& work_;
    std::uint64_t done_ = 0;
    std::uint64_t total_ = 0;
    std::uint32_t turns_ = 0;
};

} // namespace core
