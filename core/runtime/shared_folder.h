// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace core::detail {

/// The folder for what the processes of a user share in memory, with "/" at its end.
[[nodiscard]] std::string shared_folder();
/// What the names of this user's files in it begin with: `kind` with the number of the user.
[[nodiscard]] std::string shared_prefix(const std::string& kind);
/// A text as a part of a file's name: what has a meaning in paths is written by its number ("%2f").
[[nodiscard]] std::string shared_file_name(const std::string& text);

} // namespace core::detail
