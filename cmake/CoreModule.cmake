# SPDX-License-Identifier: Apache-2.0
# What a project uses that builds modules; find_package(core) brings it.

# core_add_messages(TARGET FOLDER FILE...): message texts, which are one file for each language, root.txt among them. They are
# compiled into the folder, where the module TARGET finds them, whenever it is built.
function(core_add_messages target folder)
  find_program(GENRB genrb DOC "The compiler of message texts, a tool of ICU" REQUIRED)
  set(built ${folder})
  if(CMAKE_CROSSCOMPILING) # genrb writes in the byte order of the machine that it runs on
    find_program(ICUPKG icupkg REQUIRED)
    set(built ${CMAKE_CURRENT_BINARY_DIR}/${target}_messages)
    string(SUBSTRING ${CMAKE_CXX_BYTE_ORDER} 0 1 order)
    string(TOLOWER ${order} order)
  endif()
  foreach(source ${ARGN})
    cmake_path(ABSOLUTE_PATH source)
    cmake_path(GET source STEM locale)
    set(convert)
    if(CMAKE_CROSSCOMPILING)
      set(convert COMMAND ${ICUPKG} -t${order} ${built}/${locale}.res ${folder}/${locale}.res)
    endif()
    add_custom_command(OUTPUT ${folder}/${locale}.res
      COMMAND ${CMAKE_COMMAND} -E make_directory ${folder} ${built}
      COMMAND ${GENRB} --quiet --encoding UTF-8 --destdir ${built} ${source}
      ${convert}
      DEPENDS ${source} VERBATIM)
    list(APPEND bundles ${folder}/${locale}.res)
  endforeach()
  add_custom_target(${target}_messages ALL DEPENDS ${bundles})
  add_dependencies(${target} ${target}_messages)
endfunction()

# core_add_module(NAME SOURCES FILE... [MESSAGES FILE...] [FOLDER DIR] [DESTINATION DIR]): a shared library that
# declares itself as the module NAME by CORE_MODULE. It is built in FOLDER, by default the folder of the project's binaries,
# with its messages in "NAME/messages" beside it. With a DESTINATION both are installed there.
function(core_add_module name)
  cmake_parse_arguments(PARSE_ARGV 1 module "" "FOLDER;DESTINATION" "SOURCES;MESSAGES")
  if(NOT module_SOURCES OR module_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "core_add_module(${name}): give SOURCES, and nothing else than MESSAGES, FOLDER and DESTINATION")
  endif()
  if(NOT module_FOLDER)
    set(module_FOLDER ${CMAKE_CURRENT_BINARY_DIR})
  endif()
  add_library(${name} MODULE ${module_SOURCES})
  set_target_properties(${name} PROPERTIES PREFIX lib LIBRARY_OUTPUT_DIRECTORY ${module_FOLDER})
  if(NOT DEFINED CMAKE_CXX_VISIBILITY_PRESET)
    set_target_properties(${name} PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  endif()
  target_link_libraries(${name} PRIVATE core::core)
  # Functions are found when they are first called. A module for a later version of the library, whose functions are not here,
  # can then still be opened and asked for its version.
  target_compile_options(${name} PRIVATE -fplt)
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    # The system never unmaps a library with symbols that are unique in the program, and static variables of inline functions
    # are such symbols, also those of the standard library.
    target_compile_options(${name} PRIVATE -fno-gnu-unique)
  endif()
  if(module_MESSAGES)
    core_add_messages(${name} ${module_FOLDER}/${name}/messages ${module_MESSAGES})
  endif()
  if(module_DESTINATION)
    install(TARGETS ${name} LIBRARY DESTINATION ${module_DESTINATION})
    if(module_MESSAGES)
      install(DIRECTORY ${module_FOLDER}/${name}/messages DESTINATION ${module_DESTINATION}/${name})
    endif()
  endif()
endfunction()
