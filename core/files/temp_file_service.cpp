// SPDX-License-Identifier: Apache-2.0
#include "core/files/temp_folder.h"
#include "core/runtime/native_path.h"

#include <core/files/disk_file.h>
#include <core/files/temp_file_service.h>
#include <core/runtime/class_entry.h>
#include <core/runtime/random.h>
#include <core/runtime/utf8.h>

#include <string>
#include <system_error>

namespace core {
namespace {

class TempFileService : public ITempFileService {
  public:
    using Interfaces = InterfaceList<ITempFileService>;

    InterfacePtr<IFile> create() override { return create_temp_file(path_text(temp_folder())); }

    wstring createNamed() override {
        const auto path = temp_folder() / ("core-" + to_utf8(to_string(new_guid())));
        return open_disk_file(path_text(path), OpenMode::createNew, kPrivateFile)->url();
    }
};

constexpr GUID kTempFileServiceClass = "f29f7b18-e84a-4dca-8299-63538f057713"_guid;
const SCOM_ServiceEntryInit<TempFileService, &kTempFileServiceClass, &ITempFileService::IID>
    kTempFileServiceEntry("TempFileService");

} // namespace

std::filesystem::path temp_folder() {
    std::error_code error;
    auto folder = std::filesystem::temp_directory_path(error);
    return error ? std::filesystem::path("/tmp") : folder;
}

InterfacePtr<ITempFileService> create_temp_file_service() {
    return make_object<TempFileService>();
}

} // namespace core
