// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace core {

/// The folder below which programs keep the settings of the user, as a path. Empty if the system names none.
[[nodiscard]] std::string user_config_folder();
/// The same for the settings of the whole machine.
[[nodiscard]] std::string system_config_folder();

} // namespace core
