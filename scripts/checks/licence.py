# SPDX-License-Identifier: Apache-2.0
from checks import tree

LINE = "SPDX-License-Identifier: Apache-2.0"


def findings():
    scripts = [name for name in tree.files() if name.startswith("scripts/") and "." not in name]
    wanted = [name for name in tree.files(".h", ".cpp", ".cmake", ".py", "CMakeLists.txt", ".script") if "/corpus/" not in name]
    wanted += scripts + ["run", "test", ".ci/run"]
    return [name for name in wanted if LINE not in "".join(tree.text(name).splitlines()[:2])]
