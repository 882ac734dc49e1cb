# SPDX-License-Identifier: Apache-2.0
import concurrent.futures
import itertools
import os
import re
import shutil

from checks import tree

# For hosts of 64 bits, and of 32.
COMPILERS = {"x86_64-w64-mingw32-g++-posix": [],
             "i686-w64-mingw32-g++-posix": ["-msse2", "-mfpmath=sse", "-D_FILE_OFFSET_BITS=64"]}
# What the sources include of other libraries. They are taken from this machine one by one: its other headers are those of
# another system.
LIBRARIES = ("CLI", "boost", "fmt", "nlohmann", "unicode", "xxhash.h")
HEADERS = "/usr/include"
FOLDER = "build/windows/headers"
DEFINITIONS = ("CORE_BUILDING", "CORE_SCRIPT_BUILDING", 'CORE_VERSION="0"', "FMT_HEADER_ONLY", "NOMINMAX", "UNICODE",
               "WIN32_LEAN_AND_MEAN", "_WIN32_WINNT=0x0A00", "NTDDI_VERSION=0x0A000006")


def link_headers():
    os.makedirs(FOLDER, exist_ok=True)
    for name in LIBRARIES:
        link = os.path.join(FOLDER, name)
        if not os.path.lexists(link):
            os.symlink(os.path.join(HEADERS, name), link)


def wanted(name):
    return name.startswith(("core/", "host/")) and name.endswith(".cpp") and "/posix/" not in name


def findings_in(compiler, name):
    command = [compiler, *COMPILERS[compiler], "-std=c++20", "-fsyntax-only", "-Wall", "-Wextra", "-Wpedantic",
               "-Wconversion", "-Werror", "-I", "include", "-I", ".", "-isystem", FOLDER, *(f"-D{word}" for word in DEFINITIONS)]
    code, output = tree.run(*command, name)
    return [line for line in output.splitlines() if re.search(r"\b(error|warning):", line)] if code else []


def findings():
    compilers = list(filter(shutil.which, COMPILERS))
    if not compilers:
        return []
    link_headers()
    work = list(itertools.product(compilers, filter(wanted, tree.sources())))
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        return [line for found in pool.map(lambda one: findings_in(*one), work) for line in found]
