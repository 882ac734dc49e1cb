# SPDX-License-Identifier: Apache-2.0
find_package(Qt5Core REQUIRED)
find_package(nlohmann_json REQUIRED)
target_link_libraries(bench_values PRIVATE Qt5::Core nlohmann_json::nlohmann_json)
