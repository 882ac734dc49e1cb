// SPDX-License-Identifier: Apache-2.0
#include "core/files/disk_path.h"

// A path is any bytes, and its names are divided by "/".
namespace core {

std::string to_url_path(std::string_view path) {
    return std::string(path);
}

std::string from_url_path(std::string path) {
    return path;
}

std::string plain_path(std::string path) {
    return path;
}

wstring plain_path(wstring path) {
    return path;
}

bool begins_with_drive(wstring_view) noexcept {
    return false;
}

bool means_itself(std::string_view) noexcept {
    return true;
}

} // namespace core
