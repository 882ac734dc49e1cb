# SPDX-License-Identifier: Apache-2.0
# Installs the build tree, moves the prefix, looks for paths that would tie it to its first place, and builds and runs
# a consumer there: once found by CMake, once by pkg-config.
set(work ${build}/package_test)
set(prefix ${work}/moved)
file(REMOVE_RECURSE ${work})
set(run COMMAND_ERROR_IS_FATAL ANY)

execute_process(COMMAND ${CMAKE_COMMAND} --install ${build} --prefix ${work}/first OUTPUT_QUIET ${run})
file(RENAME ${work}/first ${prefix})

file(GLOB_RECURSE files LIST_DIRECTORIES false ${prefix}/*)
foreach(place ${work}/first ${build} ${source})
  execute_process(COMMAND grep -lF ${place} ${files} OUTPUT_VARIABLE found)
  if(found)
    message(FATAL_ERROR "these installed files hold the path ${place}:\n${found}")
  endif()
endforeach()

file(READ ${source}/README.md readme)
if(NOT readme MATCHES "```cpp\n([^`]+)```")
  message(FATAL_ERROR "the readme shows no example")
endif()
file(WRITE ${work}/example.cpp "${CMAKE_MATCH_1}")

set(consumer ${CMAKE_CURRENT_LIST_DIR}/consumer)
execute_process(COMMAND ${CMAKE_COMMAND} -G Ninja -S ${consumer} -B ${work}/consumer -D CMAKE_PREFIX_PATH=${prefix}
  -D CMAKE_CXX_COMPILER=${compiler} -D EXAMPLE=${work}/example.cpp OUTPUT_QUIET ${run})
execute_process(COMMAND ${CMAKE_COMMAND} --build ${work}/consumer OUTPUT_QUIET ${run})
execute_process(COMMAND ${work}/consumer/consumer ${run})
execute_process(COMMAND ${work}/consumer/example OUTPUT_VARIABLE total ${run})
if(NOT total STREQUAL "3.55\n")
  message(FATAL_ERROR "the example in the readme wrote ${total}")
endif()

file(GLOB_RECURSE pc ${prefix}/core-host.pc)
cmake_path(GET pc PARENT_PATH pc_dir)
cmake_path(GET pc_dir PARENT_PATH libdir)
execute_process(COMMAND ${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${pc_dir} pkg-config --cflags --libs core-host
  OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE ${run})
separate_arguments(flags UNIX_COMMAND "${flags}")
execute_process(COMMAND ${compiler} ${consumer}/main.cpp -o ${work}/by_pkg_config ${flags} ${run})
execute_process(COMMAND ${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${libdir} ${work}/by_pkg_config ${run})

file(GLOB corehost ${prefix}/bin/corehost)
execute_process(COMMAND ${corehost} --version OUTPUT_QUIET ${run})

include(${CMAKE_CURRENT_LIST_DIR}/modules.cmake)
