# SPDX-License-Identifier: Apache-2.0
"""The changes that can be planted in a source: an operator becomes another, a constant its neighbour, a condition holds
always or never, a statement goes, a function returns nothing of its result. Left alone is what no test can see by its
nature (attributes, assertions, reserved capacity) and what only compiles or does not (types, template arguments)."""
import re
from dataclasses import dataclass

from mutation.tokens import closing_angle, tokens_of

OPERATORS = {
    "<": ["<=", ">"], "<=": ["<", ">"], ">": [">=", "<"], ">=": [">", "<"], "==": ["!="], "!=": ["=="],
    "&&": ["||"], "||": ["&&"], "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"], "&": ["|"], "|": ["&"],
    "^": ["|"], "<<": [">>"], ">>": ["<<"], "+=": ["-="], "-=": ["+="], "*=": ["/="], "/=": ["*="], "%=": ["*="],
    "|=": ["&="], "&=": ["|="], "^=": ["|="], "<<=": [">>="], ">>=": ["<<="],
}
ASSIGNMENTS = {"=", "+=", "-=", "*=", "/=", "%=", "|=", "&=", "^=", "<<=", ">>="}
# What stands in the parentheses after these is not what the program does.
UNSEEN = {"static_assert", "assert", "noexcept", "alignas", "alignof", "decltype", "sizeof", "requires", "reserve",
          "shrink_to_fit"}
DECLARES = {"using", "typedef", "enum", "template", "friend", "static_assert", "concept", "namespace"}
# Words that an expression statement never begins with.
NO_EXPRESSION = DECLARES | {
    "return", "if", "else", "for", "while", "do", "switch", "case", "default", "break", "continue", "goto", "try",
    "catch", "class", "struct", "union", "public", "protected", "private", "const", "constexpr", "constinit", "auto",
    "static", "extern", "inline", "virtual", "explicit", "delete", "thread_local", "co_return", "assert",
}
# A statement that only makes later work cheaper.
FOR_SPEED = re.compile(r"(?:\.|->|::|\b)(?:reserve|shrink_to_fit|prefetch|__builtin_prefetch)\(")


@dataclass(frozen=True)
class Change:
    file: str
    line: int
    start: int  # offset of what goes
    end: int
    instead: str
    old: str  # the changed lines, on one
    new: str

    def applied(self, source):
        return source[: self.start] + self.instead + source[self.end :]


def changes_of(file, source):
    """Every change of a source, in the order of the file."""
    found, seen = [], set()
    for line, start, end, instead in sorted(_Finder(tokens_of(source), source).all()):
        if (start, end, instead) in seen:
            continue
        seen.add((start, end, instead))
        first = source.rfind("\n", 0, start) + 1
        last = source.find("\n", end)
        last = len(source) if last < 0 else last
        old = source[first:last]
        new = source[first:start] + instead + source[end:last]
        found.append(Change(file, line, start, end, instead, " ".join(old.split()), " ".join(new.split())))
    return found


