# SPDX-License-Identifier: Apache-2.0
"""An id stands for one class, interface or type for ever, so it is written at one place in the sources."""
import re

from checks import tree

ID = re.compile(r'"([0-9A-Fa-f]{8}-(?:[0-9A-Fa-f]{4}-){3}[0-9A-Fa-f]{12})"')


def findings():
    places = {}
    for name in tree.sources():
        if name.startswith(("include/", "core/", "host/")):
            for number, line in enumerate(tree.text(name).splitlines(), 1):
                for match in ID.finditer(line.split("//")[0]):
                    places.setdefault(match.group(1).lower(), []).append(f"{name}:{number}")
    return [f"{written[0]}: the id {id} is also at {', '.join(written[1:])}"
            for id, written in sorted(places.items()) if len(written) > 1]
