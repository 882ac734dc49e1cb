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

/// Makes durable which files a folder names, the current one if it is empty: a file that was made or renamed
/// is not before. It takes memory only to fail.
void flush_folder(const std::string& folder);
/// The same for the folder of `path`.
void flush_folder_of(const std::string& path);

/// Renames and makes that durable. Returns false when the system refuses it, with its reason in errno. Throws
/// FileException when it is done but not durable.
[[nodiscard]] bool rename_durably(const std::string& from, const std::string& to);

} // namespace core
