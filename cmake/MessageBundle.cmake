# SPDX-License-Identifier: Apache-2.0
# Message texts of the library: kept in "core/messages" beside it, wherever it is.
include(CoreModule)
if(WIN32)
  set(bundle_dir ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/core/messages)
  set(installed_dir ${CMAKE_INSTALL_BINDIR})
else()
  set(bundle_dir ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/core/messages)
  set(installed_dir ${CMAKE_INSTALL_LIBDIR})
endif()
core_add_messages(core ${bundle_dir} ${PROJECT_SOURCE_DIR}/core/resources/root.txt ${PROJECT_SOURCE_DIR}/core/resources/ru.txt)
install(FILES ${bundle_dir}/root.res ${bundle_dir}/ru.res DESTINATION ${installed_dir}/core/messages)
