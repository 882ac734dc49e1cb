// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/shared_folder.h"

#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace core::detail {

std::string shared_folder() {
    std::error_code error;
    return std::filesystem::is_directory("/dev/shm", error) ? "/dev/shm/" : "/tmp/";
}

std::string shared_prefix(const std::string& kind) {
    return kind + '-' + std::to_string(::geteuid()) + '-';
}

std::string shared_file_name(const std::string& text) {
    constexpr std::string_view kSpecial = "/%~";
    std::string name;
    for (const char c : text) {
        if (static_cast<unsigned char>(c) > 0x20 && kSpecial.find(c) == std::string_view::npos) {
            name += c;
        } else {
            char number[4];
            std::snprintf(number, sizeof number, "%%%02x",
                          static_cast<unsigned>(static_cast<unsigned char>(c)));
            name += number;
        }
    }
    return name;
}

} // namespace core::detail
