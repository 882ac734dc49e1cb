// SPDX-License-Identifier: Apache-2.0
#include "core/storage/container_lock.h"

#include "core/storage/storage_error.h"

#include <core/files/file_time.h>
#include <core/runtime/threads/thread.h>
#include <core/storage/errors.h>

namespace core {
namespace {

constexpr std::uint64_t kTurn = std::uint64_t{1} << 62;
constexpr DateSpan kPatience{20 * kTicksPerSecond};
constexpr std::chrono::milliseconds kPause{20};

} // namespace

void ContainerLock::wait(std::uint64_t offset, std::uint64_t length, LockKind kind) const {
    if (file_->tryLock(offset, length, kind))
        return;
    const Date deadline = universal_now() + kPatience;
    auto pauses =
        kPatience.ticks() / (kPause.count() * kTicksPerSecond / 1000); // for clocks that are set back
    do {
        if (pauses-- == 0 || universal_now() > deadline)
            throw_storage_error(messages::kStorageBusy, url_);
        Thread::sleep(kPause);
    } while (!file_->tryLock(offset, length, kind));
}

void ContainerLock::unlock(std::uint64_t offset, std::uint64_t length) const noexcept {
    try {
        file_->unlock(offset, length);
    } catch (...) { // it ends with the open file
    }
}

void ContainerLock::beginReading() const {
    if (!file_)
        return;
    // Header and gate in one call; the gate is left at once for those who want to close it.
    wait(0, layout_.headerSize() + 1, LockKind::shared);
    unlock(layout_.headerSize(), 1);
}

void ContainerLock::endReading() const noexcept {
    if (file_)
        unlock(0, layout_.headerSize());
}

void ContainerLock::beginTurn() const {
    if (file_)
        wait(kTurn, 1, LockKind::exclusive);
}

void ContainerLock::endTurn() const noexcept {
    if (file_)
        unlock(kTurn, 1);
}

void ContainerLock::beginCommit() const {
    if (!file_)
        return;
    wait(layout_.headerSize(), 1, LockKind::exclusive);
    try {
        wait(0, layout_.headerSize(), LockKind::exclusive);
    } catch (...) {
        unlock(layout_.headerSize(), 1);
        throw;
    }
}

void ContainerLock::endCommit(bool reading) const noexcept {
    if (!file_)
        return;
    unlock(layout_.headerSize(), 1);
    try {
        // From exclusive to shared: nobody can be in the way.
        if (reading && file_->tryLock(0, layout_.headerSize(), LockKind::shared))
            return;
    } catch (...) { // given back as a whole
    }
    unlock(0, layout_.headerSize());
}

} // namespace core
