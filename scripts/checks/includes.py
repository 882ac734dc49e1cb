# SPDX-License-Identifier: Apache-2.0
import re

from checks import tree

# The layers next below each layer; what those stand on is allowed too.
BELOW = {
    "runtime": [],
    "strings": ["runtime"],
    "numbers": ["runtime"],
    "dates": ["strings"],
    "locales": ["numbers", "dates"],
    "files": ["dates"],
    "streams": ["files"],
    "lists": ["numbers", "streams"],
    "persistence": ["lists"],
    "values": ["persistence", "locales"],
    "types": ["values"],
    "context": ["types"],
    "objects": ["context"],
    "descriptions": ["objects"],
    "collections": ["objects"],
    "tables": ["collections", "descriptions"],
    "storage": ["files"],
    "host": ["tables", "storage"],
}
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')


def reach(layer):
    found = {layer}
    for below in BELOW[layer]:
        found |= reach(below)
    return found


def layer_of(path):
    """The layer of a file or an include; None for an umbrella header and for what is not ours."""
    parts = path.removeprefix("include/").split("/")
    if parts[0] == "host":
        return "host"
    return parts[1] if parts[0] == "core" and len(parts) > 2 else None


def findings():
    found = []
    for name in tree.sources():
        if not name.startswith(("include/", "core/", "host/")):
            continue
        public = name.startswith("include/")
        layer = layer_of(name)
        if layer is not None and layer not in BELOW:
            found.append(f"{name}: no layer is called {layer}; scripts/checks/includes.py lists them")
            continue
        for number, line in enumerate(tree.text(name).splitlines(), 1):
            match = INCLUDE.match(line)
            if not match:
                continue
            quote, path = match.groups()
            place = f"{name}:{number}: {path}"
            ours = path.startswith(("core/", "host/"))
            if public and not ours and ("/" in path or path.endswith(".h")):
                found.append(f"{place} is no standard header, and this header is public")
            if public and (quote == '"' or path.startswith("host/")):
                found.append(f"{place} is private, and this header is public")
            if ours and layer is not None:
                target = layer_of(path)
                if target is None:
                    found.append(f"{place} is an umbrella for users; include the piece that is needed")
                elif target not in reach(layer):
                    found.append(f"{place} lies above the layer {layer}")
    return found
