# SPDX-License-Identifier: Apache-2.0
# headers_alone: each public header as the only thing a source includes, twice. Built by scripts/lint.
file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/include/*.h)
set(sources)
foreach(header ${headers})
  string(MAKE_C_IDENTIFIER ${header} name)
  set(source ${PROJECT_BINARY_DIR}/headers_alone/${name}.cpp)
  file(CONFIGURE OUTPUT ${source} CONTENT "#include <@header@>\n#include <@header@>\n" @ONLY)
  list(APPEND sources ${source})
endforeach()
add_library(headers_alone OBJECT EXCLUDE_FROM_ALL ${sources})
target_include_directories(headers_alone PRIVATE ${PROJECT_SOURCE_DIR}/include)
target_compile_options(headers_alone PRIVATE -Wshadow)
