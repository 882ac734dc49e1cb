// SPDX-License-Identifier: Apache-2.0
#include "core/files/disk_folders.h"

#include "core/files/disk_path.h"
#include "core/files/folder_copy.h"
#include "core/files/schemes.h"

#include <core/files/disk_file.h>
#include <core/files/errors.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <vector>

namespace core {
namespace {

namespace fs = std::filesystem;

bool is_folder(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

/// Refuses what is not a folder, a link to one included.
void require_folder(const std::string& path, const char* message) {
    struct stat status {};
    const int error = ::lstat(path.c_str(), &status) != 0 ? errno : S_ISDIR(status.st_mode) ? 0 : ENOTDIR;
    if (error != 0)
        throw_file_error(message, file_url(path), error);
}

/// Refuses a target that is there, or that lies in the source. The source is a folder.
void require_new_outside(const std::string& from, const std::string& to) {
    if (is_same_file(from, to))
        throw_file_error(messages::kFileCopyOntoItself, file_url(to), EEXIST);
    struct stat status {};
    if (::lstat(to.c_str(), &status) == 0)
        throw_file_error(messages::kFileMakeFolder, file_url(to), EEXIST);
    const std::string folder = folder_of(to);
    std::error_code error;
    fs::path above = fs::canonical(folder.empty() ? "." : folder, error);
    if (error)
        throw_file_error(messages::kFileMakeFolder, file_url(to), error.value());
    // By the folders themselves: one may have several paths.
    for (; !is_same_file(above.string(), from); above = above.parent_path()) {
        if (above == above.parent_path())
            return;
    }
    throw_file_error(messages::kFileCopyIntoItself, file_url(from), EINVAL);
}

} // namespace

void make_folder(const std::string& path) {
    std::vector<std::string> missing;
    for (std::string part = without_end_slash(path); !part.empty() && !is_folder(part);
         part = without_end_slash(folder_of(part)))
        missing.push_back(part);
    std::vector<bool> made(missing.size());
    try {
        for (std::size_t i = missing.size(); i-- > 0;) {
            if (::mkdir(missing[i].c_str(), 0777) == 0) {
                made[i] = true;
                flush_folder_of(missing[i]);
            } else if (const int error = errno; error != EEXIST || !is_folder(missing[i])) {
                throw_file_error(messages::kFileMakeFolder, file_url(path), error);
            }
        }
        if (!is_folder(path)) // an empty one
            throw_file_error(messages::kFileMakeFolder, file_url(path), ENOENT);
    } catch (...) {
        for (std::size_t i = 0; i < missing.size(); ++i) {
            if (made[i])
                (void)::rmdir(missing[i].c_str());
        }
        throw;
    }
}

void remove_folder(const std::string& path) {
    const std::string folder = without_end_slash(path);
    require_folder(folder, messages::kFileRemove);
    if (is_same_file(folder, "/")) // as when the rest of the path was forgotten
        throw_file_error(messages::kFileRemove, file_url(path), EBUSY);
    std::error_code error;
    fs::remove_all(folder, error);
    if (error)
        throw_file_error(messages::kFileRemove, file_url(path), error.value());
    flush_folder_of(folder);
}

void copy_folder(const std::string& from, const std::string& to) {
    const std::string source = without_end_slash(from);
    const std::string target = without_end_slash(to);
    if (!is_folder(source))
        require_folder(source, messages::kFileCopy);
    require_new_outside(source, target);
    const std::string folder = folder_of(target);
    FolderCopy copy(source, folder + name_beside());
    copy.make();
    // The name cannot be a file's, nor that of a folder that holds something: those are not replaced.
    if (std::rename(copy.path().c_str(), target.c_str()) != 0)
        throw_file_error(messages::kFileMakeFolder, file_url(to), errno);
    copy.keep();
    flush_folder(folder);
}

void move_folder(const std::string& from, const std::string& to) {
    const std::string source = without_end_slash(from);
    const std::string target = without_end_slash(to);
    require_folder(source, messages::kFileMove);
    require_new_outside(source, target);
    if (rename_durably(source, target))
        return;
    if (errno != EXDEV)
        throw_file_error(messages::kFileMove, file_url(from), errno);
    copy_folder(source, target);
    remove_folder(source);
}

} // namespace core
