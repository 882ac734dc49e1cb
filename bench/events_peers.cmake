# SPDX-License-Identifier: Apache-2.0
find_package(PkgConfig REQUIRED)
find_package(Boost 1.81 REQUIRED)
pkg_check_modules(SIGC REQUIRED IMPORTED_TARGET sigc++-3.0)
pkg_check_modules(GOBJECT REQUIRED IMPORTED_TARGET gobject-2.0)
target_link_libraries(bench_events PRIVATE Boost::headers PkgConfig::SIGC PkgConfig::GOBJECT core::host)
