// SPDX-License-Identifier: Apache-2.0
#include "core/files/disk_node.h"
#include "core/files/disk_path.h"
#include "core/files/schemes.h"
#include "core/files/windows/open_handle.h"

#include <core/files/disk_file.h>
#include <core/files/errors.h>
#include <core/runtime/internal_class.h>

#include <cerrno>
#include <utility>

namespace core {
namespace {

class DiskFile : public DescriptorFile {
  public:
    DiskFile(Descriptor descriptor, wstring url) : DescriptorFile(std::move(descriptor), std::move(url)) {}

    using DescriptorFile::take;
};

windows::Opening opening_of(OpenMode mode) noexcept {
    constexpr DWORD kBoth = GENERIC_READ | GENERIC_WRITE;
    switch (mode) {
    case OpenMode::read:
        return {};
    case OpenMode::readWrite:
        return {.access = kBoth};
    case OpenMode::create:
    case OpenMode::replace: // the system's own way of emptying a file refuses hidden ones
        return {.access = kBoth, .disposition = OPEN_ALWAYS};
    case OpenMode::createNew:
        return {.access = kBoth, .disposition = CREATE_NEW};
    }
    return {};
}

} // namespace

// The disk writes down which files a folder names before it says that a file is flushed.
void flush_folder(const std::string&) {}

InterfacePtr<IFile> open_disk_file(const std::string& path, OpenMode mode, unsigned) {
    require_whole_path(path);
    const wstring url = file_url(path);
    // First what takes memory, so that no file is made for nobody.
    auto file = make_object<DiskFile>(Descriptor(-1), url);
    Descriptor descriptor = windows::open_shared(path, opening_of(mode));
    if (descriptor.number() < 0) {
        const int reason = errno; // for a folder the system says that it is not allowed
        const auto node = disk_node(path, Links::followed);
        throw_file_error(messages::kFileOpen, url,
                         node && node->kind == DiskNode::Kind::folder ? EISDIR : reason);
    }
    file->take(std::move(descriptor));
    if (mode == OpenMode::replace)
        file->truncate(0);
    return file;
}

InterfacePtr<IFile> create_temp_file(const std::string& folder) {
    require_whole_path(folder);
    // It has a name as long as it is open, and loses it with the process, too.
    const std::string path = folder + '/' + name_beside();
    Descriptor descriptor =
        windows::open_shared(path, {.access = GENERIC_READ | GENERIC_WRITE | DELETE,
                                    .disposition = CREATE_NEW,
                                    .flags = FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE});
    if (descriptor.number() < 0)
        throw_file_error(messages::kFileOpen, file_url(folder), errno);
    return make_object<DiskFile>(std::move(descriptor), file_url(path));
}

} // namespace core
