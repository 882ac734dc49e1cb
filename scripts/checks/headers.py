# SPDX-License-Identifier: Apache-2.0
from checks import tree


def findings():
    found = []
    for preset in ("dev", "clang"):  # each compiler has its own idea of what shadows
        found += tree.outcome(*tree.run("scripts/build", preset, "headers_alone"))
    return found
