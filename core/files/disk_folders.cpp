// SPDX-License-Identifier: Apache-2.0
#include "core/files/disk_folders.h"

#include "core/files/disk_node.h"
#include "core/files/disk_path.h"
#include "core/files/folder_copy.h"
#include "core/files/schemes.h"
#include "core/runtime/native_path.h"

#include <core/files/disk_file.h>
#include <core/files/errors.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <vector>

namespace core {
namespace {

namespace fs = std::filesystem;

bool is_folder(const std::string& path) {
    const auto node = disk_node(path, Links::followed);
    return node && node->kind == DiskNode::Kind::folder;
}

/// Refuses what is not a folder, a link to one included.
void require_folder(const std::string& path, const char* message) {
    const auto node = disk_node(path, Links::themselves);
    if (const int error = !node ? errno : node->kind == DiskNode::Kind::folder ? 0 : ENOTDIR)
        throw_file_error(message, file_url(path), error);
}

/// Refuses a target that is there, or that lies in the source. The source is a folder.
void require_new_outside(const std::string& from, const std::string& to) {
    if (is_same_file(from, to))
        throw_file_error(messages::kFileCopyOntoItself, file_url(to), EEXIST);
    if (disk_node(to, Links::themselves))
        throw_file_error(messages::kFileMakeFolder, file_url(to), EEXIST);
    const std::string folder = folder_of(to);
    std::error_code error;
    fs::path above = fs::canonical(native_path(folder.empty() ? "." : folder), error);
    if (error)
        throw_file_error(messages::kFileMakeFolder, file_url(to), error.default_error_condition().value());
    // By the folders themselves: one may have several paths.
    for (; !is_same_file(path_text(above), from); above = above.parent_path()) {
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
            if (make_one_folder(missing[i], 0777)) {
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
                remove_one_folder(missing[i]);
        }
        throw;
    }
}

void remove_folder(const std::string& path) {
    const std::string folder = without_end_slash(path);
    require_folder(folder, messages::kFileRemove);
    if (is_same_file(folder, path_text(fs::absolute(native_path(folder))
                                           .root_path()))) // as when the rest of the path was forgotten
        throw_file_error(messages::kFileRemove, file_url(path), EBUSY);
    if (!remove_whole_folder(folder))
        throw_file_error(messages::kFileRemove, file_url(path), errno);
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
    if (!rename_node(copy.path(), target))
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
