# SPDX-License-Identifier: Apache-2.0
# What "cmake --install" lays down. Every path in it is relative, so that the prefix can be moved.
include(CMakePackageConfigHelpers)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/core)
file(RELATIVE_PATH bin_to_lib /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${CMAKE_INSTALL_LIBDIR})
file(RELATIVE_PATH pc_to_prefix /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
cmake_path(SET pc_to_prefix NORMALIZE ${pc_to_prefix}/.)
string(REGEX REPLACE "/$" "" pc_to_prefix ${pc_to_prefix})

set_target_properties(corehost PROPERTIES INSTALL_RPATH "$ORIGIN/${bin_to_lib}")
set_target_properties(core_script PROPERTIES INSTALL_RPATH "$ORIGIN")
install(TARGETS core core_host core_script corehost EXPORT core
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT core NAMESPACE core:: FILE coreTargets.cmake DESTINATION ${package_dir})

file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/package/coreConfig.cmake CONTENT
  [[include("${CMAKE_CURRENT_LIST_DIR}/coreTargets.cmake")
include("${CMAKE_CURRENT_LIST_DIR}/CoreModule.cmake")
foreach(component ${core_FIND_COMPONENTS}) # core, host and script are always there
  if(TARGET core::${component})
    set(core_${component}_FOUND TRUE)
  elseif(core_FIND_REQUIRED_${component})
    set(core_FOUND FALSE)
    set(core_NOT_FOUND_MESSAGE "the package has no component ${component}")
  endif()
endforeach()
]] @ONLY)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/package/coreConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/package/coreConfig.cmake ${PROJECT_BINARY_DIR}/package/coreConfigVersion.cmake
  ${PROJECT_SOURCE_DIR}/cmake/CoreModule.cmake
  DESTINATION ${package_dir})

foreach(name core core-host core-script)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/${name}.pc.in ${PROJECT_BINARY_DIR}/package/${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/package/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
