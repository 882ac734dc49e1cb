// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/files/descriptor_file.h"
#include "core/runtime/windows/system.h"

#include <core/files/file_system.h>

#include <string>

namespace core::windows {

/// How a file is opened.
struct Opening {
    DWORD access = GENERIC_READ;
    DWORD disposition = OPEN_EXISTING;
    DWORD flags = FILE_ATTRIBUTE_NORMAL;
};

/// Opens a file so that others may read, write, rename and remove it meanwhile. Without one, errno says why.
[[nodiscard]] Descriptor open_shared(const std::string& path, const Opening& opening);

/// The system's handle behind a descriptor, borrowed; INVALID_HANDLE_VALUE for none.
[[nodiscard]] HANDLE handle_of(int descriptor) noexcept;

/// A lock of a whole file, apart from the locks of its regions. It ends with the descriptor; an exclusive one
/// is not waited for. False with the reason in errno. What was held of it before is given back first.
[[nodiscard]] bool lock_whole(int descriptor, bool exclusive) noexcept;

} // namespace core::windows
