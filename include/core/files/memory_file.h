// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file.h>

#include <memory>

namespace core {

/// The bytes and locks of a file in memory. Any number of open files can stand on them, in any threads. They
/// are gone with the last owner.
class MemoryFileData;

/// Makes the data of an empty file.
[[nodiscard]] CORE_API std::shared_ptr<MemoryFileData> create_memory_data();

/// Opens a file on `data` for reading and writing; it shares the ownership of `data`. The object is an
/// ISharedFile, too: its locks exclude those of other open files on the same data. `url` stands in messages.
[[nodiscard]] CORE_API InterfacePtr<IFile> open_memory_file(std::shared_ptr<MemoryFileData> data,
                                                            wstring url = u"mem://");

} // namespace core
