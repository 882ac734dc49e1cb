# SPDX-License-Identifier: Apache-2.0
"""The exported symbols, down to the class or the free function: parameters and members are the headers' business, but a
name that appears or goes is a decision. "scripts/exports" writes the list again."""
import difflib
import re

from checks import tree

LIST = "scripts/exports.txt"
LIBRARY = "build/release/lib/libcore.so"


def without_brackets(name):
    """Drops template arguments, parameters and anything else in brackets."""
    name = re.sub(r"operator(?:<=>|<<|>>|<=|>=|->|<|>|\(\))", "operator", name)
    kept, depth = [], 0
    for letter in name:
        if letter in "<([{":
            depth += 1
        if depth == 0:
            kept.append(letter)
        if letter in ">)]}":
            depth -= 1
    return "".join(kept)


def short(symbol):
    """core::Numeric::add(int) const -> core::Numeric; core::from_utf8(...) -> core::from_utf8"""
    symbol = re.sub(r"^(?:vtable|VTT|typeinfo name|typeinfo|guard variable|TLS init function|TLS wrapper function|"
                    r"(?:non-)?virtual thunk|construction vtable) (?:for|to) ", "", symbol)
    # A function template's symbol begins with its return type; the name is the last word before the parameters.
    name = without_brackets(re.sub(r"\[abi:\w+\]", "", symbol)).removesuffix(" const").strip()
    name = name.split(" ")[-1] if "operator" not in name else name
    parts = name.split("::")
    for index, part in enumerate(parts):
        if part[:1].isupper():
            return "::".join(parts[: index + 1])
    return name


def exported():
    code, output = tree.run("scripts/build", "release", "core")
    if code:
        raise SystemExit(output)
    lines = tree.run("nm", "--dynamic", "--defined-only", "--demangle", LIBRARY)[1].splitlines()
    # Weak symbols of the standard library's own templates, and of types that have no name of ours, are in every C++ object.
    symbols = [line.split(" ", 2)[2] for line in lines if line.count(" ") >= 2]
    names = {short(symbol) for symbol in symbols if "core::" in symbol or not symbol.startswith("typeinfo")}
    return sorted(name for name in names if not name.startswith(("std::", "__gnu_cxx::", "operator")))


def findings():
    listed = tree.text(LIST).splitlines()
    changes = [line for line in difflib.ndiff(listed, exported()) if line[0] in "+-"]
    return changes and changes + ["review these; then write the list again with scripts/exports"]
