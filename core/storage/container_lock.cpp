// SPDX-License-Identifier: Apache-2.0
#include "core/storage/container_lock.h"

#include "core/storage/little_endian.h"
#include "core/storage/patience.h"
#include "core/storage/storage_error.h"

#include <core/files/file_io.h>
#include <core/storage/errors.h>

#include <array>

namespace core {
namespace {

constexpr std::uint64_t kTurn = std::uint64_t{1} << 62;
// The bytes of the queue. Who finds all of them taken waits for the last one, in no order.
constexpr std::uint64_t kPlaces = 8;

} // namespace

struct ContainerLock::Queueing {
    Patience patience;
    std::uint64_t counter; // of changes, when the patience began
};

void ContainerLock::wait(std::uint64_t offset, std::uint64_t length, LockKind kind,
                         Patience& patience) const {
    while (!shared_->tryLock(offset, length, kind)) {
        if (!patience.sleep())
            throw_storage_error(messages::kStorageBusy, url_);
    }
}

void ContainerLock::unlock(std::uint64_t offset, std::uint64_t length) const noexcept {
    try {
        shared_->unlock(offset, length);
    } catch (...) { // it ends with the open file
    }
}

void ContainerLock::beginReading() const {
    if (!shared_)
        return;
    Patience patience(Patience::Pauses::steady);
    // Header and gate in one call; the gate is left at once for those who want to close it.
    wait(0, layout_.headerSize() + 1, LockKind::shared, patience);
    unlock(layout_.headerSize(), 1);
}

void ContainerLock::endReading() const noexcept {
    if (shared_)
        unlock(0, layout_.headerSize());
}

/// One call finds out.
bool ContainerLock::tryTurn() const {
    if (!shared_)
        return true;
    if (!shared_->tryLock(kTurn, 1 + kPlaces, LockKind::exclusive))
        return false;
    unlock(kTurn + 1, kPlaces);
    return true;
}

void ContainerLock::beginTurn() const {
    if (tryTurn())
        return;
    Queueing queueing{Patience(Patience::Pauses::growing), changeCounter()};
    std::uint64_t place = kTurn + kPlaces;
    takePlace(place, queueing);
    for (; place != kTurn; --place) {
        try {
            takePlace(place - 1, queueing);
        } catch (...) {
            unlock(place, 1);
            throw;
        }
        unlock(place, 1);
    }
}

/// Waits as long as somebody commits something: a long queue that moves does not fail.
void ContainerLock::takePlace(std::uint64_t place, Queueing& queueing) const {
    queueing.patience.restart();
    while (!shared_->tryLock(place, 1, LockKind::exclusive)) {
        if (queueing.patience.sleep())
            continue;
        const std::uint64_t counter = changeCounter();
        if (counter == queueing.counter)
            throw_storage_error(messages::kStorageBusy, url_);
        queueing.counter = counter;
        queueing.patience.renew();
    }
}

/// What the header says of it, without a lock: whether it becomes another number is all that is asked.
std::uint64_t ContainerLock::changeCounter() const noexcept {
    std::array<std::byte, 8> bytes{};
    try {
        if (read_all_at(*file_, layout_.headerSize() - bytes.size(), bytes) == bytes.size())
            return load_number(bytes.data(), bytes.size());
    } catch (...) { // nobody gets on then
    }
    return 0;
}

void ContainerLock::endTurn() const noexcept {
    if (shared_)
        unlock(kTurn, 1);
}

void ContainerLock::beginCommit() const {
    if (!shared_)
        return;
    Patience patience(Patience::Pauses::growing);
    wait(layout_.headerSize(), 1, LockKind::exclusive, patience);
    try {
        wait(0, layout_.headerSize(), LockKind::exclusive, patience);
    } catch (...) {
        unlock(layout_.headerSize(), 1);
        throw;
    }
}

void ContainerLock::endCommit(bool reading) const noexcept {
    if (!shared_)
        return;
    unlock(layout_.headerSize(), 1);
    try {
        // From exclusive to shared: nobody can be in the way.
        if (reading && shared_->tryLock(0, layout_.headerSize(), LockKind::shared))
            return;
    } catch (...) { // given back as a whole
    }
    unlock(0, layout_.headerSize());
}

} // namespace core
