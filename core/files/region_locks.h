// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/errors.h>
#include <core/files/file.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace core {

/// Refuses a region that is empty or reaches too far: systems would take it for another one.
inline void require_region(std::uint64_t offset, std::uint64_t length, const wstring& url) {
    if (length == 0 || offset > kMaxFileLength || length > kMaxFileLength - offset)
        throw_file_error(messages::kFileLock, url, EINVAL);
}

/// The locked regions of one file with their holders: the rules of the system's file locks for
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
        locks_.reserve(locks_.size() + 2); // one more, and one that falls apart
        unlock(owner, offset, length);
        locks_.push_back({owner, offset, end, kind});
        return true;
    }

    void unlock(const void* owner, std::uint64_t offset, std::uint64_t length) {
        const std::uint64_t end = offset + length;
        for (std::size_t i = 0; i < locks_.size();) {
            const Lock lock = locks_[i];
            if (lock.owner != owner || lock.begin >= end || offset >= lock.end) {
                ++i;
            } else if (lock.begin < offset) {
                if (end < lock.end)
                    locks_.push_back({owner, end, lock.end, lock.kind});
                locks_[i++].end = offset;
            } else if (end < lock.end) {
                locks_[i++].begin = end;
            } else {
                locks_.erase(locks_.begin() + static_cast<std::ptrdiff_t>(i));
            }
        }
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
