# SPDX-License-Identifier: Apache-2.0
"""The survivors that are explained, in docs/survivors.txt. An entry is

    core/numbers/limbs.cpp
    - if (count < kSmall)
    + if (count <= kSmall)
    Both algorithms give the same product; the limit is only a matter of speed.

with an empty line behind it. Lines that begin with # are for the reader."""
import os

FILE = "docs/survivors.txt"


def explained(root):
    """The set of (file, old line, new line); a malformed entry raises ValueError."""
    path = os.path.join(root, FILE)
    if not os.path.exists(path):
        return set()
    with open(path, encoding="utf-8") as file:
        text = "\n".join(line for line in file.read().splitlines() if not line.startswith("#"))
    found = set()
    for entry in filter(None, (part.strip("\n") for part in text.split("\n\n"))):
        lines = entry.splitlines()
        if len(lines) < 4 or not lines[1].startswith("- ") or not lines[2].startswith("+ "):
            raise ValueError(f"{FILE}: an entry is a file, a line with -, a line with + and a reason, not: {lines[0]}")
        found.add((lines[0], lines[1][2:], lines[2][2:]))
    return found


def stale(root, entries):
    """The entries whose line is in their file no more."""
    gone = []
    for file, old, _ in sorted(entries):
        path = os.path.join(root, file)
        if not os.path.exists(path):
            gone.append((file, old))
            continue
        with open(path, encoding="utf-8") as source:
            if old not in " ".join(source.read().split()):
                gone.append((file, old))
    return gone
