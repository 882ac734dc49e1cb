// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <string>

namespace core {

/// Whether a text is a "file://" URL, whose path is escaped, and not a path as it stands.
[[nodiscard]] bool is_file_url(wstring_view text) noexcept;

/// A path up to its last "/", that included; nothing for a name alone.
[[nodiscard]] std::string folder_of(const std::string& path);

/// A path without the "/" at its end; the root stays "/".
[[nodiscard]] std::string without_end_slash(std::string path);

/// Whether both paths lead to one file or folder.
[[nodiscard]] bool is_same_file(const std::string& a, const std::string& b);

/// Makes durable which files the folder of `path` names: one that was made or renamed is not before.
void flush_folder_of(const std::string& path);

} // namespace core
