// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file.h>

#include <string>
#include <string_view>

/// Files of the file system. They are read and written by position and never mapped: a file that another
/// process cuts short gives an error then, not a fault.
namespace core {

/// Opens the file at a path of the system (UTF-8 as a rule, but any bytes). The object is an ISharedFile,
/// too. Throws FileException.
[[nodiscard]] CORE_API InterfacePtr<IFile> open_disk_file(const std::string& path, OpenMode mode);

/// A new empty file in `folder` that nobody else can open and that is gone when it is closed.
[[nodiscard]] CORE_API InterfacePtr<IFile> create_temp_file(const std::string& folder);

/// "file://" URLs: the path with every byte escaped ("%20") that is not plain in a URL.
/// A relative path stays one.
[[nodiscard]] CORE_API wstring file_url(std::string_view path);
/// The path of such a URL; a text without scheme is a path as it stands.
[[nodiscard]] CORE_API std::string file_path(wstring_view url);

} // namespace core
