// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/storage/range_set.h"

#include <core/files/file.h>
#include <core/runtime/types.h>

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

namespace core {

/// Which space of a container must stay as it is, whatever is committed meanwhile: what somebody reads
/// without holding the header, and what somebody writes without having the turn. Such space is pinned by
/// shared locks of its bytes, moved by 2^61, far beyond the end of any container; so the pins of a process
/// end with it. Space is pinned while it cannot be given to anybody else: by a reader as long as it holds the
/// header, by a writer in its turn. Who wants to write anywhere, or to cut the file off, asks in its turn
/// what is pinned.
///
/// Locks of one open file do not exclude each other, so its own pins are counted here as well. The caller
/// holds the mutex of the container.
class SpaceLocks {
  public:
    using Ranges = RangeSet::List;
    /// Behind everything that can be pinned.
    static constexpr std::uint64_t kEnd = std::uint64_t{1} << 61;

    /// `url` stands in messages. A file that is not an ISharedFile is used by this process alone.
    SpaceLocks(InterfacePtr<IFile> file, wstring url)
        : file_(std::move(file)), shared_(file_), url_(std::move(url)) {}

    /// Pins ranges, which may be pinned already. Waits while a writer looks for pins; throws
    /// StorageException after 20 seconds, with nothing pinned.
    void pin(const Ranges& ranges);
    /// Takes one pin of each range back.
    void unpin(const Ranges& ranges) noexcept { unpin(ranges, ranges.size()); }

    /// What is pinned from `begin` on, by anybody. Others' pins are found by trying, and come out larger than
    /// they are where it would take too long to find out.
    [[nodiscard]] RangeSet pinned(std::uint64_t begin) const;
    [[nodiscard]] bool isPinned(std::uint64_t begin, std::uint64_t end) const;

  private:
    struct Own {
        std::uint64_t end;
        unsigned count; // of pins
    };
    using OwnPins = std::map<std::uint64_t, Own>; // by beginning; they do not overlap

    [[nodiscard]] bool isOthers(std::uint64_t begin, std::uint64_t end) const;
    [[nodiscard]] bool areOthers(const Ranges& ranges) const;
    void lock(std::uint64_t begin, std::uint64_t end) const;
    void unlock(std::uint64_t begin, std::uint64_t end) const noexcept;
    void splitAt(std::uint64_t address);
    void pinRange(std::uint64_t begin, std::uint64_t end);
    void unpin(const Ranges& ranges, std::size_t count) noexcept;
    void dropUnpinned(std::uint64_t begin, std::uint64_t end) noexcept;
    [[nodiscard]] Ranges gaps(std::uint64_t begin, std::uint64_t end) const;
    void findOthers(std::uint64_t begin, Ranges& all) const;

    InterfacePtr<IFile> file_;
    InterfacePtr<ISharedFile> shared_;
    wstring url_;
    OwnPins own_;
};

} // namespace core
