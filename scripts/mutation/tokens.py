# SPDX-License-Identifier: Apache-2.0
"""C++ text as tokens, as far as planting changes needs it: what is code, which brackets belong together, and which of
the signs < > * & + - stand between two operands. The project's sources are set by clang-format, so the blanks around a
sign tell an operator from a bracket or a declarator."""
import re
from dataclasses import dataclass

TOKEN = re.compile(
    r"""
    (?P<blank>\s+)
  | (?P<comment>//[^\n]*|/\*.*?\*/)
  | (?P<directive>\#(?:\\\n|[^\n])*)
  | (?P<text>(?:u8|[uUL])?(?:R"(?P<mark>[^()\\\s]*)\(.*?\)(?P=mark)"|"(?:\\.|[^"\\\n])*")\w*
            |(?:u8|[uUL])?'(?:\\.|[^'\\\n])+')
  | (?P<number>\.?\d(?:[eEpP][+-]|['\w.])*)
  | (?P<word>[^\W\d]\w*)
  | (?P<sign><=>|<<=|>>=|\.\.\.|->\*|::|->|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|.)
    """,
    re.VERBOSE | re.DOTALL,
)
OPENING = {"(": ")", "[": "]", "{": "}"}


@dataclass
class Token:
    kind: str  # text, number, word or sign
    text: str
    start: int  # offset in the file
    line: int
    before: bool = False  # white space on this side
    after: bool = False
    partner: int = -1  # index of the bracket that belongs to this one

    @property
    def end(self):
        return self.start + len(self.text)

    @property
    def spaced(self):
        return self.before and self.after


def tokens_of(source):
    """The tokens, without white space, comments and directives."""
    found, line, blank = [], 1, False
    for match in TOKEN.finditer(source):
        kind, text = match.lastgroup, match.group()
        if kind == "mark":
            kind = "text"
        if kind in ("blank", "comment", "directive"):
            blank = True
            if found:
                found[-1].after = True
        else:
            found.append(Token(kind, text, match.start(), line, before=blank))
            blank = False
        line += text.count("\n")
    _pair(found)
    return found


def _pair(tokens):
    waiting = []
    for index, token in enumerate(tokens):
        if token.kind != "sign":
            continue
        if token.text in OPENING:
            waiting.append(index)
        elif token.text in OPENING.values() and waiting:
            partner = waiting.pop()
            token.partner, tokens[partner].partner = partner, index


def closing_angle(tokens, index):
    """The index of the bracket that closes the list of template arguments opened at `index`; None when it is none."""
    depth = 0
    while index < len(tokens):
        token = tokens[index]
        if token.kind == "sign" and not token.spaced:
            if token.text == "<":
                depth += 1
            elif token.text in (">", ">>") and depth:
                depth -= len(token.text)
                if depth <= 0:
                    return index
        if token.kind == "sign" and token.text in OPENING and token.partner > index:
            index = token.partner
        elif token.text in (";", "}", ")", "]"):
            return None
        index += 1
    return None
