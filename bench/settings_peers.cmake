# SPDX-License-Identifier: Apache-2.0
find_package(Qt5Core REQUIRED)
target_link_libraries(bench_settings PRIVATE Qt5::Core core::host)
