# SPDX-License-Identifier: Apache-2.0
# Message texts: one ICU bundle per language, kept in "core/messages" beside the library, wherever the library is.
find_program(GENRB genrb REQUIRED)
set(bundle_dir ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/core/messages)
foreach(locale root ru)
  set(source ${PROJECT_SOURCE_DIR}/core/resources/${locale}.txt)
  add_custom_command(OUTPUT ${bundle_dir}/${locale}.res
    COMMAND ${CMAKE_COMMAND} -E make_directory ${bundle_dir}
    COMMAND ${GENRB} --quiet --encoding UTF-8 --destdir ${bundle_dir} ${source}
    DEPENDS ${source} VERBATIM)
  list(APPEND bundles ${bundle_dir}/${locale}.res)
endforeach()
add_custom_target(core_messages ALL DEPENDS ${bundles})
add_dependencies(core core_messages)
install(FILES ${bundles} DESTINATION ${CMAKE_INSTALL_LIBDIR}/core/messages)
