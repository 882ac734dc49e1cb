// SPDX-License-Identifier: Apache-2.0
#include "core/files/descriptor_file.h"

#include "core/files/region_locks.h"
#include "core/files/windows/open_handle.h"

#include <core/files/errors.h>

#include <io.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <mutex>
#include <utility>
#include <vector>

namespace core {
namespace {

using windows::fail;
using windows::handle_of;
using windows::last_error_number;

constexpr std::size_t kMaxTransfer = std::size_t{1} << 30;

/// The system keeps others from reading and writing what is locked, where other systems only say who has it.
/// Regions are therefore locked far behind all bytes that a disk can hold. Those that begin far behind
/// already stay where they are; between the two kinds nothing can be locked.
constexpr std::uint64_t kLocksBegin = std::uint64_t{1} << 60;
constexpr std::uint64_t kFarLocksBegin = 2 * kLocksBegin;

std::uint64_t lock_offset(std::uint64_t offset) noexcept {
    return offset < kLocksBegin ? offset + kLocksBegin : std::max(offset, kFarLocksBegin);
}

OVERLAPPED place_of(std::uint64_t offset) noexcept {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(offset);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32U);
    return place;
}

DWORD transfer(std::uint64_t offset, std::size_t count) noexcept {
    return static_cast<DWORD>(
        std::min<std::uint64_t>(std::min(count, kMaxTransfer), kMaxFileLength - offset));
}

struct Region {
    std::uint64_t begin;
    std::uint64_t end;
    LockKind kind;
};

enum class Waits { no, yes };

bool lock_region(HANDLE file, const Region& region, Waits waits) noexcept {
    OVERLAPPED place = place_of(region.begin);
    const std::uint64_t length = region.end - region.begin;
    const DWORD how = (region.kind == LockKind::exclusive ? LOCKFILE_EXCLUSIVE_LOCK : 0U) |
                      (waits == Waits::no ? LOCKFILE_FAIL_IMMEDIATELY : 0U);
    return ::LockFileEx(file, how, 0, static_cast<DWORD>(length), static_cast<DWORD>(length >> 32U),
                        &place) != 0;
}

void unlock_region(HANDLE file, const Region& region) noexcept {
    OVERLAPPED place = place_of(region.begin);
    const std::uint64_t length = region.end - region.begin;
    (void)::UnlockFileEx(file, 0, static_cast<DWORD>(length), static_cast<DWORD>(length >> 32U), &place);
}

BY_HANDLE_FILE_INFORMATION information_of(int descriptor, const wstring& url) {
    BY_HANDLE_FILE_INFORMATION found{};
    if (::GetFileInformationByHandle(handle_of(descriptor), &found) == 0)
        throw_file_error(messages::kFileRead, url, last_error_number());
    return found;
}

} // namespace

/// The system gives regions back exactly as they were locked, and lets a file lock a region a second time
/// beside the first. So what is held is known here, and what is asked for is made of it.
struct DescriptorFile::Locks {
    std::mutex lock;
    std::vector<Region> held; // none lies over another

    /// Gives back what lies in a region; what lies around it stays.
    void release(HANDLE file, std::uint64_t begin, std::uint64_t end) {
        held.reserve(2 * held.size() + 1); // what follows takes no memory
        for (std::size_t i = held.size(); i-- > 0;) {
            const Region old = held[i];
            if (old.end <= begin || end <= old.begin)
                continue;
            held.erase(held.begin() + static_cast<std::ptrdiff_t>(i));
            const Region rests[] = {{old.begin, begin, old.kind}, {end, old.end, old.kind}};
            // A shared rest is locked before the whole is given back. An exclusive one cannot be; who gets in
            // between is waited for.
            const bool early = old.kind == LockKind::shared;
            if (!early)
                unlock_region(file, old);
            for (const Region& rest : rests) {
                if (rest.begin < rest.end && lock_region(file, rest, early ? Waits::no : Waits::yes))
                    held.push_back(rest);
            }
            if (early)
                unlock_region(file, old);
        }
    }

    /// Locks a region instead of what is held of it. When it is refused, what was held is held again.
    bool take(HANDLE file, const Region& wanted) {
        std::vector<Region> before;
        for (const Region& old : held) {
            if (old.begin == wanted.begin && old.end == wanted.end && old.kind == wanted.kind)
                return true;
            const bool lies = old.begin < wanted.end && wanted.begin < old.end;
            if (lies)
                before.push_back(
                    {std::max(old.begin, wanted.begin), std::min(old.end, wanted.end), old.kind});
        }
        held.reserve(2 * held.size() + before.size() + 1);
        const bool shared = wanted.kind == LockKind::shared;
        // A shared lock is taken beside what is held, so that from exclusive to shared nobody gets in
        // between.
        const bool done = shared && lock_region(file, wanted, Waits::no);
        if (shared && !done)
            return false;
        release(file, wanted.begin, wanted.end);
        if (done || lock_region(file, wanted, Waits::no)) {
            held.push_back(wanted);
            return true;
        }
        const DWORD error = ::GetLastError();
        for (const Region& old : before) {
            if (lock_region(file, old, Waits::yes))
                held.push_back(old);
        }
        ::SetLastError(error);
        return false;
    }
};

Descriptor::Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}

bool Descriptor::close() noexcept {
    return number_ < 0 || ::_close(std::exchange(number_, -1)) == 0;
}

