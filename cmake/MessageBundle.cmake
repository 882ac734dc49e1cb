# SPDX-License-Identifier: Apache-2.0
# Message texts: one ICU bundle per language, kept in "core/messages" beside the library, wherever the library is.
find_program(GENRB genrb REQUIRED)
set(bundle_dir ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/core/messages)
set(built_dir ${bundle_dir})
if(CMAKE_CROSSCOMPILING) # genrb writes in the byte order of the machine that it runs on
  find_program(ICUPKG icupkg REQUIRED)
  set(built_dir ${PROJECT_BINARY_DIR}/messages)
  string(SUBSTRING ${CMAKE_CXX_BYTE_ORDER} 0 1 order)
  string(TOLOWER ${order} order)
endif()
foreach(locale root ru)
  set(source ${PROJECT_SOURCE_DIR}/core/resources/${locale}.txt)
  set(convert)
  if(CMAKE_CROSSCOMPILING)
    set(convert COMMAND ${ICUPKG} -t${order} ${built_dir}/${locale}.res ${bundle_dir}/${locale}.res)
  endif()
  add_custom_command(OUTPUT ${bundle_dir}/${locale}.res
    COMMAND ${CMAKE_COMMAND} -E make_directory ${bundle_dir} ${built_dir}
    COMMAND ${GENRB} --quiet --encoding UTF-8 --destdir ${built_dir} ${source}
    ${convert}
    DEPENDS ${source} VERBATIM)
  list(APPEND bundles ${bundle_dir}/${locale}.res)
endforeach()
add_custom_target(core_messages ALL DEPENDS ${bundles})
add_dependencies(core core_messages)
install(FILES ${bundles} DESTINATION ${CMAKE_INSTALL_LIBDIR}/core/messages)