class _Finder:
    def __init__(self, tokens, source):
        self.tokens = tokens
        self.source = source
        self.frozen = self._frozen()

    def all(self):
        for index, token in enumerate(self.tokens):
            if index in self.frozen:
                continue
            if token.kind == "sign":
                yield from self._operator(index, token)
            elif token.kind == "number":
                yield from self._number(index, token)
            elif token.text in ("true", "false"):
                yield self._replace(index, index, "false" if token.text == "true" else "true")
            elif token.text in ("if", "while", "for"):
                yield from self._condition(index)
            if self._begins_statement(index):
                yield from self._statement(index)

    # What is left alone.

    def _frozen(self):
        frozen = set()
        for index, token in enumerate(self.tokens):
            after = self.tokens[index + 1].text if index + 1 < len(self.tokens) else ""
            if token.text in UNSEEN and after == "(":
                frozen.update(range(index, self.tokens[index + 1].partner + 1))
            elif token.text in DECLARES:
                frozen.update(self._declaration(index))
            elif token.text == "operator":
                frozen.add(index + 1)
            elif token.text == "[" and after == "[":
                frozen.update(range(index, token.partner + 1))
            elif token.text == "<" and not token.spaced:
                close = closing_angle(self.tokens, index)
                if close is not None:
                    frozen.update(range(index, close + 1))
        return frozen

    def _declaration(self, index):
        word = self.tokens[index].text
        if word == "template":  # the list of parameters alone
            close = closing_angle_after(self.tokens, index + 1)
            return range(index, close + 1) if close is not None else ()
        end = index
        while end < len(self.tokens) and self.tokens[end].text != ";":
            if self.tokens[end].text == "{":
                if word in ("friend", "namespace"):
                    return ()
                end = self.tokens[end].partner
            end += 1
        return range(index, end + 1)

    # Operators and constants.

    def _operand_ends(self, index):
        """Whether an operand ends with this token."""
        token = self.tokens[index]
        return token.kind in ("number", "text") or token.text in (")", "]", "}") or (
            token.kind == "word" and token.text not in ("return", "case", "throw", "co_return", "else"))

    def _operator(self, index, token):
        before = self.tokens[index - 1] if index else None
        if before is None or before.text == "operator":
            return
        binary = token.spaced and self._operand_ends(index - 1)
        if token.text in OPERATORS and binary:
            for other in OPERATORS[token.text]:
                yield self._replace(index, index, other)
        elif token.text in ("++", "--") and not self._in_for_header(index):
            yield self._replace(index, index, "--" if token.text == "++" else "++")
        elif token.text in ("!", "-", "~") and not token.after and not self._operand_ends(index - 1):
            if not (token.text == "-" and self.tokens[index + 1].text in ("0", "0.0")):
                yield self._replace(index, index, "")
        elif token.text == "?":
            yield from self._choice(index)

    def _in_for_header(self, index):
        """A loop that counts the wrong way only costs time until it is stopped."""
        for outer in range(index - 1, -1, -1):
            token = self.tokens[outer]
            if token.text in ("{", "}"):
                return False
            if token.text == "(" and token.partner > index:
                return self.tokens[outer - 1].text == "for"
        return False

    def _choice(self, index):
        """a ? b : c becomes a ? c : b."""
        colon = self._until(index + 1, (":",))
        end = self._until(colon + 1, (";", ",", ")", "]", "}", ":")) if colon is not None else None
        if end is None or any(self.tokens[i].text == "?" for i in range(index + 1, end)):
            return
        first, second = self._text(index + 1, colon - 1), self._text(colon + 1, end - 1)
        if first != second:
            yield self._replace(index + 1, end - 1, f"{second} : {first}")

    def _number(self, index, token):
        match = re.fullmatch(r"(0[xX][0-9a-fA-F']+|\d[\d']*)([uUlLzZ]*)", token.text)
        if not match or len(match.group(1)) > 9 and match.group(1).startswith("0x"):
            return  # no whole number, or bits to mix with
        before, after = self.tokens[index - 1].text, self.tokens[index + 1].text
        if before == "=" and self.tokens[index - 2].text in (")", "const", "noexcept", "override"):
            return  # a function without a body
        digits = match.group(1).replace("'", "")
        value = int(digits, 16) if digits[:2] in ("0x", "0X") else int(digits, 10)
        if value >= 16 and value & (value - 1) == 0 and before == "=" and after == ";" and self._is_constant(index):
            return  # the size of a buffer, or where a quicker way begins to pay
        room = before == "[" and after == "]" and self.tokens[index - 3].kind == "word" \
            and self.tokens[index - 2].kind == "word"
        if not room:  # an array that is larger than it need be shows nowhere
            yield self._replace(index, index, f"{value + 1}{match.group(2)}")
        if value > 0:
            yield self._replace(index, index, f"{value - 1}{match.group(2)}")

    def _is_constant(self, index):
        while index > 0 and self.tokens[index].text not in (";", "{", "}"):
            if self.tokens[index].text == "constexpr":
                return True
            index -= 1
        return False

    # Conditions and statements.

    def _condition(self, index):
        opening = index + 1
        if self.tokens[opening].text != "(":
            return  # if constexpr
        first, last = opening + 1, self.tokens[opening].partner - 1
        parts = [i for i in self._level(first, last) if self.tokens[i].text == ";"]
        if self.tokens[index].text == "for":
            if len(parts) != 2 or parts[1] == parts[0] + 1:
                return
            first, last = parts[0] + 1, parts[1] - 1
        elif parts:
            first = parts[-1] + 1
        if first > last or any(self.tokens[i].text == "=" for i in self._level(first, last)):
            return  # a declaration
        if first == last and self.tokens[first].text in ("true", "false"):
            return
        condition = self._text(first, last)
        yield self._replace(first, last, f"({condition}) && false")
        if self.tokens[index].text == "if":
            yield self._replace(first, last, f"({condition}) || true")

    def _begins_statement(self, index):
        if index == 0:
            return False
        before = self.tokens[index - 1]
        if before.text in (";", "{", "}", "else", "do"):
            return before.text != ";" or not self._in_for_header(index)
        if before.text == ":":  # a label, or the branch of a choice
            start = index - 2
            while start > 0 and self.tokens[start].text not in (";", "{", "}", "?", ":"):
                start -= 1
            return self.tokens[start + 1].text in ("case", "default")
        if before.text == ")" and before.partner > 0:
            return self.tokens[before.partner - 1].text in ("if", "for", "while", "switch", "constexpr")
        return False

    def _statement(self, index):
        end = self._until(index, (";",))
        if end is None or index in self.frozen:
            return
        word = self.tokens[index].text
        if word == "return":
            if end > index + 1 and self._text(index + 1, end - 1) not in (
                    "{}", "0", "nullptr", "false", "true", "std::nullopt", "*this"):
                yield self._replace(index + 1, end - 1, "{}")
        elif word == "continue":
            yield self._replace(index, index, "break")
        elif word == "break":
            yield self._replace(index, index, "")
        elif self._is_expression(index, end - 1):
            yield self._replace(index, end - 1, "")

    def _is_expression(self, first, last):
        if first > last or self.tokens[first].text in NO_EXPRESSION or FOR_SPEED.search(self._text(first, last)):
            return False
        if self.tokens[first].text == "throw":
            return last > first
        if self.tokens[first].text == "(" and self.tokens[first + 1].text == "void":
            return False
        changes = False
        level = [i for i in self._level(first, last) if i not in self.frozen or i == first]
        for here, there in zip(level, level[1:]):
            a, b = self.tokens[here], self.tokens[there]
            if a.text in ASSIGNMENTS:
                return True  # and no declaration stood before it
            if b.kind == "word" and (a.kind == "word" or (a.text in ("*", "&", "&&") and a.after and not a.before)
                                     or (there > here + 1 and self.tokens[there - 1].text == ">")):
                return False  # a type and a name
            changes = changes or a.text in ("++", "--")
        end = self.tokens[last].text
        return changes or end in ("++", "--") or end == ")"

    # Helpers.

    def _level(self, first, last):
        """The indexes from first to last without what stands in brackets."""
        index = first
        while index <= last:
            yield index
            partner = self.tokens[index].partner
            index = partner if partner > index else index + 1

    def _until(self, index, ends):
        """The next token of these on the level of `index`; None when the level ends before."""
        while index is not None and index < len(self.tokens):
            token = self.tokens[index]
            if token.text in ends:
                return index
            if token.text in (")", "]", "}") and token.partner < index:
                return None
            index = token.partner + 1 if token.partner > index else index + 1
        return None

    def _text(self, first, last):
        return self.source[self.tokens[first].start : self.tokens[last].end]

    def _replace(self, first, last, instead):
        return self.tokens[first].line, self.tokens[first].start, self.tokens[last].end, instead


def closing_angle_after(tokens, index):
    """The end of the parameters after `template`, whose bracket has a blank before it."""
    if index >= len(tokens) or tokens[index].text != "<":
        return None
    depth = 0
    for here in range(index, len(tokens)):
        text = tokens[here].text
        if text == "<":
            depth += 1
        elif text in (">", ">>"):
            depth -= len(text)
            if depth <= 0:
                return here
        elif text in (";", "{"):
            return None
    return None
