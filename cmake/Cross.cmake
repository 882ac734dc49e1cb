# SPDX-License-Identifier: Apache-2.0
# For scripts/cross: compiles for another Debian host, CORE_TRIPLET, against that host's packages in CMAKE_SYSROOT, and runs
# what it built by the emulator CORE_QEMU. One clang++ compiles for all of them; their linkers are Debian's binutils.
set(CMAKE_SYSTEM_NAME Linux)
string(REGEX MATCH "^[^-]+" CMAKE_SYSTEM_PROCESSOR ${CORE_TRIPLET})
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_CXX_COMPILER_TARGET ${CORE_TRIPLET})
string(REGEX REPLACE "^i686" "i386" CMAKE_LIBRARY_ARCHITECTURE ${CORE_TRIPLET}) # as Debian names its folders
set(CMAKE_CROSSCOMPILING_EMULATOR ${CORE_QEMU} -L ${CMAKE_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
foreach(kind LIBRARY INCLUDE PACKAGE)
  set(CMAKE_FIND_ROOT_PATH_MODE_${kind} ONLY)
endforeach()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES CORE_TRIPLET CORE_QEMU)
