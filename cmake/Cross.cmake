# SPDX-License-Identifier: Apache-2.0
# For scripts/cross: compiles for another Debian host, CORE_TRIPLET, against that host's packages in CMAKE_SYSROOT. What it built
# runs by the emulator CORE_QEMU, or by itself with that host's loader CORE_LOADER. One clang++ compiles for all of them; their
# linkers are Debian's binutils.
set(CMAKE_SYSTEM_NAME Linux)
string(REGEX MATCH "^[^-]+" CMAKE_SYSTEM_PROCESSOR ${CORE_TRIPLET})
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_CXX_COMPILER_TARGET ${CORE_TRIPLET})
string(REGEX REPLACE "^i686" "i386" CMAKE_LIBRARY_ARCHITECTURE ${CORE_TRIPLET}) # as Debian names its folders
if(CORE_QEMU)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${CORE_QEMU} -L ${CMAKE_SYSROOT})
else()
  set(folders ${CMAKE_SYSROOT}/lib/${CMAKE_LIBRARY_ARCHITECTURE}:${CMAKE_SYSROOT}/usr/lib/${CMAKE_LIBRARY_ARCHITECTURE})
  set(found "-Wl,--disable-new-dtags,-rpath,${folders}")
  set(CMAKE_EXE_LINKER_FLAGS_INIT "-Wl,--dynamic-linker=${CORE_LOADER} ${found}")
  set(CMAKE_SHARED_LINKER_FLAGS_INIT ${found})
  set(CMAKE_MODULE_LINKER_FLAGS_INIT ${found})
endif()
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
foreach(kind LIBRARY INCLUDE PACKAGE)
  set(CMAKE_FIND_ROOT_PATH_MODE_${kind} ONLY)
endforeach()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES CORE_TRIPLET CORE_QEMU CORE_LOADER)
