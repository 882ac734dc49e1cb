# SPDX-License-Identifier: Apache-2.0
# Included by package_test.cmake: builds the module and the program of docs/modules.md, and the example module, against the
# installed library, and runs what they say.
file(READ ${source}/docs/modules.md page)
set(adder ${work}/adder)

# Writes the block of the page that begins with a text.
function(cut begin file)
  string(FIND "${page}" "${begin}" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "docs/modules.md has no block that begins with ${begin}")
  endif()
  string(SUBSTRING "${page}" ${at} -1 rest)
  string(FIND "${rest}" "\n```" end)
  string(SUBSTRING "${rest}" 0 ${end} block)
  file(WRITE ${adder}/${file} "${block}\n")
endfunction()
set(licence "// SPDX-License-Identifier: Apache-2.0\n#include <core/context.h>\n")
cut("${licence}#include <core/numbers.h>" adder.cpp)
cut("${licence}#include <core/runtime/utf8.h>" loader.cpp)
cut("root {" root.txt)
cut("ru {" ru.txt)
cut("A = Новый" add.script)
cut("cmake_minimum_required" CMakeLists.txt)
file(APPEND ${adder}/CMakeLists.txt "add_executable(loader loader.cpp)\ntarget_link_libraries(loader PRIVATE core::core core::host)\n")

foreach(project ${adder} ${source}/examples/module)
  cmake_path(GET project FILENAME name)
  execute_process(COMMAND ${CMAKE_COMMAND} -G Ninja -S ${project} -B ${work}/${name}-build -D CMAKE_PREFIX_PATH=${prefix}
    -D CMAKE_CXX_COMPILER=${compiler} OUTPUT_QUIET ${run})
  execute_process(COMMAND ${CMAKE_COMMAND} --build ${work}/${name}-build OUTPUT_QUIET ${run})
endforeach()

# Fails unless a command writes a text.
function(expect expected)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE written ${run})
  if(NOT written STREQUAL expected)
    message(FATAL_ERROR "${ARGN} wrote\n${written}")
  endif()
endfunction()
set(host ${prefix}/bin/corehost --lang en)
expect("3.5\n" ${host} --module ${work}/adder-build/libadder.so run ${adder}/add.script)
expect("Nothing below 0 can be added: -1.\nIDS_MODULE_IN_USE\n" ${work}/adder-build/loader ${work}/adder-build/libadder.so)
expect("3.5\n3 Downwards\n" ${host} --module ${work}/module-build/libcounter.so run ${source}/examples/module/count.script)
