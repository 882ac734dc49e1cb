// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file.h>
#include <core/storage/layout.h>

namespace core {

/// Opens the file of a container by its path or URL. One that is made or emptied becomes an empty container;
/// one that was made for a container that could not be written is removed again. FileException.
[[nodiscard]] InterfacePtr<IFile> open_container_file(const wstring& url, OpenMode mode,
                                                      const StorageLayout& layout);

/// Whether the file begins as a container of this layout does.
[[nodiscard]] bool begins_as_container(IFile& file, const StorageLayout& layout);

} // namespace core
