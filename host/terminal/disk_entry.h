// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace host {

/// A file or something else on disk.
struct DiskEntry {
    bool isFile = false;
    bool isFolder = false;
    bool keepsNothing = false; ///< a pipe or a device of characters
    std::uint64_t size = 0;
    std::int64_t modified = 0;                    ///< seconds since 1970
    std::pair<std::uint64_t, std::uint64_t> id{}; ///< no other entry has it
};

/// What a path leads to; nothing when that is not there.
[[nodiscard]] std::optional<DiskEntry> disk_entry(const std::string& path);

/// The standard library's path of one in UTF-8, and back.
[[nodiscard]] inline std::filesystem::path native_path(std::string_view path) {
    const auto* const begin = reinterpret_cast<const char8_t*>(path.data());
    return {begin, begin + path.size()};
}
[[nodiscard]] inline std::string path_text(const std::filesystem::path& path) {
    const std::u8string text = path.generic_u8string();
    return {reinterpret_cast<const char*>(text.data()), text.size()};
}

} // namespace host
