// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file.h>

namespace core {

/// The service for files that live no longer than their use. They lie in the folder that TMPDIR names, else
/// in the system's. Threads: any.
class ITempFileService : public IUnknown {
  public:
    static constexpr GUID IID = "68cdb09f-2364-493a-a532-8dafaae86e53"_guid;

    /// A new empty file, gone when it is closed, or with the process.
    [[nodiscard]] virtual InterfacePtr<IFile> create() = 0;
    /// Makes an empty file with a name nobody else has and returns its URL; it is the caller's to remove.
    [[nodiscard]] virtual wstring createNamed() = 0;

  protected:
    ~ITempFileService() = default;
};

/// Makes the service for a program without process object.
[[nodiscard]] CORE_API InterfacePtr<ITempFileService> create_temp_file_service();

} // namespace core
