# SPDX-License-Identifier: Apache-2.0
find_package(Qt5Widgets REQUIRED)
find_library(scintilla qscintilla2_qt5 REQUIRED)
target_link_libraries(bench_documents PRIVATE Qt5::Widgets ${scintilla})
