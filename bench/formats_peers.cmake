# SPDX-License-Identifier: Apache-2.0
find_package(Qt5Core REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(NUMBERTEXT REQUIRED IMPORTED_TARGET libnumbertext)
target_link_libraries(bench_formats PRIVATE Qt5::Core ICU::i18n PkgConfig::NUMBERTEXT)
