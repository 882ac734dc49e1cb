// SPDX-License-Identifier: Apache-2.0
#include "core/files/disk_path.h"
#include "core/files/region_locks.h"

#include <core/files/disk_file.h>
#include <core/files/errors.h>
#include <core/files/file.h>
#include <core/files/file_impl.h>
#include <core/runtime/internal_class.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
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

/// An open descriptor of the system, closed at the end.
class Descriptor {
  public:
    explicit Descriptor(int number) noexcept : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    Descriptor& operator=(Descriptor&&) = delete;
    ~Descriptor() { (void)close(); }

    [[nodiscard]] int number() const noexcept { return number_; }
    /// False when what was written before is not where it should be. Interrupted or not, the descriptor is
    /// gone.
    [[nodiscard]] bool close() noexcept {
        return number_ < 0 || ::close(std::exchange(number_, -1)) == 0 || errno == EINTR;
    }

  private:
    int number_;
};

class DiskFile : public FileImpl, public ISharedFile {
  public:
    using Interfaces = InterfaceList<IFile, ISharedFile>;

    /// `path` is not empty when the file may be new, and is needed for the first flush only.
    DiskFile(Descriptor descriptor, wstring url, std::string path)
        : FileImpl(std::move(url)), descriptor_(std::move(descriptor)), newPath_(std::move(path)) {}

    std::size_t readAt(std::uint64_t offset, void* buffer, std::size_t count) override {
        if (offset >= kMaxFileLength)
            return 0;
        for (;;) {
            const auto done = ::pread(descriptor_.number(), buffer, transfer(offset, count), native(offset));
            if (done >= 0)
                return static_cast<std::size_t>(done);
            if (errno != EINTR)
                throw_file_error(messages::kFileRead, url(), errno);
        }
    }

    std::size_t writeAt(std::uint64_t offset, const void* buffer, std::size_t count) override {
        if (count == 0)
            return 0;
        const std::uint64_t room = roomBehind(offset, count);
        if (room == 0)
            throw_file_error(messages::kFileWrite, url(), EFBIG);
        if (room < count)
            count = static_cast<std::size_t>(room);
        for (;;) {
            const auto done = ::pwrite(descriptor_.number(), buffer, transfer(offset, count), native(offset));
            if (done >= 0)
                return static_cast<std::size_t>(done);
            if (errno != EINTR)
                throw_file_error(messages::kFileWrite, url(), errno);
        }
    }

    std::uint64_t length() override { return static_cast<std::uint64_t>(status().st_size); }

    void truncate(std::uint64_t length) override {
        if (length != 0 && roomBehind(length - 1, 1) == 0 && length > this->length())
            throw_file_error(messages::kFileWrite, url(), EFBIG);
        while (::ftruncate(descriptor_.number(), native(length)) != 0) {
            if (errno != EINTR)
                throw_file_error(messages::kFileWrite, url(), errno);
        }
    }

    void flush() override {
        // Not even an interrupted call is repeated: the system may have forgotten what it could not write.
        if (::fdatasync(descriptor_.number()) != 0)
            throw_file_error(messages::kFileFlush, url(), errno);
        if (!newPath_.empty()) {
            flush_folder_of(newPath_);
            newPath_.clear();
        }
    }

    void close() override {
        // Nothing is buffered here, but files of other machines can fail as late as this.
        if (!descriptor_.close())
            throw_file_error(messages::kFileFlush, url(), errno);
    }

    bool tryLock(std::uint64_t start, std::uint64_t length, LockKind kind) override {
        require_region(start, length, url());
        if (setLock(start, length, kind == LockKind::shared ? F_RDLCK : F_WRLCK))
            return true;
        if (errno != EAGAIN && errno != EACCES)
            throw_file_error(messages::kFileLock, url(), errno);
        return false;
    }

    void unlock(std::uint64_t start, std::uint64_t length) override {
        require_region(start, length, url());
        if (!setLock(start, length, F_UNLCK))
            throw_file_error(messages::kFileLock, url(), errno);
    }

