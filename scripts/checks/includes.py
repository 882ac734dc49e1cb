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
    "collections": ["context"],
    "objects": ["collections"],
    "documents": ["objects"],
    "descriptions": ["objects"],
    "presentation": ["descriptions"],
    "profiles": ["objects"],
    "tables": ["descriptions"],
    "exchange": ["tables"],
    "reports": ["exchange", "presentation"],
    "storage": ["files"],
    "containers": ["objects", "storage"],
    "host/process": ["dates"],
    "script": ["collections"],
    "host/lists": ["exchange"],
    "host/language": ["objects", "script"],
    "host/library": ["script", "reports", "containers"],
    "host/engine": ["host/language", "host/library", "host/process", "containers", "profiles"],
    "host/terminal": ["script", "reports"],
    "host/commands": ["host/terminal", "host/lists", "host/process", "containers", "profiles"],
    "host": ["host/commands"],
    "bridges/com": ["tables", "host/process"],
    "bridges/com/program": ["bridges/com", "host/commands"],
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
    if parts[0] == "bridges":
        return "/".join(parts[:-1])
    if parts[0] == "host":
        if len(parts) > 2:
            return f"host/{parts[1]}"
        return "host/process" if path.endswith(".h") else "host"
    return parts[1] if parts[0] == "core" and len(parts) > 2 else None


def folder_of(path):
    """The folder of a file or an include, without what tells public from private: "tables/data"."""
    folder = path.removeprefix("include/").removeprefix("core/").rpartition("/")[0]
    if folder == "host":
        return layer_of(path)
    return folder if folder != "core" else ""


def upwards(name, layer, found):
    """Yields what a file includes of ours, as (line, path), and adds to `found` what it should not include."""
    public = name.startswith("include/")
    for number, line in enumerate(tree.text(name).splitlines(), 1):
        match = INCLUDE.match(line)
        if not match:
            continue
        quote, path = match.groups()
        place = f"{name}:{number}: {path}"
        ours = path.startswith(("core/", "host/", "bridges/"))
        if public and not ours and ("/" in path or path.endswith(".h")):
            found.append(f"{place} is not a standard header, and this header is public")
        if public and (quote == '"' or path.startswith("host/")):
            found.append(f"{place} is private, and this header is public")
        if ours and layer is not None:
            target = layer_of(path)
            if target is None:
                found.append(f"{place} is an umbrella for users; include the piece that is needed")
            elif target not in reach(layer):
                found.append(f"{place} lies above the layer {layer}")
            yield number, path


def circles(edges):
    """For each circle of folders one line that walks it. `edges` leads from a folder to those it includes, each with the
    place of one such include."""
    found, settled = [], set()

    def walk(folder, path):
        if folder in path:
            circle = path[path.index(folder):] + [folder]
            found.append("a circle: " + "; ".join(
                f"{a} includes {b} ({edges[a][b]})" for a, b in zip(circle, circle[1:])))
        elif folder not in settled:
            for below in sorted(edges.get(folder, ())):
                walk(below, path + [folder])
            settled.add(folder)

    for folder in sorted(edges):
        walk(folder, [])
    return found


def unreached(umbrella, headers):
    """Yields the public headers of a layer that its umbrella includes neither itself nor through others."""
    ahead, seen = [umbrella], {umbrella}
    while ahead:
        for match in map(INCLUDE.match, tree.text(ahead.pop()).splitlines()):
            name = f"include/{match.group(2)}" if match else None
            if name in headers and name not in seen:
                seen.add(name)
                ahead.append(name)
    folder = umbrella.removesuffix(".h") + "/"
    yield from sorted(name for name in headers if name.startswith(folder) and name not in seen)


def umbrellas():
    headers = {name for name in tree.files(".h") if name.startswith("include/core/")}
    for name in sorted(headers):
        if name.count("/") == 2:
            yield from (f"{name}: does not lead to {header}" for header in unreached(name, headers))


def findings():
    found, used, edges = list(umbrellas()), set(), {}
    for name in tree.sources():
        if not name.startswith(("include/", "core/", "host/", "bridges/")):
            continue
        layer = layer_of(name)
        if layer is not None and layer not in BELOW:
            found.append(f"{name}: no layer is called {layer}; scripts/checks/includes.py lists them")
            continue
        for number, path in upwards(name, layer, found):
            used.add((layer, layer_of(path)))
            here, there = folder_of(name), folder_of(path)
            if here != there:
                edges.setdefault(here, {}).setdefault(there, f"{name}:{number}")
    for layer, below in BELOW.items():
        found += [f"scripts/checks/includes.py: {layer} stands on {other}, which none of its files includes"
                  for other in below if (layer, other) not in used]
    return found + circles(edges)
