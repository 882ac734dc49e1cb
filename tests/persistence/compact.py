# SPDX-License-Identifier: Apache-2.0
"""Reads the compact form with nothing but docs/compact-format.md and the pages of the brace lists.

compact.py <VALUES >LISTS    VALUES: for each value its size in decimal, a line feed, and its bytes;
                             LISTS: for each value the units of its brace list in decimal, a line feed, and the
                             brace list in UTF-16 LE.
"""
import base64
import datetime
import sys

TAGS = {0xC2: "U", 0xC3: "L"}
NUMBER = "b0be78f2-0ee6-4d31-a3bb-77dd32ba5bec"
STRING = "9b6abf8b-0173-48e5-b0a0-83b21fcf63c5"
DATE = "aae38c48-a877-411c-a6d3-fbaa1f83c4bd"
FRACTIONS = 10 ** 4  # ticks of a second
DAY = 86400 * FRACTIONS


class Lists:
    """Writes a brace list: commas and line feeds where the library's writer sets them."""

    def __init__(self):
        self.text, self.pending, self.closed = [], False, False

    def put(self, token):
        if self.pending:
            self.text.append(",")
        self.text.append(token)
        self.pending, self.closed = True, False

    def begin(self):
        if self.pending:
            self.text.append(",")
        if self.text:
            self.text.append("\n")
        self.text.append("{")
        self.pending = self.closed = False

    def end(self):
        if self.closed:
            self.text.append("\n")
        self.text.append("}")
        self.pending = self.closed = True

    def string(self, units):
        out = ['"']
        for unit in units:
            code = ord(unit)
            if unit == '"':
                out.append('""')
            elif 0xD800 <= code <= 0xDFFF or code == 0xFFFF:
                out.append('"\\%04x' % code)
            else:
                out.append(unit)
        self.put("".join(out) + '"')

    def value(self, tag, payload=None, text=None):
        self.begin()
        self.string(tag)
        if payload is not None:
            self.put(payload)
        if text is not None:
            self.string(text)
        self.end()


def plain(digits, scale):
    """An integer with a point before its last digits, without zeros at the end."""
    if scale == 0:
        return str(digits)
    text = str(abs(digits)).rjust(scale + 1, "0")
    whole, fraction = text[:-scale], text[-scale:].rstrip("0")
    return ("-" if digits < 0 else "") + whole + ("." + fraction if fraction else "")


def date_text(ticks):
    seconds = ticks // FRACTIONS
    try:
        moment = datetime.datetime(1, 1, 1) + datetime.timedelta(seconds=seconds)
    except OverflowError:  # out of range: the empty date
        moment = datetime.datetime(1, 1, 1)
    return "%04d%02d%02d%02d%02d%02d" % moment.timetuple()[:6]


