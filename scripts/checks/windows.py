# SPDX-License-Identifier: Apache-2.0
import os
import re
import shutil

from checks import tree

COMPILER = "x86_64-w64-mingw32-g++-posix"
# What the sources include of other libraries. They are taken from this machine one by one: its other headers are those of
# another system.
LIBRARIES = ("CLI", "boost", "fmt", "nlohmann", "unicode", "xxhash.h")
HEADERS = "/usr/include"
DEFINITIONS = ("CORE_BUILDING", "CORE_SCRIPT_BUILDING", 'CORE_VERSION="0"', "FMT_HEADER_ONLY", "NOMINMAX", "UNICODE",
               "WIN32_LEAN_AND_MEAN", "_WIN32_WINNT=0x0A00", "NTDDI_VERSION=0x0A000006")


def linked_headers(folder):
    os.makedirs(folder, exist_ok=True)
    for name in LIBRARIES:
        link = os.path.join(folder, name)
        if not os.path.lexists(link):
            os.symlink(os.path.join(HEADERS, name), link)
    return folder


def wanted(name):
    return name.startswith(("core/", "host/")) and name.endswith(".cpp") and "/posix/" not in name


def findings():
    if not shutil.which(COMPILER):
        return []
    folder = linked_headers("build/windows/headers")
    command = [COMPILER, "-std=c++20", "-fsyntax-only", "-Wall", "-Wextra", "-Wpedantic", "-Wconversion", "-Werror",
               "-I", "include", "-I", ".", "-isystem", folder, *(f"-D{name}" for name in DEFINITIONS)]
    found = []
    for name in filter(wanted, tree.sources()):
        code, output = tree.run(*command, name)
        found += [line for line in output.splitlines() if re.search(r"\b(error|warning):", line)] if code else []
    return found
