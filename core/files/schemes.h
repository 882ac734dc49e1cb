// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file_system.h>

#include <string>

namespace core {

[[nodiscard]] InterfacePtr<IFileScheme> create_disk_scheme();
[[nodiscard]] InterfacePtr<IFileScheme> create_memory_scheme();

/// A name that no other file has, for what is written beside the file whose place it takes. It is short,
/// however long the name of that file is.
[[nodiscard]] std::string name_beside();

} // namespace core
