// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <filesystem>

namespace core {

/// The folder for files that live no longer than their use: the one that TMPDIR names, else the system's.
[[nodiscard]] std::filesystem::path temp_folder();

} // namespace core
