// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file.h>

namespace core {

/// The service for temporary files. They lie in the folder that the variable TMPDIR names, else in the
/// system's. Each call throws FileException when the file cannot be made. Threads: any.
class ITempFileService : public IUnknown {
  public:
    static constexpr GUID IID = "68cdb09f-2364-493a-a532-8dafaae86e53"_guid;

    /// Makes an empty file without a name, which is gone when it is closed or when the process ends.
    [[nodiscard]] virtual InterfacePtr<IFile> create() = 0;
    /// Makes an empty file with a new name, which only its owner may read, and returns its URL. The caller
    /// removes it.
    [[nodiscard]] virtual wstring createNamed() = 0;

  protected:
    ~ITempFileService() = default;
};

/// Makes the service for a program that has no process object.
[[nodiscard]] CORE_API InterfacePtr<ITempFileService> create_temp_file_service();

} // namespace core
