// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <string>
#include <string_view>

namespace core {

/// Whether a text is a "file://" URL, whose path is escaped, and not a path as it stands.
[[nodiscard]] bool is_file_url(wstring_view text) noexcept;

/// A path of the system as the path of a "file://" URL, and back. Inside of the library names are divided by
/// "/" alone.
[[nodiscard]] std::string to_url_path(std::string_view path);
[[nodiscard]] std::string from_url_path(std::string path);
/// The same path as the library writes it.
[[nodiscard]] std::string plain_path(std::string path);
[[nodiscard]] wstring plain_path(wstring path);
/// Whether a text is the path of a drive, as systems with drives have it, and not a URL with a scheme.
[[nodiscard]] bool begins_with_drive(wstring_view text) noexcept;
/// Whether the system takes a path for what it says. Some names mean a device, or another file.
[[nodiscard]] bool means_itself(std::string_view path) noexcept;

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
