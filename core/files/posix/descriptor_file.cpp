// SPDX-License-Identifier: Apache-2.0
#include "core/files/descriptor_file.h"

#include "core/files/region_locks.h"

#include <core/files/errors.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace core {
namespace {

// Locks of the open file where the system has them. The older kind belongs to the process and is lost when
// any other descriptor of the same file is closed.
#if defined(F_OFD_SETLK)
constexpr int kSetLock = F_OFD_SETLK;
#else
constexpr int kSetLock = F_SETLK;
#endif

// Offsets are cast to the system's type after a check against kMaxFileLength: it must hold all of them.
static_assert(sizeof(::off_t) == sizeof(std::int64_t), "build with _FILE_OFFSET_BITS=64");

// No system reads or writes more in one call.
constexpr std::size_t kMaxTransfer = std::size_t{1} << 30;

/// The greatest length that the system lets the process give a file. A write behind it would not only fail:
/// the system would end the process with a signal.
std::uint64_t length_limit() noexcept {
    struct rlimit limit {};
    if (::getrlimit(RLIMIT_FSIZE, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY)
        return kMaxFileLength;
    return std::min<std::uint64_t>(limit.rlim_cur, kMaxFileLength);
}

/// What of `count` bytes the system takes at once: no more than it can count to, nor behind its last offset.
std::size_t transfer(std::uint64_t offset, std::size_t count) {
    return static_cast<std::size_t>(
        std::min<std::uint64_t>(std::min(count, kMaxTransfer), kMaxFileLength - offset));
}

::off_t native(std::uint64_t offset) {
    return static_cast<::off_t>(offset);
}

struct stat status_of(int descriptor, const wstring& url) {
    struct stat result {};
    if (::fstat(descriptor, &result) != 0)
        throw_file_error(messages::kFileRead, url, errno);
    return result;
}

bool set_lock(int descriptor, std::uint64_t offset, std::uint64_t length, int type) noexcept {
    struct flock region {};
    region.l_type = static_cast<short>(type);
    region.l_whence = SEEK_SET;
    region.l_start = native(offset);
    region.l_len = native(length);
    while (::fcntl(descriptor, kSetLock, &region) != 0) {
        if (errno != EINTR)
            return false;
    }
    return true;
}

} // namespace

Descriptor::Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}

bool Descriptor::close() noexcept {
    return number_ < 0 || ::close(std::exchange(number_, -1)) == 0 || errno == EINTR;
}

DescriptorFile::DescriptorFile(Descriptor descriptor, wstring url)
    : FileImpl(std::move(url)), descriptor_(std::move(descriptor)), limit_(length_limit()) {}

std::uint64_t DescriptorFile::length() {
    return static_cast<std::uint64_t>(status_of(descriptor(), url()).st_size);
}

std::size_t DescriptorFile::readAt(std::uint64_t offset, void* buffer, std::size_t count) {
    if (offset >= kMaxFileLength)
        return 0;
    for (;;) {
        const auto done = ::pread(descriptor(), buffer, transfer(offset, count), native(offset));
        if (done >= 0)
            return static_cast<std::size_t>(done);
        if (errno == ESPIPE && offset == passed_)
            return readOn(buffer, count);
        if (errno != EINTR)
            throw_file_error(messages::kFileRead, url(), errno);
    }
}

std::size_t DescriptorFile::readOn(void* buffer, std::size_t count) {
    for (;;) {
        const auto done = ::read(descriptor(), buffer, std::min(count, kMaxTransfer));
        if (done >= 0) {
            passed_ += static_cast<std::uint64_t>(done);
            return static_cast<std::size_t>(done);
        }
        if (errno != EINTR)
            throw_file_error(messages::kFileRead, url(), errno);
    }
}

std::size_t DescriptorFile::writeAt(std::uint64_t offset, const void* buffer, std::size_t count) {
    if (count == 0)
        return 0;
    const std::uint64_t room = roomBehind(offset, count);
    if (room == 0)
        throw_file_error(messages::kFileWrite, url(), EFBIG);
    if (room < count)
        count = static_cast<std::size_t>(room);
    for (;;) {
        const auto done = ::pwrite(descriptor(), buffer, transfer(offset, count), native(offset));
        if (done >= 0)
            return static_cast<std::size_t>(done);
        if (errno != EINTR)
            throw_file_error(messages::kFileWrite, url(), errno);
    }
}

void DescriptorFile::requireLength(std::uint64_t length) {
    if (length != 0 && roomBehind(length - 1, 1) == 0 && length > this->length())
        throw_file_error(messages::kFileWrite, url(), EFBIG);
}

void DescriptorFile::truncate(std::uint64_t length) {
    requireLength(length);
    while (::ftruncate(descriptor(), native(length)) != 0) {
        if (errno != EINTR)
            throw_file_error(messages::kFileWrite, url(), errno);
    }
}

void DescriptorFile::flush() {
    // Not even an interrupted call is repeated: the system may have forgotten what it could not write.
    if (::fdatasync(descriptor()) != 0)
        throw_file_error(messages::kFileFlush, url(), errno);
}

void DescriptorFile::close() {
    // Nothing is buffered here, but files of other machines can fail as late as this.
    if (!descriptor_.close())
        throw_file_error(messages::kFileFlush, url(), errno);
}

bool DescriptorFile::tryLock(std::uint64_t offset, std::uint64_t length, LockKind kind) {
    require_region(offset, length, url());
    if (set_lock(descriptor(), offset, length, kind == LockKind::shared ? F_RDLCK : F_WRLCK))
        return true;
    if (errno != EAGAIN && errno != EACCES)
        throw_file_error(messages::kFileLock, url(), errno);
    return false;
}

void DescriptorFile::unlock(std::uint64_t offset, std::uint64_t length) {
    require_region(offset, length, url());
    if (!set_lock(descriptor(), offset, length, F_UNLCK))
        throw_file_error(messages::kFileLock, url(), errno);
}

bool DescriptorFile::isSameFile(IFile& other) {
    const auto* const file = dynamic_cast<DescriptorFile*>(&other);
    if (file == nullptr)
        return false;
    const struct stat mine = status_of(descriptor(), url());
    const struct stat others = status_of(file->descriptor(), file->url());
    return mine.st_dev == others.st_dev && mine.st_ino == others.st_ino;
}

/// How many bytes may be written at `offset`, where `count` are to be. The limit is asked for again where it
/// matters: it may have been raised.
std::uint64_t DescriptorFile::roomBehind(std::uint64_t offset, std::uint64_t count) noexcept {
    std::uint64_t limit = limit_.load(std::memory_order_relaxed);
    if (offset > limit || count > limit - offset) {
        limit = length_limit();
        limit_.store(limit, std::memory_order_relaxed);
    }
    return limit - std::min(limit, offset);
}

} // namespace core
