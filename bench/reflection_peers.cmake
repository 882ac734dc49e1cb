# SPDX-License-Identifier: Apache-2.0
find_package(Qt5Core REQUIRED)
find_package(absl REQUIRED)
target_link_libraries(bench_reflection PRIVATE Qt5::Core absl::flat_hash_map)
set_target_properties(bench_reflection PROPERTIES AUTOMOC ON)
