// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/files/region_locks.h"

#include <core/files/errors.h>
#include <core/files/file_impl.h>
#include <core/runtime/internal_class.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace core::test {

/// A disk that a test can make lie: it records what is written and synced, fails the n-th call, shortens
/// transfers, is full. One file lies on it, opened any number of times.
struct FaultDisk {
    static constexpr std::uint64_t kNever = std::numeric_limits<std::uint64_t>::max();

    struct Event {
        enum Kind { write, truncate, sync } kind;
        std::uint64_t position; // of a truncate: the new length
        std::vector<std::byte> bytes;
    };

    std::vector<std::byte> bytes;
    std::vector<Event> trace;
    bool recording = false;

    std::uint64_t calls = 0;
    std::uint64_t failAt = kNever; // the number of the one call that fails
    bool failed = false;
    std::uint64_t capacity = kNever;
    std::size_t longestTransfer = std::numeric_limits<std::size_t>::max();
    RegionLocks locks;

    void call(const char* message, const wstring& url, int reason = EIO) {
        if (calls++ == failAt) {
            failed = true;
            throw_file_error(message, url, reason);
        }
    }
};

class FaultFile : public FileImpl, public ISharedFile {
  public:
    using Interfaces = InterfaceList<IFile, ISharedFile>;

    explicit FaultFile(FaultDisk& disk) : FileImpl(u"fault://disk"), disk_(disk) {}
    ~FaultFile() override { FaultFile::close(); }

    std::size_t readAt(std::uint64_t position, void* buffer, std::size_t count) override {
        disk_.call("IDS_FILE_READ", url());
        if (position >= disk_.bytes.size())
            return 0;
        count =
            std::min({count, disk_.longestTransfer, disk_.bytes.size() - static_cast<std::size_t>(position)});
        if (count != 0)
            std::memcpy(buffer, disk_.bytes.data() + position, count);
        return count;
    }
    std::size_t writeAt(std::uint64_t position, const void* buffer, std::size_t count) override {
        disk_.call("IDS_FILE_WRITE", url());
        count = std::min(count, disk_.longestTransfer);
        if (count == 0)
            return 0;
        if (position + count > disk_.capacity && position + count > disk_.bytes.size()) {
            if (position >= disk_.capacity)
                throw_file_error("IDS_FILE_WRITE", url(), ENOSPC);
            count = static_cast<std::size_t>(disk_.capacity - position);
        }
        const auto* const from = static_cast<const std::byte*>(buffer);
        if (disk_.recording)
            disk_.trace.push_back({FaultDisk::Event::write, position, {from, from + count}});
        if (position + count > disk_.bytes.size())
            disk_.bytes.resize(position + count);
        std::copy_n(from, count, disk_.bytes.begin() + static_cast<std::ptrdiff_t>(position));
        return count;
    }
    std::uint64_t length() override {
        disk_.call("IDS_FILE_READ", url());
        return disk_.bytes.size();
    }
    void truncate(std::uint64_t length) override {
        disk_.call("IDS_FILE_WRITE", url());
        if (disk_.recording)
            disk_.trace.push_back({FaultDisk::Event::truncate, length, {}});
        disk_.bytes.resize(length);
    }
    void flush() override {
        disk_.call("IDS_FILE_FLUSH", url());
        if (disk_.recording)
            disk_.trace.push_back({FaultDisk::Event::sync, 0, {}});
    }
    void close() override { disk_.locks.unlockAll(this); }
    bool tryLock(std::uint64_t offset, std::uint64_t length, LockKind kind) override {
        disk_.call("IDS_FILE_LOCK", url());
        require_region(offset, length, url());
        return disk_.locks.tryLock(this, offset, length, kind);
    }
    void unlock(std::uint64_t offset, std::uint64_t length) override {
        require_region(offset, length, url());
        disk_.locks.unlock(this, offset, length);
    }
    bool isSameFile(IFile& other) override {
        const auto* const file = dynamic_cast<FaultFile*>(&other);
        return file != nullptr && &file->disk_ == &disk_;
    }

  private:
    FaultDisk& disk_;
};

inline InterfacePtr<IFile> open_fault_file(FaultDisk& disk) {
    return SCOM_InternalClass<FaultFile>::create(disk);
}

/// What a disk may hold after the power failed before event `cut`: all that was synced, and of the rest any
/// sectors in any order.
inline std::vector<std::byte> crash_image(std::vector<std::byte> image,
                                          const std::vector<FaultDisk::Event>& trace, std::size_t cut,
                                          std::mt19937& random) {
    constexpr std::size_t kSector = 512;
    const auto apply = [&image](const FaultDisk::Event& event) {
        if (event.kind == FaultDisk::Event::truncate) {
            image.resize(event.position);
        } else if (event.kind == FaultDisk::Event::write) {
            if (event.position + event.bytes.size() > image.size())
                image.resize(event.position + event.bytes.size());
            std::copy(event.bytes.begin(), event.bytes.end(),
                      image.begin() + static_cast<std::ptrdiff_t>(event.position));
        }
    };
    std::size_t synced = 0;
    for (std::size_t i = 0; i < cut; ++i) {
        if (trace[i].kind == FaultDisk::Event::sync)
            synced = i;
    }
    for (std::size_t i = 0; i < synced; ++i)
        apply(trace[i]);
    std::vector<FaultDisk::Event> pieces;
    for (std::size_t i = synced; i < cut; ++i) {
        const FaultDisk::Event& event = trace[i];
        if (event.kind != FaultDisk::Event::write) {
            pieces.push_back(event);
            continue;
        }
        for (std::size_t done = 0; done < event.bytes.size();) {
            const std::uint64_t position = event.position + done;
            const std::size_t part =
                std::min<std::size_t>(event.bytes.size() - done, kSector - position % kSector);
            const auto begin = event.bytes.begin() + static_cast<std::ptrdiff_t>(done);
            pieces.push_back({event.kind, position, {begin, begin + static_cast<std::ptrdiff_t>(part)}});
            done += part;
        }
    }
    if (random() % 2 != 0)
        std::shuffle(pieces.begin(), pieces.end(), random);
    const auto chance = random() % 5; // from nothing to everything
    for (const FaultDisk::Event& piece : pieces) {
        if (random() % 4 < chance)
            apply(piece);
    }
    return image;
}

} // namespace core::test
