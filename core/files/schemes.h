// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file_system.h>

namespace core {

[[nodiscard]] InterfacePtr<IFileScheme> create_disk_scheme();
[[nodiscard]] InterfacePtr<IFileScheme> create_memory_scheme();

} // namespace core
