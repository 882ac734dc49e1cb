// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/storage/block_format.h"
#include "core/storage/block_runs.h"
#include "core/storage/range_set.h"

#include <core/storage/layout.h>

#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace core {

/// Where in a container blocks can be put while the committed state stays as it is.
///
/// Every byte between the first table block and end() is in one of four states:
/// 1. in use by the committed state and by the changes;
/// 2. free: in use by neither;
/// 3. fresh: in use by the changes alone, free once they are taken back;
/// 4. released: in use by the committed state alone, free once the changes are committed.
///
/// A call that runs out of memory leaves things half done: set() it again. The two ways out of the changes
/// never do.
class FreeSpace {
  public:
    explicit FreeSpace(const StorageLayout& layout) : layout_(&layout), end_(layout.emptyLength()) {}

    /// The state after a commit: `free`, which lies below `end`, and everything from `end` on is free.
    void set(RangeSet free, std::uint64_t end) noexcept;
    /// The state after a commit of others, by what makes it differ from this one, which has no changes: the
    /// ranges that begin within those of `gone` are not free any more, and those of `added` are. False, with
    /// anything changed, when that contradicts what is known: set() it then.
    [[nodiscard]] bool follow(const RangeSet::List& gone, const RangeSet::List& added, std::uint64_t end);
    /// What set() took over may be in use after all. It stays listed, but nothing is put there, and what is
    /// taken out of use is not listed: new blocks go behind `end`, which is not below the old one.
    void distrust(std::uint64_t end) noexcept;

    /// Takes `count` blocks from the lowest free space, or in one piece when they are many;
    /// from the end of the container when nothing fits. False, with nothing changed, when the
    /// layout cannot address that many.
    [[nodiscard]] bool allocate(std::uint64_t count, std::vector<BlockRange>& ranges);
    /// Where allocate() would put `count` blocks; nothing when the layout cannot address that many.
    [[nodiscard]] std::optional<std::vector<BlockRange>> place(std::uint64_t count);
    /// Takes this very space, which others have left alone since place(). False, with nothing changed, when
    /// some of it is in use; it counts as that where it is not free, if the free space `isComplete`.
    [[nodiscard]] bool claim(const BlockRuns& blocks, bool isComplete);
    /// From now on nothing is taken of `pinned`, free or behind the end: somebody still reads it, or is
    /// writing it.
    void avoid(RangeSet pinned) noexcept;
    /// The same as allocate(), from the end of the container only.
    [[nodiscard]] bool allocateAtEnd(std::uint64_t count, std::vector<BlockRange>& ranges);
    /// Gives blocks back: fresh ones become free, committed ones released. False, with nothing changed, when
    /// some of them are not in use, which only a damaged container can bring about.
    [[nodiscard]] bool release(const BlockRuns& blocks);
    /// Takes blocks in one piece, however few, from the lowest free space at or behind `from`, or from the
    /// end. Nothing when the layout cannot address that many.
    [[nodiscard]] std::optional<BlockRange> allocateTogether(std::uint64_t count, std::uint64_t from);
    /// How many bytes from an address on may be taken; 0 when a free range does not begin there.
    [[nodiscard]] std::uint64_t roomAt(std::uint64_t address) const;
    [[nodiscard]] bool isFree(std::uint64_t address) const { return free_.touches(address, address + 1); }
    /// Whether blocks of a chain lie in what is free, or beyond the end.
    [[nodiscard]] bool isUsed(const BlockRuns& blocks) const;
    /// Whether the changes alone use this byte.
    [[nodiscard]] bool isFresh(std::uint64_t address) const { return fresh_.touches(address, address + 1); }

    // Both ways out of the changes. `end` is what outlook() says of it.

    void commit(std::uint64_t end) noexcept;
    void rollback() noexcept;

    /// What the committed state will have free once the changes are committed, and its end.
    struct Outlook {
        RangeSet::List free;
        std::uint64_t end;
    };
    [[nodiscard]] Outlook outlook() const;
    /// The ranges that the changes touch, as the committed state has them and as the next one will.
    struct Delta {
        RangeSet before;
        RangeSet after;
        std::uint64_t end;
    };
    [[nodiscard]] Delta delta() const;

    [[nodiscard]] bool hasChanges() const noexcept { return !fresh_.empty() || !released_.empty(); }
    [[nodiscard]] std::uint64_t end() const noexcept { return end_; }
    [[nodiscard]] const RangeSet& free() const noexcept { return free_; }
    [[nodiscard]] const RangeSet& fresh() const noexcept { return fresh_; }

    [[nodiscard]] static std::vector<std::byte> encode(const RangeSet::List& free,
                                                       const StorageLayout& layout);

  private:
    void take(std::uint64_t address, std::uint64_t count, std::vector<BlockRange>& ranges);
    [[nodiscard]] std::uint64_t placeAtEnd(std::uint64_t length) const;
    void trim() noexcept;

    const StorageLayout* layout_;
    RangeSet free_;
    RangeSet fresh_;
    RangeSet released_;
    RangeSet pinned_;
    RangeSet listed_; // free, if the list of a container that is not trusted is right
    bool trusted_ = true;
    std::uint64_t end_;
    std::uint64_t committedEnd_ = 0;
    std::uint64_t longest_ = 0; // no free range that may be taken is longer
};

} // namespace core
