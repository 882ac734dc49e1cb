# SPDX-License-Identifier: Apache-2.0
find_package(Qt5Core REQUIRED)
find_package(absl REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(PCRE2 REQUIRED IMPORTED_TARGET libpcre2-16)
pkg_check_modules(SQLITE REQUIRED IMPORTED_TARGET sqlite3)
target_link_libraries(bench_names PRIVATE Qt5::Core absl::hash PkgConfig::PCRE2 PkgConfig::SQLITE)
