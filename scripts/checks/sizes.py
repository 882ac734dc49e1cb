# SPDX-License-Identifier: Apache-2.0
"""What no longer fits on a few screens hides more than one idea. A function is counted from the first line of its
declaration to its closing brace."""
from checks import tree
from mutation.tokens import tokens_of

HEADER, FUNCTION, FILE = 300, 60, 500  # lines
BEFORE_BODY = {"const", "noexcept", "override", "final", "try", "mutable"}


def functions(source):
    """The functions of a source, each as (name, first line, last line)."""
    tokens = tokens_of(source)
    start = index = 0
    while index < len(tokens):
        token = tokens[index]
        if token.text in (";", "}") or (token.text == ":" and tokens[index - 1].text in ("public", "protected", "private")):
            start = index + 1
        elif token.text in ("(", "["):
            index = max(index, token.partner)
        elif token.text == "{":
            kind, name = _opened(tokens, start, index)
            if kind == "function":
                yield name, tokens[start].line, tokens[token.partner].line
            if kind == "scope":
                start = index + 1
            else:
                index = max(index, token.partner)
                start = index + 1 if kind == "function" else start
        index += 1


def _opened(tokens, start, brace):
    """What a brace opens outside of functions: a scope with declarations, a function, or values; and its name."""
    level, index = [], start
    while index < brace:
        level.append(index)
        index = tokens[index].partner + 1 if tokens[index].partner > index else index + 1
    words = [tokens[i].text for i in level]
    calls = [i for i in level if tokens[i].text == "(" and tokens[i - 1].text not in ("alignas", "noexcept", "requires")]
    if "namespace" in words or "extern" in words and not calls:
        return "scope", ""
    if not calls:
        types = {"class", "struct", "union"} & set(words)
        return ("scope" if types and "enum" not in words and "=" not in words else "values"), ""
    assigned = [i for i in level if tokens[i].text == "=" and tokens[i - 1].text != "operator"]
    if assigned and assigned[0] < calls[0]:
        return "values", ""
    before = tokens[brace - 1]
    if before.kind == "word" and before.text not in BEFORE_BODY and "->" not in words:
        return "values", ""  # a member in the list of a constructor
    return "function", tokens[calls[0] - 1].text


def findings(rooms=None):
    found = []
    for name in tree.sources():
        if rooms is not None and tree.room_of(name) not in rooms:
            continue
        source = tree.text(name)
        lines = source.count("\n")
        limit = HEADER if name.startswith("include/") else FILE
        if lines > limit:
            found.append(f"{name}:1: {lines} lines; at most {limit}")
        for function, first, last in functions(source):
            if last - first + 1 > FUNCTION:
                found.append(f"{name}:{first}: {function} has {last - first + 1} lines; at most {FUNCTION}")
    return found
