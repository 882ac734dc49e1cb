// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/storage/storage_rw.h>

#include <string>

namespace host {

/// Opens the container in `file`, a path or a lumstg or lumstg64 URL; one that need not exist is made. `wide`
/// says that a path has the 64-bit layout; a URL says it itself. FileException and StorageException.
[[nodiscard]] core::StorageRW open_container(const std::string& file, bool wide, core::OpenMode mode);

} // namespace host
