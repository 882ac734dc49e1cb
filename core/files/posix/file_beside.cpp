// SPDX-License-Identifier: Apache-2.0
#include "core/files/file_beside.h"

#include "core/files/descriptor_file.h"
#include "core/files/disk_node.h"
#include "core/files/disk_path.h"
#include "core/files/schemes.h"

#include <core/files/disk_file.h>
#include <core/files/errors.h>
#include <core/runtime/internal_class.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <utility>

namespace core {
namespace {

class NamelessFile : public DescriptorFile {
  public:
    NamelessFile(Descriptor descriptor, wstring url)
        : DescriptorFile(std::move(descriptor), std::move(url)) {}
};

/// While it lives, the thread takes no signal: a file must not be left behind under its first name.
class SignalsWait {
  public:
    SignalsWait() noexcept {
        sigset_t all;
        ::sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    SignalsWait(const SignalsWait&) = delete;
    SignalsWait& operator=(const SignalsWait&) = delete;
    ~SignalsWait() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

  private:
    sigset_t before_{};
};

/// A file without a name in a folder; -1 where the system has none, or could not give it a name later.
int open_nameless([[maybe_unused]] const std::string& folder, [[maybe_unused]] unsigned permissions) {
#if defined(O_TMPFILE)
    if (::access("/proc/self/fd", X_OK) == 0)
        return ::open(folder.empty() ? "." : folder.c_str(), O_RDWR | O_TMPFILE | O_CLOEXEC, permissions);
#endif
    return -1;
}

} // namespace

FileBeside::FileBeside(const std::string& target, unsigned permissions)
    : path_(folder_of(target) + name_beside()), nameless_(-1) {
    require_whole_path(target);
    Descriptor descriptor(open_nameless(folder_of(target), permissions));
    nameless_ = descriptor.number();
    if (nameless_ >= 0) {
        content_ = make_object<NamelessFile>(std::move(descriptor), file_url(target));
        return;
    }
    try {
        content_ = open_disk_file(path_, OpenMode::createNew, permissions);
    } catch (const FileException& e) { // nobody has asked for the name that it has
        throw_file_error(messages::kFileOpen, file_url(target), e.systemError());
    }
}

FileBeside::~FileBeside() {
    if (nameless_ < 0 && !path_.empty())
        (void)::unlink(path_.c_str());
}

void FileBeside::setPermissions(unsigned permissions) noexcept {
    (void)(nameless_ >= 0 ? ::fchmod(nameless_, permissions) : ::chmod(path_.c_str(), permissions));
}

bool FileBeside::replace(const std::string& target) {
    content_->flush();
    const std::string folder = folder_of(target); // once the place is taken, nothing may fail
    const SignalsWait wait;
    if (nameless_ < 0) {
        content_->close();
        if (!rename_node(path_, target))
            return false;
    } else {
        if (!takePlace(target, folder + ".core-" + target.substr(folder.size())))
            return false;
        content_->close();
    }
    path_.clear();
    flush_folder(folder);
    return true;
}

bool FileBeside::takePlace(const std::string& target, std::string known) {
    const std::string open = "/proc/self/fd/" + std::to_string(nameless_);
    const auto link = [&open](const std::string& path) {
        return ::linkat(AT_FDCWD, open.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) == 0;
    };
    if (link(target))
        return true;
    if (errno != EEXIST)
        return false;
    // No system call replaces a file by a nameless one. A kill between the two that do leaves a whole file,
    // under a name that the next saver of the target knows: that one puts it in its place first. Where this
    // is refused, the name of another file stands there, and one that nobody has is taken.
    bool isKnown = link(known);
    if (!isKnown && errno == EEXIST && (rename_node(known, target) || errno == ENOENT))
        isKnown = link(known);
    if (isKnown)
        path_.swap(known);
    else if (!link(path_))
        return false;
    nameless_ = -1;
    return rename_node(path_, target) || (isKnown && errno == ENOENT); // another saver has done it
}

} // namespace core
