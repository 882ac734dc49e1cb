// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file.h>

#include <string>
#include <string_view>

/// Files of the file system. They are read and written by offset and never mapped: a file that another
/// process cuts short gives an error then, not a fault.
namespace core {

/// The permissions of a file that everybody may read and write.
inline constexpr unsigned kPublicFile = 0666;
/// The permissions of a file that only its owner may read and write.
inline constexpr unsigned kPrivateFile = 0600;

/// Opens the file at `path`, a path of the system in UTF-8 or in any other bytes. The object is an
/// ISharedFile, too. A file that is made gets `permissions`, without those that the process withholds. Throws
/// FileException when the file cannot be opened as `mode` says, is a folder, or when the path holds a zero
/// byte.
[[nodiscard]] CORE_API InterfacePtr<IFile> open_disk_file(const std::string& path, OpenMode mode,
                                                          unsigned permissions = kPublicFile);

/// Makes an empty file in `folder` that has no name any more: nobody else can open it, and it is gone when it
/// is closed. Throws FileException when it cannot be made.
[[nodiscard]] CORE_API InterfacePtr<IFile> create_temp_file(const std::string& folder);

/// Returns the "file://" URL of a path, in which every byte that is not plain in a URL is escaped ("%20"). A
/// relative path stays relative.
[[nodiscard]] CORE_API wstring file_url(std::string_view path);
/// Returns the path of a "file://" URL, its escapes resolved; a text without scheme is the path itself.
/// Throws FileException when the path holds a zero byte.
[[nodiscard]] CORE_API std::string file_path(wstring_view url);
/// Throws FileException when `path` holds a zero byte: the system would cut it there and mean another file.
CORE_API void require_whole_path(const std::string& path);

} // namespace core
