// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/threads/posix/named_files.h"

#include "core/runtime/folder_entries.h"
#include "core/runtime/shared_folder.h"
#include "core/runtime/threads/posix/named_memory.h"

#include <core/runtime/random.h>
#include <core/runtime/threads/errors.h>
#include <core/runtime/utf8.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace core::detail {
namespace {

constexpr std::size_t kLongest = 150; // bytes of a name as it stands in the path
constexpr const char* kKind = "core-lock";

void remove_if_unused(const std::string& path) noexcept {
    const OpenFile file = OpenFile::open(path);
    if (file.get() < 0 || !file.lock(OpenFile::Lock::exclusive) || !file.isLinked())
        return;
    NamedHeader header{};
    const ssize_t size = pread(file.get(), &header, sizeof header, 0);
    if (size != sizeof header || header.held.load() == 0)
        unlink(path.c_str());
}

} // namespace

OpenFile::~OpenFile() {
    if (file_ >= 0)
        close(file_);
}

OpenFile OpenFile::open(const std::string& path) noexcept {
    return OpenFile(::open(path.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
}

OpenFile OpenFile::make(const std::string& path) noexcept {
    return OpenFile(
        ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR));
}

bool OpenFile::lock(Lock how) const noexcept {
    int result = 0;
    do
        result = flock(file_, how == Lock::shared ? LOCK_SH : LOCK_EX | LOCK_NB);
    while (result != 0 && errno == EINTR);
    return result == 0;
}

bool OpenFile::isLinked() const noexcept {
    struct stat status {};
    return fstat(file_, &status) == 0 && status.st_nlink > 0;
}

bool OpenFile::isOwn(std::size_t size) const noexcept {
    struct stat status {};
    return fstat(file_, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == geteuid() &&
           status.st_size == static_cast<off_t>(size);
}

RemovedFile::~RemovedFile() {
    unlink(path_.c_str());
}

std::string named_path(const wstring& name) {
    const std::string text = to_utf8(name);
    const std::string file = shared_file_name(text);
    if (name.empty() || file.size() > kLongest || from_utf8(text) != name)
        throw_error<ThreadException>(messages::kLockName, {name});
    return shared_folder() + shared_prefix(kKind) + file;
}

std::string unfinished_path(const std::string& path) {
    return path + '~' + to_utf8(to_string(new_guid()));
}

void remove_unused_files() {
    const std::string folder = shared_folder();
    FolderEntries entries(folder);
    while (const char* const entry = entries.next()) {
        if (const std::string file = entry; file.starts_with(shared_prefix(kKind)))
            remove_if_unused(folder + file);
    }
}

} // namespace core::detail
