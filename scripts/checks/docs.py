# SPDX-License-Identifier: Apache-2.0
"""Each public class, function, member, enumeration item, alias and constant has a sentence of its own, as doxygen sees
it with docs/Doxyfile. What no reader misses is passed over: see noise()."""
import re
import tempfile

from checks import tree

FINDING = re.compile(r"^(?P<file>[^:]+):(?P<line>\d+): (?:warning|error): (?P<text>.*)$")
UNDOCUMENTED = re.compile(r"(?:Member|Compound) (?P<name>.*?)(?: \((?P<kind>\w+)\) of .*)? is not documented\.$")
# Doxygen looks for a scope "std" that only the standard library has.
CONFUSED = "Internal inconsistency: scope for class std::"


def noise(name, kind):
    """What the compiler writes, what every class has with one and the same meaning, what registers a class, and what is
    said where the overridden function is declared."""
    word = re.match(r"(operator\W*|~?\w+)", name).group(1).strip()
    return (
        word.startswith("~")
        or re.search(r"\)[^)]*= ?(?:default|delete)$", name) is not None
        # Copies and moves: X(const X &), X(X &&), operator=(const X &), operator=(X &&). What takes another X<U> converts.
        or re.match(r"(\w+)\((?:const )?\1 ?&&? ?\w*\)", name) is not None
        or re.match(r"operator=\((?:const )?(\w+) ?&&? ?\w*\)", name) is not None
        or re.search(r"\boverride$", name) is not None
        or (kind == "friend" and word.startswith("operator"))
        or word in ("IID", "Interfaces")
    )


def findings(rooms=None):
    with tempfile.TemporaryDirectory() as place:
        configuration = tree.text("docs/Doxyfile") + f"\nOUTPUT_DIRECTORY = {place}\n"
        code, output = tree.run("doxygen", "-", given=configuration)
    if code:
        return tree.outcome(code, output)
    found = {}
    for line in output.splitlines():
        match = FINDING.match(tree.relative(line))
        if not match or CONFUSED in line or (rooms is not None and tree.room_of(match["file"]) not in rooms):
            continue
        missing = UNDOCUMENTED.match(match["text"])
        if not missing:
            found[match["file"], int(match["line"]), match["text"]] = None
        elif not noise(missing["name"], missing["kind"]):
            # A member is reported again for each class that inherits it.
            found[match["file"], int(match["line"]), f"{missing['name']} has no sentence of its own"] = None
    return [f"{file}:{line}: {text}" for file, line, text in sorted(found)]
