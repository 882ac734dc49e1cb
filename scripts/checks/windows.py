# SPDX-License-Identifier: Apache-2.0
import concurrent.futures
import os
import re
import shutil

from checks import tree

COMPILERS = ("x86_64-w64-mingw32-g++-posix", "i686-w64-mingw32-g++-posix")
# What the sources include of other libraries. They are taken from this machine one by one: its other headers are those of
# another system.
LIBRARIES = ("CLI", "boost", "fmt", "nlohmann", "unicode", "xxhash.h")
HEADERS = "/usr/include"
FOLDER = "build/windows/headers"
JOINED = 12
DEFINITIONS = ("FMT_HEADER_ONLY", "NOMINMAX", "UNICODE", "WIN32_LEAN_AND_MEAN", "_WIN32_WINNT=0x0A00",
               "NTDDI_VERSION=0x0A000006")
OWN = ("CORE_BUILDING", "CORE_SCRIPT_BUILDING", 'CORE_VERSION="0"')


def link_headers():
    os.makedirs(FOLDER, exist_ok=True)
    for name in LIBRARIES:
        link = os.path.join(FOLDER, name)
        if not os.path.lexists(link):
            os.symlink(os.path.join(HEADERS, name), link)


def wanted(name):
    return name.startswith(("core/", "host/", "bridges/")) and name.endswith(".cpp") and "/posix/" not in name


def joined():
    """The sources in groups of a folder, which are compiled as one as the build does: most of the time goes into headers."""
    folders = {}
    for name in filter(wanted, tree.sources()):
        folders.setdefault(os.path.dirname(name), []).append(name)
    return [names[i:i + JOINED] for names in map(sorted, folders.values()) for i in range(0, len(names), JOINED)]


def public_headers():
    """As a program of others sees them."""
    return [name for name in tree.sources() if name.startswith("include/") and name.endswith(".h")]


def findings_in(compiler, names, definitions):
    command = [compiler, "-std=c++20", "-fsyntax-only", "-Wall", "-Wextra", "-Wpedantic", "-Wconversion", "-Werror",
               "-Wno-subobject-linkage", "-I", "include", "-I", ".", "-isystem", FOLDER,
               *(f"-D{word}" for word in DEFINITIONS + definitions), "-x", "c++", "-"]
    source = "".join(f'#include "{name}"\n' for name in names)
    code, output = tree.run(*command, given=source)
    return [line for line in output.splitlines() if re.search(r"\b(error|warning):", line)] if code else []


def constants_without_definition():
    """Constants of exported classes that a program may take by reference. Ids are used, and so defined, where they are."""
    sources = "".join(tree.text(name) for name in tree.sources() if name.endswith(".cpp"))
    missing = []
    for name in public_headers():
        holder, seen = "", False
        for line in tree.text(name).splitlines():
            if begin := re.match(r"(class|struct) (?:(CORE_API|CORE_SCRIPT_API) )?(\w+)(?!.*;)", line):
                holder, seen = begin[3] if begin[2] else "", begin[1] == "struct"
            if access := re.match(r"  (public|protected|private):", line):
                seen = access[1] == "public"
            constant = re.match(r"    static constexpr (?!GUID)[\w:]+ (\w+)(?: =|\{)", line)
            if holder and seen and constant and f"{holder}::{constant[1]};" not in sources:
                missing.append(f"{name}: {holder}::{constant[1]} has no definition, so that no library of Windows exports it")
    return missing


def findings():
    compilers = list(filter(shutil.which, COMPILERS))
    if not compilers:
        return constants_without_definition()
    link_headers()
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        groups = [(names, OWN) for names in joined()] + [(public_headers(), ())]
        every = [pool.submit(findings_in, compiler, *group) for group in groups for compiler in compilers]
        return constants_without_definition() + sorted({line for found in every for line in found.result()})
