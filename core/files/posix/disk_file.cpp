// SPDX-License-Identifier: Apache-2.0
#include "core/files/descriptor_file.h"
#include "core/files/disk_path.h"

#include <core/files/disk_file.h>
#include <core/files/errors.h>
#include <core/runtime/internal_class.h>
#include <core/runtime/threads/thread.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace core {
namespace {

class DiskFile : public DescriptorFile {
  public:
    /// `path` is not empty when the file may be new, and is needed for the first flush only.
    DiskFile(Descriptor descriptor, wstring url, std::string path)
        : DescriptorFile(std::move(descriptor), std::move(url)), newPath_(std::move(path)) {}

    using DescriptorFile::take;

    void flush() override {
        DescriptorFile::flush();
        if (!newPath_.empty()) {
            flush_folder_of(newPath_);
            newPath_.clear();
        }
    }

  private:
    std::string newPath_;
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

InterfacePtr<IFile> open_disk_file(const std::string& path, OpenMode mode, unsigned permissions) {
    require_whole_path(path);
    const wstring url = file_url(path);
    const bool mayBeNew = mode != OpenMode::read && mode != OpenMode::readWrite;
    // First what takes memory, so that no file is made for nobody.
    auto file = make_object<DiskFile>(Descriptor(-1), url, mayBeNew ? path : std::string());
    int number = -1;
    while ((number = ::open(path.c_str(), open_flags(mode) | O_CLOEXEC, permissions)) < 0 && errno == EINTR)
        Thread::check(); // a pipe opens when somebody comes to its other end
    if (number < 0)
        throw_file_error(messages::kFileOpen, url, errno);
    file->take(Descriptor(number));
    struct stat status {};
    if (::fstat(number, &status) == 0 && S_ISDIR(status.st_mode))
        throw_file_error(messages::kFileOpen, url, EISDIR);
    return file;
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
