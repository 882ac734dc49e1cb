// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file_system.h>

#include <string>

namespace core {

[[nodiscard]] InterfacePtr<IFileScheme> create_disk_scheme();
[[nodiscard]] InterfacePtr<IFileScheme> create_memory_scheme();
[[nodiscard]] InterfacePtr<IFileScheme> create_shared_memory_scheme();

/// How much room there is on the disk of a path. Throws FileException with `url`.
[[nodiscard]] FileSpace disk_space(const std::string& path, const wstring& url);

/// Throws FileException: the scheme of the URL cannot do what is asked for.
[[noreturn]] void unsupported(const wstring& url);

/// A name that no other file has, for what is written beside the file whose place it takes. It is short,
/// however long the name of that file is.
[[nodiscard]] std::string name_beside();

} // namespace core
