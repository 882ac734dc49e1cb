# SPDX-License-Identifier: Apache-2.0
from checks import tree


def findings():
    code, output = tree.run("clang-format", "--dry-run", "--Werror", *tree.sources())
    badly_set = sorted({line.split(":")[0] for line in output.splitlines() if ": error: " in line})
    return [f"{name}: run clang-format -i on it" for name in badly_set] or tree.outcome(code, output)
