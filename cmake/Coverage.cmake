# SPDX-License-Identifier: Apache-2.0
# CORE_COVERAGE: counters in everything that is compiled from here on. Children that tests fork end by _exit, which would
# lose their counts: covered_exit.cpp, linked into the library and into each program, writes them first.
add_compile_options(-O0 --coverage -fprofile-update=atomic)
add_link_options(--coverage)
function(count_in_children)
  target_sources(core PRIVATE ${PROJECT_SOURCE_DIR}/cmake/covered_exit.cpp)
  target_sources(core_host_program INTERFACE ${PROJECT_SOURCE_DIR}/cmake/covered_exit.cpp)
  target_link_libraries(core_host_program INTERFACE ${CMAKE_DL_LIBS})
endfunction()
