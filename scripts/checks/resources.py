# SPDX-License-Identifier: Apache-2.0
import re

from checks import tree

ENTRY = re.compile(r'^\s*((?:IDS|DOC)_\w+)\s*\{\s*"(.*)"\s*\}\s*$')
PLACEHOLDER = re.compile(r"\{(\d+)\}")


def entries(language, found):
    """Id to text, in the order of the file."""
    name = f"core/resources/{language}.txt"
    table = {}
    for number, line in enumerate(tree.text(name).splitlines(), 1):
        match = ENTRY.match(line)
        if not match:
            if "IDS_" in line or "DOC_" in line:
                found.append(f"{name}:{number}: not of the form ID {{ \"text\" }}")
            continue
        key, text = match.groups()
        if key in table:
            found.append(f"{name}:{number}: {key} again")
        if "'" in text:
            found.append(f"{name}:{number}: an apostrophe quotes placeholders; write \u2019")
        # The parameters of New are a list of names.
        if key.startswith("DOC_") and not key.endswith("_New_Parameters") and not re.search(r"[^.]\.$", text):
            found.append(f"{name}:{number}: a sentence ends with a full stop")
        table[key] = text
    if list(table) != sorted(table):
        found.append(f"{name}: keep the entries sorted by id")
    return table


def findings():
    found = []
    english, russian = entries("root", found), entries("ru", found)
    for key in sorted(english.keys() ^ russian.keys()):
        found.append(f"{key} is missing in {'Russian' if key in english else 'English'}")
    for key in sorted(english.keys() & russian.keys()):
        if set(PLACEHOLDER.findall(english[key])) != set(PLACEHOLDER.findall(russian[key])):
            found.append(f"{key} has other placeholders in English than in Russian")

    raised = {}
    for name in tree.sources():
        if name.startswith(("include/", "core/", "host/")):
            for key in re.findall(r'"(IDS_\w+)"', tree.text(name)):
                raised.setdefault(key, name)
    for key in sorted(raised.keys() - english.keys()):
        found.append(f"{key}, raised in {raised[key]}, has no text")
    # What the others explain is known to the live definitions alone, and a test asks those.
    for key in sorted(key for key in english.keys() - raised.keys() if key.startswith("IDS_")):
        found.append(f"{key} has a text but nothing raises it")
    return found
