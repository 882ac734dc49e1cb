# SPDX-License-Identifier: Apache-2.0
import concurrent.futures
import os
import re
import shutil

from checks import tree

COMPILER = "x86_64-w64-mingw32-g++-posix"
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


def findings_in(name):
    command = [COMPILER, "-std=c++20", "-fsyntax-only", "-Wall", "-Wextra", "-Wpedantic", "-Wconversion", "-Werror",
               "-I", "include", "-I", ".", "-isystem", FOLDER, *(f"-D{word}" for word in DEFINITIONS)]
    code, output = tree.run(*command, name)
    return [line for line in output.splitlines() if re.search(r"\b(error|warning):", line)] if code else []


def findings():
    if not shutil.which(COMPILER):
        return []
    link_headers()
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        return [line for found in pool.map(findings_in, filter(wanted, tree.sources())) for line in found]
