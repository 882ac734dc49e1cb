// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file.h>
#include <core/runtime/api.h>
#include <core/storage/layout.h>
#include <core/storage/storage_rw.h>

#include <functional>
#include <string>

namespace core {

/// Returns what a container is to use in place of a file: one that counts what is read, say. It must be an
/// ISharedFile if the file is one.
using FileWrapper = std::function<InterfacePtr<IFile>(InterfacePtr<IFile> file)>;

/// Opens the container in `file`: a path on disk, in UTF-8 or in any other bytes, or a URL, "lumstg://" or
/// "lumstg64://" and the path or URL of the file. The scheme of a URL says the layout, and options follow a
/// "?", as IStorageScheme::openContainer() takes them; a path has the layout `layout`. A file that is made or
/// emptied becomes an empty container; one that was made for a container that could not be written is removed
/// again. Messages name inner files by `file`, "/" and their names. `wrap`, if it is not empty, is given the
/// open file, once it holds a container. Throws FileException when the file cannot
/// be opened, and StorageException when it holds no container of the layout.
[[nodiscard]] CORE_API StorageRW open_container(const std::string& file, OpenMode mode,
                                                const StorageLayout& layout = kStorageLayout32,
                                                const FileWrapper& wrap = {});

} // namespace core
