// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file.h>

#include <string>
#include <string_view>

/// Files of the file system. They are read and written by position and never mapped: a file that another
/// process cuts short gives an error then, not a fault.
namespace core {

/// The permissions of a file that is made: everybody may read and write it, or nobody else.
inline constexpr unsigned kPublicFile = 0666;
inline constexpr unsigned kPrivateFile = 0600;

/// Opens the file at a path of the system (UTF-8 as a rule, but any bytes). The object is an ISharedFile,
/// too. A file that is made gets these permissions, less what the process withholds. Throws FileException.
[[nodiscard]] CORE_API InterfacePtr<IFile> open_disk_file(const std::string& path, OpenMode mode,
                                                          unsigned permissions = kPublicFile);

/// A new empty file in `folder` that nobody else can open and that is gone when it is closed.
[[nodiscard]] CORE_API InterfacePtr<IFile> create_temp_file(const std::string& folder);

/// "file://" URLs: the path with every byte escaped ("%20") that is not plain in a URL.
/// A relative path stays one.
[[nodiscard]] CORE_API wstring file_url(std::string_view path);
/// The path of such a URL; a text without scheme is a path as it stands. Throws what require_whole_path()
/// throws.
[[nodiscard]] CORE_API std::string file_path(wstring_view url);
/// Refuses a path with a zero byte with FileException: the system would cut it there and mean another file.
CORE_API void require_whole_path(const std::string& path);

} // namespace core
