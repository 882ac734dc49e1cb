# SPDX-License-Identifier: Apache-2.0
"""Comments, pages and messages are in plain English: each turn below has a plainer form. What stands between backquotes is
code and is passed over, except in messages."""
import bisect
import re

from checks import tree

# A turn, and what is said instead.
TURNS = {
    r"for want of": "without, because there is no",
    r"but for": "except for, without",
    r"anew": "again",
    r"as (?:it|they) stands? here": "leave it out",
    r"who(?:so|m)?ever": "a caller that, a program that",
    r"lest": "so that … not",
    r"(?:there|here|where)(?:of|to|by|upon|in(?!g))": "name the thing",
    r"hence": "so, therefore",
    r"(?:what|that|which) (?:is|are|was|were) no(?! longer\b| more\b)": "that is not a",
    r"(?<!there )(?:is|are|was|were) no(?! longer\b| more\b)(?! the\b)(?: \w+)": "is not a, means no",
    r"(?:is|are) none of (?:them|these|those)": "is something else",
    r"(?:every|all|any|none|each|nobody|nothing|anything|everything|anybody)(?: [^ .,;:()]+){0,2} but": "except, only",
    r"be (?:it|they) \w+ed": "even if, whether",
}
TURN = re.compile(r"\b(?:" + "|".join(f"(?P<t{number}>{turn})" for number, turn in enumerate(TURNS)) + r")\b", re.IGNORECASE)
PLAIN = list(TURNS.values())

# The prose of a line, by the kind of its file.
COMMENT = re.compile(r"(?:^|[^:\"'/])//[/!<]*\s?(.*)$")
HASH = re.compile(r"^\s*#(?!!)\s?(.*)$")
MESSAGE = re.compile(r'\{ "(.*)" \}')


def prose(name):
    """The lines of prose of a file: (number, text)."""
    lines = tree.text(name).splitlines()
    if name.endswith((".h", ".cpp")):
        pattern = COMMENT
    elif name.endswith("core/resources/root.txt"):
        pattern = MESSAGE
    elif name.endswith(".md") or name == "docs/survivors.txt":
        return [(number, line) for number, line in code_left_out(lines) if not line.startswith(("- if ", "+ if "))]
    else:
        pattern = HASH
    found = ((number, pattern.search(line)) for number, line in enumerate(lines, 1))
    return [(number, match.group(1)) for number, match in found if match]


def code_left_out(lines):
    fenced = False
    for number, line in enumerate(lines, 1):
        if line.startswith("```"):
            fenced = not fenced
        elif not fenced:
            yield number, line


def findings():
    found = []
    for name in tree.files(".h", ".cpp", ".md", ".txt", ".cmake", ".py") + tree.files("scripts/build"):
        if name.startswith(("fuzz/corpus/", "scripts/checks/words.py")) or \
                (name.endswith(".txt") and name.split("/")[-1] not in ("CMakeLists.txt", "root.txt", "survivors.txt")):
            continue
        # Lines that follow each other are one text, since a turn may be broken between them.
        text, starts, numbers, latest = "", [], [], None
        for number, line in prose(name):
            line = re.sub(r"`[^`]*`", "`", line).strip()
            text += " " if latest == number - 1 else "\n\n"
            starts.append(len(text))
            numbers.append(number)
            text += line
            latest = number
        for match in TURN.finditer(text):
            number = numbers[bisect.bisect_right(starts, match.start()) - 1]
            found.append(f"{name}:{number}: “{match.group()}”: better “{PLAIN[int(match.lastgroup[1:])]}”")
    return found
