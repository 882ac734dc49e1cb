# SPDX-License-Identifier: Apache-2.0
# Boost.Multiprecision is header-only; Intel's decimal library is the variant that takes arguments by value and keeps
# rounding and flags out of globals.
find_library(INTEL_DECIMAL bidgcc000 REQUIRED)
find_library(GMP gmp REQUIRED)
target_link_libraries(bench_decimals PRIVATE ${INTEL_DECIMAL} ${GMP})
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(bench_decimals PRIVATE -Wno-restrict) # GCC 12 is wrong about strings inside Boost
endif()