class Reader:
    def __init__(self, data):
        self.data, self.at, self.ids, self.out = data, 0, [], Lists()

    # tokens

    def take(self, count=1):
        piece = self.data[self.at:self.at + count]
        if len(piece) != count:
            raise ValueError("cut")
        self.at += count
        return piece

    def peek(self):
        return self.data[self.at] if self.at < len(self.data) else None

    def expect(self, token):
        if self.take()[0] != token:
            raise ValueError("expected %02x at %d" % (token, self.at - 1))

    def varint(self):
        number = shift = 0
        while True:
            byte = self.take()[0]
            number |= (byte & 127) << shift
            shift += 7
            if byte < 128:
                return number

    def integer(self):
        token = self.take()[0]
        if token < 0x80:
            return token
        if token in (0xC4, 0xC5):
            return token - 0xC4
        if token == 0xC6:
            return self.varint()
        if token == 0xC7:
            return -1 - self.varint()
        raise ValueError("no integer at %d" % (self.at - 1))

    def number(self):
        if self.peek() == 0xC8:
            self.take()
            scale, bits = self.take()[0], self.varint()
            return plain(bits >> 1 ^ -(bits & 1), scale)
        if self.peek() == 0xC9:
            self.take()
            return self.take(self.varint()).decode("ascii")
        return str(self.integer())

    def string(self):
        """The units, each as one character."""
        token = self.take()[0]
        if 0x80 <= token < 0xC0:
            return self.take(token - 0x80).decode("latin-1")
        if token == 0xCA:
            return self.take(self.varint()).decode("latin-1")
        if token != 0xCB:
            raise ValueError("no string at %d" % (self.at - 1))
        data = self.take(2 * self.varint())
        return "".join(chr(data[i] | data[i + 1] << 8) for i in range(0, len(data), 2))

    def guid(self):
        token = self.take()[0]
        if token == 0xD1:
            return self.ids[self.take()[0]]
        if token != 0xD0:
            raise ValueError("no id at %d" % (self.at - 1))
        digits = self.take(16).hex()
        text = "-".join((digits[:8], digits[8:12], digits[12:16], digits[16:20], digits[20:]))
        if len(self.ids) < 64:
            self.ids.append(text)
        return text

    def packed(self):
        self.expect(0xD5)
        count, width = self.varint(), self.take()[0]
        data = self.take(count * width)
        return [int.from_bytes(data[i:i + width], "little") for i in range(0, len(data), width)]

    # values

    def value(self):
        token = self.peek()
        if token in TAGS:
            self.take()
            self.out.value(TAGS[token])
        elif token in (0xC4, 0xC5):
            self.out.value("B", str(self.integer()))
        elif token < 0x80 or 0xC6 <= token <= 0xC9:
            self.out.value("N", self.number())
        elif token < 0xC0 or token in (0xCA, 0xCB):
            self.out.value("S", text=self.string())
        elif token in (0xCD, 0xCE, 0xCF):
            self.take()
            self.out.value("D", date_text(self.varint() * {0xCD: DAY, 0xCE: FRACTIONS, 0xCF: 1}[token]))
        elif token == 0xD2:
            self.take()
            self.out.value("T", self.guid())
        elif token == 0xD3:
            self.take()
            clsid = self.guid()
            self.out.begin()
            self.out.string("#")
            self.out.put(clsid)
            BODIES[clsid](self)
            self.out.end()
        else:
            raise ValueError("no value at %d" % self.at)

    # bodies: each copies one element

    def begin(self):
        self.expect(0xC1)
        self.out.begin()

    def end(self):
        self.expect(0xC0)
        self.out.end()

    def field(self):
        """An integer, which is returned."""
        number = self.integer()
        self.out.put(str(number))
        return number

    def text(self):
        self.out.string(self.string())

    def many(self, element):
        for _ in range(self.field()):
            element(self)

    def list_of(self, *parts):
        self.begin()
        for part in parts:
            part(self)
        self.end()

    def array(self):
        self.list_of(lambda r: r.many(Reader.value))

    def pair(self):
        self.list_of(Reader.value, Reader.value)

    def pairs(self):
        self.list_of(lambda r: r.many(Reader.pair))

    def number_qualifiers(self):
        self.list_of(Reader.field, Reader.field, Reader.field)

    def string_qualifiers(self):
        self.list_of(Reader.field, Reader.field)

    def date_qualifiers(self):
        self.list_of(Reader.field)

    def pattern(self):
        self.list_of(lambda r: r.many(Reader.type_of_pattern))

    def type_of_pattern(self):
        self.begin()
        clsid = self.guid()
        self.out.put(clsid)
        qualifiers = {NUMBER: Reader.number_qualifiers, STRING: Reader.string_qualifiers,
                      DATE: Reader.date_qualifiers}.get(clsid)
        if qualifiers:
            qualifiers(self)
        self.end()

    def bytes(self):
        self.expect(0xCC)
        self.out.string(base64.b64encode(self.take(self.varint())).decode("ascii"))

    def stored(self):
        self.list_of(Reader.field, Reader.value)

    def languages(self):
        self.list_of(lambda r: r.many(lambda r: (r.text(), r.text())))

    def more(self):
        """Languages, where the list goes on."""
        if self.peek() != 0xC0:
            self.languages()

    def item(self):
        self.list_of(Reader.value, Reader.text, Reader.field, Reader.value, Reader.more)

    def value_list(self):
        self.list_of(Reader.pattern, lambda r: r.many(Reader.item))

    def columns(self):
        self.begin()
        count = self.field()
        for _ in range(count):
            self.list_of(Reader.text, Reader.text, Reader.field, Reader.pattern, Reader.more)
        self.end()
        return count

    def table(self):
        self.begin()
        columns = self.columns()
        self.list_of(lambda r: r.many(lambda r: r.list_of(lambda r: r.many(Reader.field))))
        if columns == 0:
            self.list_of(lambda r: r.many(lambda r: r.list_of()))
        else:
            self.cells(columns)
        self.end()

    def cells(self, columns):
        self.expect(0xC1)
        rows = self.integer()
        cells = [self.column(rows) for _ in range(columns)]
        self.expect(0xC0)
        self.out.begin()
        self.out.put(str(rows))
        for row in range(rows):
            self.out.begin()
            for column in cells:
                column(row)
            self.out.end()
        self.out.end()

    def column(self, rows):
        """What writes the cell of a row."""
        out = self.out
        self.expect(0xC1)
        form = self.integer()
        if form == 0:
            values = [self.aside() for _ in range(self.integer())]
            codes = self.packed()
            write = lambda row: out.value("U") if codes[row] == 0 else self.again(values[codes[row] - 1])
        elif form == 3:
            values = [self.aside() for _ in range(rows)]
            codes = values
            write = lambda row: self.again(values[row])
        else:
            scale, base, step, empty = (self.integer() for _ in range(4))
            codes = self.packed()

            def write(row):
                if empty and codes[row] == 0:
                    return out.value("U")
                word = base + step * (codes[row] - empty)
                return out.value("N", plain(word, scale)) if form == 1 else out.value("D", date_text(word))
        if len(codes) != rows:
            raise ValueError("a column of another length")
        self.expect(0xC0)
        return write

    def aside(self):
        """A value that is written later: where it stands, and the ids that were known there."""
        place, ids, out = self.at, list(self.ids), self.out
        self.out = Lists()
        self.value()
        self.out = out
        return place, ids

    def again(self, kept):
        place, ids = self.at, self.ids
        self.at, self.ids = kept[0], list(kept[1])
        self.value()
        self.at, self.ids = place, ids

    def tree(self):
        self.begin()
        columns = self.columns()
        self.branches(columns)
        self.end()

    def branches(self, columns):
        self.begin()
        for _ in range(self.field()):
            self.begin()
            for _ in range(columns):
                self.value()
            self.branches(columns)
            self.end()
        self.end()


