# SPDX-License-Identifier: Apache-2.0
find_package(Qt5Core REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(SQLITE REQUIRED IMPORTED_TARGET sqlite3)
target_link_libraries(bench_summaries PRIVATE Qt5::Core PkgConfig::SQLITE)
