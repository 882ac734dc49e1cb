// SPDX-License-Identifier: Apache-2.0
#include "core/files/folder_copy.h"

#include "core/files/disk_path.h"
#include "core/runtime/folder_entries.h"
#include "core/runtime/native_path.h"

#include <core/files/disk_file.h>
#include <core/files/errors.h>
#include <core/files/file_io.h>

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

namespace core {
namespace {

namespace fs = std::filesystem;

constexpr unsigned kOwnerOnly = 0700;
constexpr unsigned kPermissions = 0777; // whom a program runs as is not copied

[[noreturn]] void throw_not_copied(const std::string& path, int error) {
    throw_file_error(messages::kFileCopy, file_url(path), error);
}

void set_attributes(const std::string& path, const DiskNode& node) {
    if (!set_permissions(path, node.permissions & kPermissions) ||
        !set_times(path, node.accessed, node.modified))
        throw_file_error(messages::kFileAttributes, file_url(path), errno);
}

void copy_file(const std::string& from, const std::string& to, const DiskNode& node, const OpenDisk& disk) {
    const auto source = open_disk_file(from, OpenMode::read);
    const auto target = open_disk_file(to, OpenMode::createNew, kPrivateFile);
    copy_bytes(*source, *target);
    if (!disk.flushesFiles())
        target->flush();
    target->close();
    set_attributes(to, node);
}

void copy_link(const std::string& from, const std::string& to) {
    std::error_code error;
    fs::copy_symlink(native_path(from), native_path(to), error);
    if (error)
        throw_not_copied(from, error.default_error_condition().value());
}

/// Removes what lies in a folder and is not a folder, then the folder. It takes one descriptor, which is
/// there even where a lack of them is what the copy failed at, and no memory that could be missing.
void remove_with_files(const std::string& folder) noexcept {
    FolderEntries entries(folder);
    while (const char* const name = entries.next())
        entries.remove(name);
    remove_one_folder(folder);
}

} // namespace

FolderCopy::FolderCopy(std::string from, std::string to) {
    folders_.push_back({std::move(from), std::move(to), {}});
}

FolderCopy::~FolderCopy() {
    if (kept_)
        return;
    for (const Folder& folder : folders_) // one that may not be written cannot be emptied
        set_permissions(folder.to, kOwnerOnly);
    for (auto folder = folders_.rbegin(); folder != folders_.rend(); ++folder)
        remove_with_files(folder->to);
}

void FolderCopy::make() {
    const std::string from = folders_.front().from;
    try {
        const OpenDisk disk(folder_of(path()));
        makeFolder(folders_.front());
        for (std::size_t i = 0; i < folders_.size(); ++i)
            copyEntries(i, disk);
        // From the innermost on: what is made in a folder changes its time, and permissions may close it.
        for (auto folder = folders_.rbegin(); folder != folders_.rend(); ++folder)
            set_attributes(folder->to, folder->node);
        if (const int error = disk.flush())
            throw_not_copied(from, error);
    } catch (const FileException& e) {
        if (e.url().starts_with(file_url(path()))) // nobody knows the name of what is being made
            throw_not_copied(from, e.systemError());
        throw;
    }
}

void FolderCopy::makeFolder(Folder& folder) {
    const auto node = disk_node(folder.from, Links::followed);
    if (!node)
        throw_not_copied(folder.from, errno);
    folder.node = *node;
    if (!make_one_folder(folder.to, kOwnerOnly))
        throw_file_error(messages::kFileMakeFolder, file_url(folder.to), errno);
}

void FolderCopy::copyEntries(std::size_t folder, const OpenDisk& disk) {
    const std::string from = folders_[folder].from; // the list grows meanwhile
    const std::string to = folders_[folder].to;
    FolderEntries entries(from);
    while (const char* const entry = entries.next()) {
        const std::string name = std::string("/") + entry;
        copyEntry(from + name, to + name, disk);
    }
    if (entries.error() != 0)
        throw_not_copied(from, entries.error());
}

void FolderCopy::copyEntry(std::string from, std::string to, const OpenDisk& disk) {
    const auto node = disk_node(from, Links::themselves);
    if (!node)
        throw_not_copied(from, errno);
    switch (node->kind) {
    case DiskNode::Kind::folder:
        folders_.push_back({std::move(from), std::move(to), {}});
        makeFolder(folders_.back());
        break;
    case DiskNode::Kind::file:
        copy_file(from, to, *node, disk);
        break;
    case DiskNode::Kind::link:
        copy_link(from, to);
        break;
    case DiskNode::Kind::other:
        throw_not_copied(from, ENOTSUP);
    }
}

} // namespace core