BODIES = {
    "1bb40b60-bbfa-11d5-a3c1-0050bae0a776": Reader.array,
    "96153e21-444d-4b23-91a9-25a2483f7e45": Reader.array,
    "556b08ab-8ef5-4635-9698-c19f7e52aaf3": Reader.pair,
    "ca8cb955-479c-4fae-819c-d7cd6b78d678": Reader.pairs,
    "c6bdae87-2280-4624-af03-2c1b4371b2e4": Reader.pairs,
    "b2eeec98-e624-4207-bccd-4768231bc9f0": Reader.table,
    "97f56523-60eb-47da-b476-44668f1fa86f": Reader.tree,
    "3a349384-5ec8-4b40-9774-2361025cc3d6": Reader.value_list,
    "7de97245-2e04-4cd6-9f5d-a10944b56cc5": Reader.bytes,
    "161b8ba0-d574-4c5d-885a-dd579ab7996c": Reader.stored,
    "df56239d-9cc6-475b-a66f-30f430f90870": Reader.pattern,
    "cd88cbf7-ac2f-4cfd-879b-4c38eca9ea00": Reader.number_qualifiers,
    "f8223f74-5b8a-4a59-87a2-0b94bbe4855f": Reader.string_qualifiers,
    "e9febaa1-0051-432e-be4b-bb87e1af08c5": Reader.date_qualifiers,
    "3b4bc5e3-341b-45e8-b7e9-cbef896a9009": Reader.languages,
    "e7690847-7a13-42a5-818e-e3951fec5866": Reader.text,
    "acf06b8a-8320-4f0c-a9bd-18e1b75d8a88": Reader.field,
}


def read(data):
    if data[:4] != b"\xc1cf\x01":
        raise ValueError("not the compact form, version 1")
    reader = Reader(data[4:])
    reader.value()
    if reader.peek() is not None:
        raise ValueError("more than one value")
    return "".join(reader.out.text)


def main():
    sys.setrecursionlimit(20000)
    source = sys.stdin.buffer
    for size in iter(source.readline, b""):
        text = read(source.read(int(size)))
        units = text.encode("utf-16-le", "surrogatepass")
        sys.stdout.buffer.write(b"%d\n" % (len(units) // 2) + units)


main()
