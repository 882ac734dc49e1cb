# SPDX-License-Identifier: Apache-2.0
# What every target of this project is compiled with.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
# One place for binaries, so that the library finds its messages beside itself in the build tree as when installed.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

# What differs between systems has a file for each, in folders of these names.
if(WIN32)
  set(CORE_SYSTEM windows)
  set(CORE_OTHER_SYSTEM posix)
  add_compile_options(-Wno-attributes) # there is no visibility to be set
  add_link_options(-Wl,--stack,8388608) # what threads have on Linux; how deep scripts may call depends on it
  add_compile_options(-Wa,-mbig-obj) # sources that are compiled as one have too many sections otherwise
  add_compile_definitions(WIN32_LEAN_AND_MEAN NOMINMAX UNICODE _WIN32_WINNT=0x0A00 NTDDI_VERSION=0x0A000006) # of 2018
else()
  set(CORE_SYSTEM posix)
  set(CORE_OTHER_SYSTEM windows)
endif()

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Wconversion)
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  add_compile_definitions(_FILE_OFFSET_BITS=64 _TIME_BITS=64) # files beyond 2 GiB, times beyond 2038
  include(CheckCXXSymbolExists)
  check_cxx_symbol_exists(__i386__ cstddef CORE_HOST_IS_I386)
  if(CORE_HOST_IS_I386)
    add_compile_options(-msse2 -mfpmath=sse) # the older unit rounds a double twice
  endif()
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  add_compile_options(-Wno-restrict) # sees overlaps in std::string's own operator+ at -O3 that cannot be
endif()
# Calls within the library go straight to their target, and no file that is built tells where it was built.
add_compile_options(-fno-semantic-interposition -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=)
if(CMAKE_SIZEOF_VOID_P EQUAL 8) # binutils refuses what clang makes of thread-local variables so on 32-bit x86
  add_compile_options(-fno-plt)
endif()
add_link_options(-Wl,--as-needed)

# Presets with CMAKE_UNITY_BUILD compile some sources of a folder as one, which is three times as fast from nothing. Names in the
# unnamed namespaces of one folder must differ for that.
if(CMAKE_UNITY_BUILD AND CMAKE_CXX_COMPILER_ID STREQUAL GNU)
  add_compile_options(-Wno-subobject-linkage) # takes the sources for headers
endif()
# core_join_sources(TARGET): says which sources go together, so that a new one concerns those of its folder alone.
function(core_join_sources target)
  get_target_property(sources ${target} SOURCES)
  list(SORT sources)
  foreach(source ${sources})
    cmake_path(GET source PARENT_PATH folder)
    cmake_path(ABSOLUTE_PATH folder)
    cmake_path(RELATIVE_PATH folder BASE_DIRECTORY ${PROJECT_SOURCE_DIR})
    string(MAKE_C_IDENTIFIER ${folder} folder)
    math(EXPR count_${folder} "0${count_${folder}} + 1")
    math(EXPR part "${count_${folder}} / 12")
    set_source_files_properties(${source} PROPERTIES UNITY_GROUP ${folder}_${part})
  endforeach()
  set_target_properties(${target} PROPERTIES UNITY_BUILD_MODE GROUP)
endfunction()

set(CORE_SANITIZE "" CACHE STRING "Sanitizers, as in address,undefined")
if(CORE_SANITIZE)
  add_compile_options(-fsanitize=${CORE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${CORE_SANITIZE})
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    add_compile_options(-Wno-maybe-uninitialized) # loses track of std::regex in instrumented code
  endif()
endif()
if(CORE_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()
