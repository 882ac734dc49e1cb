// SPDX-License-Identifier: Apache-2.0
#include "core/files/shared_memory_file.h"

#include <core/files/errors.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace core {
namespace {

bool lock(int descriptor, int how) noexcept {
    int result = 0;
    do
        result = ::flock(descriptor, how);
    while (result != 0 && errno == EINTR);
    return result == 0;
}

/// Whether a name still leads to the file.
bool is_linked(int descriptor) noexcept {
    struct stat status {};
    return ::fstat(descriptor, &status) == 0 && status.st_nlink > 0;
}

/// Somebody else may have put a file of his own under a name of ours, to read what is written to it.
void require_own(int descriptor, const wstring& url) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0)
        throw_file_error(messages::kFileOpen, url, errno);
    if (!S_ISREG(status.st_mode) || status.st_uid != ::geteuid())
        throw_file_error(messages::kFileOpen, url, EACCES);
}

Descriptor open_there(const std::string& path, int access) noexcept {
    // A link or a pipe under the name must lead nowhere and stop nobody.
    return Descriptor(::open(path.c_str(), access | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
}

} // namespace

SharedMemoryUse SharedMemoryUse::join(const std::string& path, const wstring& url, bool readOnly) {
    for (;;) {
        removeUnused(path);
        SharedMemoryUse use(open_there(path, readOnly ? O_RDONLY : O_RDWR), path);
        if (!use && errno == ENOENT)
            return use;
        const int descriptor = use.descriptor_.number();
        if (!use || !lock(descriptor, LOCK_SH))
            throw_file_error(messages::kFileOpen, url, errno);
        if (is_linked(descriptor)) {
            require_own(descriptor, url);
            return use;
        }
    }
}

SharedMemoryUse SharedMemoryUse::make(const std::string& path, const wstring& url) {
    SharedMemoryUse use(
        Descriptor(::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR)), path);
    if (!use && errno == EEXIST)
        return use;
    const int descriptor = use.descriptor_.number();
    if (!use || !lock(descriptor, LOCK_SH))
        throw_file_error(messages::kFileOpen, url, errno);
    if (!is_linked(descriptor)) // it was taken for an unused one before it was locked
        (void)use.descriptor_.close();
    return use;
}

void SharedMemoryUse::leave(int descriptor, const std::string& path) noexcept {
    if (descriptor >= 0 && lock(descriptor, LOCK_EX | LOCK_NB) && is_linked(descriptor))
        (void)::unlink(path.c_str());
}

void SharedMemoryUse::removeUnused(const std::string& path) noexcept {
    const Descriptor found = open_there(path, O_RDONLY);
    leave(found.number(), path);
}

void SharedMemoryFile::truncate(std::uint64_t length) {
    const std::uint64_t old = this->length();
    if (length <= old)
        return DescriptorFile::truncate(length);
    requireLength(length);
    int error = 0;
    do
        error =
            ::posix_fallocate(descriptor(), static_cast<::off_t>(old), static_cast<::off_t>(length - old));
    while (error == EINTR);
    if (error != 0)
        throw_file_error(messages::kFileWrite, url(), error);
}

void SharedMemoryFile::close() {
    SharedMemoryUse::leave(descriptor(), path_);
    DescriptorFile::close();
}

} // namespace core
