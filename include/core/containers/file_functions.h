// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def.h>

namespace core {

/// Returns what scripts find without an object in front to work with files, each by its path or URL:
/// FileExists(File), FindFiles(Pattern, [Below]), DeleteFiles(Pattern), CopyFile(From, To) and
/// MoveFile(From, To), which take whole folders as well, CreateFolder(Folder) and DeleteFolder(Folder). They
/// need the file system service of the process. Throws std::bad_alloc.
[[nodiscard]] CORE_API InterfacePtr<IContext_> create_file_functions();

} // namespace core
