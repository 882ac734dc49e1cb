// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime.h>

#include <filesystem>
#include <string>

namespace support {

/// Makes a folder with a name of its own; the caller removes it.
[[nodiscard]] inline std::filesystem::path
new_folder(const std::string& begin,
           const std::filesystem::path& parent = std::filesystem::temp_directory_path()) {
    std::filesystem::path path = parent / (begin + '-' + core::to_utf8(core::to_string(core::new_guid())));
    std::filesystem::create_directory(path);
    return path;
}

} // namespace support
