# SPDX-License-Identifier: Apache-2.0
# Installs the build tree, moves the prefix, looks for paths that would tie it to its first place, and builds and runs
# a consumer there: once found by CMake, once by pkg-config.
cmake_policy(VERSION 3.25)
set(work ${build}/package_test)
set(prefix ${work}/moved)
file(REMOVE_RECURSE ${work})
set(run COMMAND_ERROR_IS_FATAL ANY)
set(ENV{XDG_CONFIG_HOME} /nonexistent) # the settings of the person who runs this do not count
set(ENV{XDG_CONFIG_DIRS} /nonexistent)

execute_process(COMMAND ${CMAKE_COMMAND} --install ${build} --prefix ${work}/first OUTPUT_QUIET ${run})
file(RENAME ${work}/first ${prefix})

file(GLOB_RECURSE files LIST_DIRECTORIES false ${prefix}/*)
foreach(place ${work}/first ${build} ${source})
  execute_process(COMMAND grep -lF ${place} ${files} OUTPUT_VARIABLE found)
  if(found)
    message(FATAL_ERROR "these installed files hold the path ${place}:\n${found}")
  endif()
endforeach()

# The programs that pages show, each followed by a block with what it writes.
set(programs)
function(cut_programs page name)
  file(READ ${source}/${page} text)
  set(count 0)
  while(TRUE)
    string(FIND "${text}" "```cpp\n" begin)
    if(begin EQUAL -1)
      break()
    endif()
    math(EXPR begin "${begin} + 7")
    string(SUBSTRING "${text}" ${begin} -1 text)
    string(FIND "${text}" "```" end)
    string(SUBSTRING "${text}" 0 ${end} code)
    string(FIND "${text}" "```text\n" begin)
    math(EXPR begin "${begin} + 8")
    string(SUBSTRING "${text}" ${begin} -1 text)
    string(FIND "${text}" "```" end)
    string(SUBSTRING "${text}" 0 ${end} written)
    file(WRITE ${work}/programs/${name}_${count}.cpp "${code}")
    set(${name}_${count} "${written}" PARENT_SCOPE)
    list(APPEND programs ${name}_${count})
    math(EXPR count "${count} + 1")
  endwhile()
  if(count EQUAL 0)
    message(FATAL_ERROR "${page} shows no program")
  endif()
  set(programs ${programs} PARENT_SCOPE)
endfunction()
cut_programs(README.md readme)
cut_programs(docs/embedding.md embedding)
cut_programs(docs/containers.md containers)
cut_programs(docs/tables-cpp.md tables)
file(READ ${source}/docs/tables-cpp.md page)
string(REGEX MATCH "```csv\n(Region[^`]*)```" page "${page}")
file(WRITE ${work}/programs/sales.csv "${CMAKE_MATCH_1}")

set(consumer ${CMAKE_CURRENT_LIST_DIR}/consumer)
execute_process(COMMAND ${CMAKE_COMMAND} -G Ninja -S ${consumer} -B ${work}/consumer -D CMAKE_PREFIX_PATH=${prefix}
  -D CMAKE_CXX_COMPILER=${compiler} -D PROGRAMS=${work}/programs OUTPUT_QUIET ${run})
execute_process(COMMAND ${CMAKE_COMMAND} --build ${work}/consumer OUTPUT_QUIET ${run})
execute_process(COMMAND ${work}/consumer/consumer ${run})
foreach(program ${programs})
  execute_process(COMMAND ${work}/consumer/${program} OUTPUT_VARIABLE written ERROR_QUIET ${run}
    WORKING_DIRECTORY ${work}/programs)
  if(NOT written STREQUAL ${program})
    message(FATAL_ERROR "the program ${program} of the pages wrote\n${written}")
  endif()
endforeach()

file(GLOB_RECURSE pc ${prefix}/core-host.pc)
cmake_path(GET pc PARENT_PATH pc_dir)
cmake_path(GET pc_dir PARENT_PATH libdir)
execute_process(COMMAND ${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${pc_dir} pkg-config --cflags --libs core-host
  OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE ${run})
separate_arguments(flags UNIX_COMMAND "${flags}")
execute_process(COMMAND ${compiler} ${consumer}/main.cpp -o ${work}/by_pkg_config ${flags} ${run})
execute_process(COMMAND ${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${libdir} ${work}/by_pkg_config ${run})

execute_process(COMMAND ${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${pc_dir} pkg-config --cflags --libs core-script
  OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE ${run})
separate_arguments(flags UNIX_COMMAND "${flags}")
execute_process(COMMAND ${compiler} ${work}/programs/embedding_0.cpp -o ${work}/script_by_pkg_config ${flags} ${run})
execute_process(COMMAND ${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${libdir} ${work}/script_by_pkg_config
  OUTPUT_QUIET ERROR_QUIET ${run})

file(GLOB corehost ${prefix}/bin/corehost)
execute_process(COMMAND ${corehost} --version OUTPUT_QUIET ${run})

include(${CMAKE_CURRENT_LIST_DIR}/modules.cmake)
