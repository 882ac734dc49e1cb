// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/shared_folder.h"

#include "core/runtime/windows/system.h"

#include <algorithm>
#include <cstdio>

namespace core::detail {

std::string shared_folder() {
    // Files there stay in memory as long as memory is not short, and no other user may open them.
    wchar_t path[MAX_PATH + 1] = {};
    std::string folder = windows::from_system({path, ::GetTempPathW(MAX_PATH, path)});
    std::ranges::replace(folder, '\\', '/');
    return folder;
}

std::string shared_prefix(const std::string& kind) {
    return kind + '-'; // the folder is the user's own
}

std::string shared_file_name(const std::string& text) {
    constexpr std::string_view kSpecial = "/\\:*?\"<>|%~.";
    std::string name;
    for (const char c : text) {
        const bool isCapital = c >= 'A' && c <= 'Z'; // the system would take it for the small letter
        if (static_cast<unsigned char>(c) > 0x20 && !isCapital &&
            kSpecial.find(c) == std::string_view::npos) {
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
