// SPDX-License-Identifier: Apache-2.0
#include "core/files/file_beside.h"

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

/// A file that goes when it is closed, however that comes, unless it is kept.
class PassingFile : public DescriptorFile {
  public:
    PassingFile(Descriptor file, wstring url) : DescriptorFile(std::move(file), std::move(url)) {}

    [[nodiscard]] bool setGoes(bool goes) noexcept {
        FILE_DISPOSITION_INFO info{};
        info.DeleteFile = goes ? TRUE : FALSE;
        return ::SetFileInformationByHandle(windows::handle_of(descriptor()), FileDispositionInfo, &info,
                                            sizeof info) != 0 ||
               windows::fail();
    }
};

} // namespace

FileBeside::FileBeside(const std::string& target, unsigned)
    : path_(folder_of(target) + name_beside()), nameless_(-1) {
    require_whole_path(target);
    Descriptor descriptor = windows::open_shared(
        path_, {.access = GENERIC_READ | GENERIC_WRITE | DELETE, .disposition = CREATE_NEW});
    if (descriptor.number() < 0)
        throw_file_error(messages::kFileOpen, file_url(target), errno);
    auto file = make_object<PassingFile>(std::move(descriptor), file_url(target));
    (void)file->setGoes(true); // where the disk cannot, it stays behind when the process dies
    content_ = std::move(file);
}

FileBeside::~FileBeside() {
    if (path_.empty())
        return;
    content_.reset();
    (void)remove_one_file(path_); // where it has not gone by itself
}

// The new file has the rights that its folder gives, and is not read-only: the mark of the old one says
// nothing of new bytes.
void FileBeside::setPermissions(unsigned) noexcept {}

bool FileBeside::replace(const std::string& target) {
    content_->flush();
    if (!static_cast<PassingFile&>(*content_).setGoes(false))
        return false;
    content_->close();
    if (!rename_durably(path_, target))
        return false;
    path_.clear();
    return true;
}

} // namespace core