DescriptorFile::DescriptorFile(Descriptor descriptor, wstring url)
    : FileImpl(std::move(url)), descriptor_(std::move(descriptor)), locks_(std::make_shared<Locks>()),
      limit_(kMaxFileLength) {}

std::uint64_t DescriptorFile::length() {
    LARGE_INTEGER size{};
    if (::GetFileType(handle_of(descriptor())) != FILE_TYPE_DISK)
        return 0; // a pipe or a console
    if (::GetFileSizeEx(handle_of(descriptor()), &size) == 0)
        throw_file_error(messages::kFileRead, url(), last_error_number());
    return static_cast<std::uint64_t>(size.QuadPart);
}

std::size_t DescriptorFile::readAt(std::uint64_t offset, void* buffer, std::size_t count) {
    if (offset >= kMaxFileLength)
        return 0;
    const HANDLE handle = handle_of(descriptor());
    if (::GetFileType(handle) != FILE_TYPE_DISK) {
        if (offset != passed_)
            throw_file_error(messages::kFileRead, url(), ESPIPE);
        return readOn(buffer, count);
    }
    OVERLAPPED place = place_of(offset);
    DWORD done = 0;
    if (::ReadFile(handle, buffer, transfer(offset, count), &done, &place) == 0 &&
        ::GetLastError() != ERROR_HANDLE_EOF)
        throw_file_error(messages::kFileRead, url(), last_error_number());
    return done;
}

std::size_t DescriptorFile::readOn(void* buffer, std::size_t count) {
    DWORD done = 0;
    if (::ReadFile(handle_of(descriptor()), buffer, static_cast<DWORD>(std::min(count, kMaxTransfer)), &done,
                   nullptr) == 0 &&
        ::GetLastError() != ERROR_BROKEN_PIPE) // its other end is closed
        throw_file_error(messages::kFileRead, url(), last_error_number());
    passed_ += done;
    return done;
}

std::size_t DescriptorFile::writeAt(std::uint64_t offset, const void* buffer, std::size_t count) {
    if (count == 0)
        return 0;
    if (roomBehind(offset, count) == 0)
        throw_file_error(messages::kFileWrite, url(), EFBIG);
    const HANDLE handle = handle_of(descriptor());
    OVERLAPPED place = place_of(offset);
    OVERLAPPED* const at = ::GetFileType(handle) == FILE_TYPE_DISK ? &place : nullptr;
    DWORD done = 0;
    if (::WriteFile(handle, buffer, transfer(offset, count), &done, at) == 0) {
        const int reason = last_error_number();
        throw_file_error(messages::kFileWrite, url(),
                         reason == EACCES ? EBADF : reason); // opened for reading
    }
    return done;
}

void DescriptorFile::requireLength(std::uint64_t length) {
    if (length != 0 && roomBehind(length - 1, 1) == 0 && length > this->length())
        throw_file_error(messages::kFileWrite, url(), EFBIG);
}

void DescriptorFile::truncate(std::uint64_t length) {
    requireLength(length);
    FILE_END_OF_FILE_INFO end{};
    end.EndOfFile.QuadPart = static_cast<LONGLONG>(length);
    if (::SetFileInformationByHandle(handle_of(descriptor()), FileEndOfFileInfo, &end, sizeof end) == 0)
        throw_file_error(messages::kFileWrite, url(), last_error_number());
}

void DescriptorFile::flush() {
    // A file that was opened for reading has nothing to be flushed, which the system takes for an error.
    if (::FlushFileBuffers(handle_of(descriptor())) == 0 && ::GetLastError() != ERROR_ACCESS_DENIED)
        throw_file_error(messages::kFileFlush, url(), last_error_number());
}

void DescriptorFile::close() {
    if (!descriptor_.close())
        throw_file_error(messages::kFileFlush, url(), EIO);
}

bool DescriptorFile::tryLock(std::uint64_t offset, std::uint64_t length, LockKind kind) {
    require_region(offset, length, url());
    if (offset >= kLocksBegin && offset < kFarLocksBegin)
        throw_file_error(messages::kFileLock, url(), EINVAL);
    const std::lock_guard guard(locks_->lock);
    const HANDLE handle = handle_of(descriptor());
    if (locks_->take(handle, {lock_offset(offset), lock_offset(offset + length), kind}))
        return true;
    if (::GetLastError() != ERROR_LOCK_VIOLATION && ::GetLastError() != ERROR_IO_PENDING)
        throw_file_error(messages::kFileLock, url(), last_error_number());
    return false;
}

void DescriptorFile::unlock(std::uint64_t offset, std::uint64_t length) {
    require_region(offset, length, url());
    const std::lock_guard guard(locks_->lock);
    locks_->release(handle_of(descriptor()), lock_offset(offset), lock_offset(offset + length));
}

bool DescriptorFile::isSameFile(IFile& other) {
    const auto* const file = dynamic_cast<DescriptorFile*>(&other);
    if (file == nullptr)
        return false;
    const auto mine = information_of(descriptor(), url());
    const auto others = information_of(file->descriptor(), file->url());
    return mine.dwVolumeSerialNumber == others.dwVolumeSerialNumber &&
           mine.nFileIndexHigh == others.nFileIndexHigh && mine.nFileIndexLow == others.nFileIndexLow;
}

std::uint64_t DescriptorFile::roomBehind(std::uint64_t offset, std::uint64_t) noexcept {
    return limit_ - std::min<std::uint64_t>(limit_, offset);
}

} // namespace core
