// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace core {

/// The standard library's path of one in UTF-8. Where paths are bytes they stay as they are; where they are
/// UTF-16, a plain conversion would take the bytes for another code page.
[[nodiscard]] inline std::filesystem::path native_path(std::string_view path) {
    const auto* const begin = reinterpret_cast<const char8_t*>(path.data());
    return {begin, begin + path.size()};
}

/// The other way: a path in UTF-8, with "/" between its parts.
[[nodiscard]] inline std::string path_text(const std::filesystem::path& path) {
    const std::u8string text = path.generic_u8string();
    return {reinterpret_cast<const char*>(text.data()), text.size()};
}

} // namespace core
