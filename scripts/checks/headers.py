# SPDX-License-Identifier: Apache-2.0
from checks import tree


def findings():
    found = []
    for preset, target in (("clang", "headers_alone"), ("release", "headers_together")):
        found += tree.outcome(*tree.run("scripts/build", preset, target))
    return found