    bool isSameFile(IFile& other) override {
        const auto* const file = dynamic_cast<DiskFile*>(&other);
        if (file == nullptr)
            return false;
        const struct stat mine = status();
        const struct stat others = file->status();
        return mine.st_dev == others.st_dev && mine.st_ino == others.st_ino;
    }

  private:
    /// What of `count` bytes the system takes at once: no more than it can count to, nor behind its last
    /// offset.
    static std::size_t transfer(std::uint64_t offset, std::size_t count) {
        return static_cast<std::size_t>(
            std::min<std::uint64_t>(std::min(count, kMaxTransfer), kMaxFileLength - offset));
    }
    static ::off_t native(std::uint64_t offset) { return static_cast<::off_t>(offset); }

    /// How many bytes may be written at `offset`, where `count` are to be. The limit is asked for again where
    /// it matters: it may have been raised.
    std::uint64_t roomBehind(std::uint64_t offset, std::uint64_t count) noexcept {
        std::uint64_t limit = limit_.load(std::memory_order_relaxed);
        if (offset > limit || count > limit - offset) {
            limit = length_limit();
            limit_.store(limit, std::memory_order_relaxed);
        }
        return limit - std::min(limit, offset);
    }

    [[nodiscard]] struct stat status() const {
        struct stat result {};
        if (::fstat(descriptor_.number(), &result) != 0)
            throw_file_error(messages::kFileRead, url(), errno);
        return result;
    }

    bool setLock(std::uint64_t start, std::uint64_t length, int type) {
        struct flock region {};
        region.l_type = static_cast<short>(type);
        region.l_whence = SEEK_SET;
        region.l_start = native(start);
        region.l_len = native(length);
        while (::fcntl(descriptor_.number(), kSetLock, &region) != 0) {
            if (errno != EINTR)
                return false;
        }
        return true;
    }

    Descriptor descriptor_;
    std::string newPath_;
    std::atomic<std::uint64_t> limit_{length_limit()};
};

int open_flags(OpenMode mode) {
    switch (mode) {
    case OpenMode::read:
        return O_RDONLY;
    case OpenMode::readWrite:
        return O_RDWR;
    case OpenMode::create:
        return O_RDWR | O_CREAT;
    case OpenMode::replace:
        return O_RDWR | O_CREAT | O_TRUNC;
    case OpenMode::createNew:
        return O_RDWR | O_CREAT | O_EXCL;
    }
    return O_RDONLY;
}

} // namespace

std::string folder_of(const std::string& path) {
    const auto slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

void flush_folder_of(const std::string& path) {
    const std::string folder = folder_of(path);
    const Descriptor descriptor(
        ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor.number() < 0 && errno == EACCES)
        return; // a folder that may be written but not read: nothing more can be done
    if (descriptor.number() >= 0 && (::fsync(descriptor.number()) == 0 || errno == EINVAL))
        return; // not every system can
    const int reason = errno;
    throw_file_error(messages::kFileFlush, file_url(path), reason);
}

InterfacePtr<IFile> open_disk_file(const std::string& path, OpenMode mode, unsigned permissions) {
    require_whole_path(path);
    const wstring url = file_url(path);
    int number = -1;
    do
        number = ::open(path.c_str(), open_flags(mode) | O_CLOEXEC, permissions);
    while (number < 0 && errno == EINTR);
    if (number < 0)
        throw_file_error(messages::kFileOpen, url, errno);
    Descriptor descriptor(number);
    struct stat status {};
    if (::fstat(number, &status) == 0 && S_ISDIR(status.st_mode))
        throw_file_error(messages::kFileOpen, url, EISDIR);
    const bool mayBeNew = mode != OpenMode::read && mode != OpenMode::readWrite;
    return make_object<DiskFile>(std::move(descriptor), url, mayBeNew ? path : std::string());
}

InterfacePtr<IFile> create_temp_file(const std::string& folder) {
    require_whole_path(folder);
    std::string path = folder + "/core-XXXXXX";
    Descriptor descriptor(::mkostemp(path.data(), O_CLOEXEC));
    if (descriptor.number() < 0)
        throw_file_error(messages::kFileOpen, file_url(folder), errno);
    ::unlink(path.c_str());
    return make_object<DiskFile>(std::move(descriptor), file_url(path), std::string());
}

} // namespace core
