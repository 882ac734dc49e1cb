# SPDX-License-Identifier: Apache-2.0
from checks import tree


def findings():
    return tree.outcome(*tree.run("scripts/build", "clang", "headers_alone"))
