// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file.h>

#include <vector>

namespace core {

/// Who has locked which regions of one file: the rules of the system's file locks for
/// files without a system below.
class RegionLocks {
  public:
    /// False when another owner's lock excludes it. Replaces what `owner` held in the region.
    [[nodiscard]] bool tryLock(const void* owner, std::uint64_t offset, std::uint64_t length, LockKind kind) {
        const std::uint64_t end = offset + length;
        for (const Lock& lock : locks_) {
            const bool excludes = kind == LockKind::exclusive || lock.kind == LockKind::exclusive;
            if (lock.owner != owner && excludes && lock.begin < end && offset < lock.end)
                return false;
        }
        unlock(owner, offset, length);
        locks_.push_back({owner, offset, end, kind});
        return true;
    }

    void unlock(const void* owner, std::uint64_t offset, std::uint64_t length) {
        const std::uint64_t end = offset + length;
        std::vector<Lock> kept;
        for (const Lock& lock : locks_) {
            if (lock.owner != owner || lock.begin >= end || offset >= lock.end) {
                kept.push_back(lock);
                continue;
            }
            if (lock.begin < offset)
                kept.push_back({owner, lock.begin, offset, lock.kind});
            if (end < lock.end)
                kept.push_back({owner, end, lock.end, lock.kind});
        }
        locks_ = std::move(kept);
    }

    void unlockAll(const void* owner) {
        std::erase_if(locks_, [owner](const Lock& lock) { return lock.owner == owner; });
    }

  private:
    struct Lock {
        const void* owner;
        std::uint64_t begin;
        std::uint64_t end;
        LockKind kind;
    };
    std::vector<Lock> locks_;
};

} // namespace core
