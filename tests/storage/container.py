#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Reads and writes containers as docs/container-format.md describes them, with nothing of the library.

container.py list FILE 32|64                one line an inner file: name, created, modified, content
container.py make FILE 32|64 [SEED] <LIST   a container of such lines, its blocks scattered and of odd sizes

Names are UTF-16LE and contents are bytes, both in hexadecimal; "-" stands for nothing."""
import random
import struct
import sys

MARK = b"table of inner files, layout 1\r\n".ljust(512, b"\0")


class Layout:
    def __init__(self, bits):
        self.width = bits // 8
        self.null = 0x7FFFFFFF if bits == 32 else 0xFFFFFFFFFFFFFFFF
        self.header = 2 * self.width + 8
        self.digits = 2 * self.width
        self.block_header = 3 * self.digits + 7

    def words(self, data, count):
        return struct.unpack_from("<" + ("I" if self.width == 4 else "Q") * count, data)

    def word(self, number):
        return number.to_bytes(self.width, "little")

    def block(self, chain_size, data, next_address):
        numbers = "".join(f"{n:0{self.digits}x} " for n in (chain_size, len(data), next_address))
        return b"\r\n" + numbers.encode("ascii") + b"\r\n" + data


def order(name):
    """By the code units of the folded name, then of the name itself."""
    def units(text):
        data = text.encode("utf-16-le", "surrogatepass")
        return struct.unpack(f"<{len(data) // 2}H", data)
    return units(name.casefold()), units(name)


class Reader:
    def __init__(self, data, layout):
        self.data, self.layout, self.used = data, layout, []

    def need(self, condition, what):
        if not condition:
            sys.exit(f"not a container: {what}")

    def chain(self, address):
        """The content of a chain; its blocks are marked as used."""
        layout, content, size = self.layout, b"", None
        while address != layout.null:
            head = self.data[address:address + layout.block_header]
            self.need(len(head) == layout.block_header and head[:2] == b"\r\n" == head[-2:], f"block at {address}")
            fields = head[2:-2].decode("ascii")
            self.need(fields[layout.digits::layout.digits + 1] == "   ", f"blanks at {address}")
            chain_size, block_size, following = (int(field, 16) for field in fields.split(" ")[:3])
            size = chain_size if size is None else size
            end = address + layout.block_header + block_size
            self.need(end <= len(self.data), f"block at {address} ends outside")
            self.used.append((address, end))
            self.need(len(self.used) <= len(self.data), "a circle")
            content += self.data[end - block_size:end]
            address = following
        self.need(len(content) >= (size or 0), "a chain is shorter than its size")
        return content[:size or 0]

    def files(self):
        layout = self.layout
        free, block_size = layout.words(self.data, 2)
        self.need(block_size == 512, "block size")
        table = self.chain(layout.header)
        end = layout.header + layout.block_header + 512
        rows, names = [], b""
        if table:
            self.need(table[:512] == MARK, "mark")
            count, end = layout.words(table[512:], 2)
            fixed = 512 + 2 * layout.width
            rows = [layout.words(table[fixed + i * 3 * layout.width:], 3) for i in range(count)]
            names = table[fixed + 3 * layout.width * count:]
            self.need(len(names) == 2 * (rows[-1][2] if rows else 0), "names")
        begin, previous = 0, None
        for attributes, data, name_end in rows:
            name = names[2 * begin:2 * name_end].decode("utf-16-le", "surrogatepass")
            begin = name_end
            self.need(previous is None or order(previous) < order(name), "order of the table")
            previous = name
            record = self.chain(attributes)
            self.need(len(record) >= 24, "attributes")
            created, modified, _ = struct.unpack_from("<QQI", record)
            self.need(record[20:-4].decode("utf-16-le", "surrogatepass") == name, "name in the attributes")
            yield name, created, modified, self.chain(data)
        ranges = self.chain(free)
        step = 2 * layout.width
        for i in range(0, len(ranges), step):
            address, length = layout.words(ranges[i:], 2)
            self.used.append((address, address + length))
        # Every byte is in exactly one place.
        position = layout.header
        for first, last in sorted(self.used):
            self.need(first == position, f"bytes {position} to {first} are lost or used twice")
            position = last
        self.need(position == end <= len(self.data), "the end")


class Writer:
    """Lays blocks out anywhere: other sizes, other orders and gaps than the library's own."""

    def __init__(self, layout, seed):
        self.layout, self.random = layout, random.Random(seed)
        self.pieces = {}  # address: bytes
        self.end = layout.header + layout.block_header + 512
        self.free = []

    def put(self, content):
        """Lays a chain out; returns the address of its first block."""
        layout, sizes, rest, total = self.layout, [], len(content), len(content)
        if not content:
            return layout.null
        while rest > 0:
            sizes.append(self.random.choice([512, 512, 512, 0, 1, 100, 2000, 100000]))
            rest -= sizes[-1]
        addresses = []
        for size in sizes:
            if self.random.random() < 0.1:
                gap = self.random.randrange(1, 2000)
                self.free.append((self.end, gap))
                self.end += gap
            addresses.append(self.end)
            self.end += layout.block_header + size
        # Blocks of one size may stand in any order.
        for size in set(sizes):
            same = [i for i, s in enumerate(sizes) if s == size]
            mixed = [addresses[i] for i in same]
            self.random.shuffle(mixed)
            for i, address in zip(same, mixed):
                addresses[i] = address
        for i, size in enumerate(sizes):
            following = addresses[i + 1] if i + 1 < len(sizes) else layout.null
            data, content = content[:size].ljust(size, b"?"), content[size:]
            block = layout.block(total if i == 0 else 0, data, following)
            self.pieces[addresses[i]] = block if self.random.random() < 0.5 else block[:layout.block_header].upper() + data
        return addresses[0]

    def write(self, files):
        layout, rows, names, name_end = self.layout, b"", b"", 0
        for name, created, modified, content in sorted(files, key=lambda f: order(f[0])):
            encoded = name.encode("utf-16-le", "surrogatepass")
            attributes = self.put(struct.pack("<QQI", created, modified, 0) + encoded + bytes(4))
            data = self.put(content)
            name_end += len(encoded) // 2
            rows += layout.word(attributes) + layout.word(data) + layout.word(name_end)
            names += encoded
        # The table says where the container ends, and takes room itself; so does the list of free space.
        body_size = 2 * layout.width + len(rows) + len(names)
        tail = self.end + layout.block_header + body_size
        ranges = b"".join(layout.word(a) + layout.word(n) for a, n in self.free)
        free = tail if ranges else layout.null
        end = tail + layout.block_header + len(ranges) if ranges else tail
        body = layout.word(len(files)) + layout.word(end) + rows + names
        first = layout.header
        self.pieces[first] = layout.block(512 + body_size, MARK, self.end)
        self.pieces[self.end] = layout.block(0, body, layout.null)
        if ranges:
            self.pieces[tail] = layout.block(len(ranges), ranges, layout.null)
        data = bytearray(end)
        data[:first] = layout.word(free) + layout.word(512) + (41).to_bytes(8, "little")
        for address, block in self.pieces.items():
            data[address:address + len(block)] = block
        return bytes(data)


def hexadecimal(data):
    return data.hex() or "-"


def main(command, path, bits, seed="1"):
    layout = Layout(int(bits))
    if command == "list":
        with open(path, "rb") as file:
            reader = Reader(file.read(), layout)
        for name, created, modified, content in reader.files():
            encoded = name.encode("utf-16-le", "surrogatepass")
            print(hexadecimal(encoded), created, modified, hexadecimal(content))
    else:
        files = []
        for line in sys.stdin:
            name, created, modified, content = line.split()
            name, content = (b"" if field == "-" else bytes.fromhex(field) for field in (name, content))
            files.append((name.decode("utf-16-le", "surrogatepass"), int(created), int(modified), content))
        with open(path, "wb") as file:
            file.write(Writer(layout, int(seed)).write(files))


main(*sys.argv[1:])
