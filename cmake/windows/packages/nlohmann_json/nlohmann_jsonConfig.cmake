# SPDX-License-Identifier: Apache-2.0
# Headers alone, which are the same for every system.
add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)
