# SPDX-License-Identifier: Apache-2.0
find_package(Qt5Gui REQUIRED)
target_link_libraries(bench_documents PRIVATE Qt5::Gui)
