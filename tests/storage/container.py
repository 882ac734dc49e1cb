#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Reads and writes containers as docs/container-format.md describes them, with nothing of the library.

container.py list 32|64 <IMAGES          for each image an empty line, then a line for each inner file: name, created,
                                         modified, version, content
container.py make 32|64 1|2 SEED <LINES  a container of such lines with that table layout, its blocks scattered and of
                                         odd sizes

Images are containers, each behind a line with its length. Names are UTF-16LE and contents are bytes, both in hexadecimal;
"-" stands for nothing."""
import random
import struct
import sys

import xxhash

MARKS = {number: f"table of inner files, layout {number}\r\n".encode() for number in (1, 2)}
NODE = struct.Struct("<4sHHQII")  # behind the checksum
COUNTER = 41  # of what is written here


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


def checksum(data):
    return xxhash.xxh3_64_intdigest(data)


def number(data, offset, width=8):
    return int.from_bytes(data[offset:offset + width], "little")


def order(name):
    """By the code units of the folded name, then of the name itself."""
    def units(text):
        data = text.encode("utf-16-le", "surrogatepass")
        return struct.unpack(f"<{len(data) // 2}H", data)
    return units(name.casefold()), units(name)


class Reader:
    def __init__(self, data, layout):
        self.data, self.layout, self.used = data, layout, []
        self.one_form = False  # whether each block can have one form only

    def need(self, condition, what):
        if not condition:
            sys.exit(f"not a container: {what}")

    def chain(self, address, in_a_row=False):
        """The content of a chain; its blocks are marked as used."""
        layout, content, size, first = self.layout, [], None, address
        while address != layout.null:
            self.need(not in_a_row or address == first + len(content) * (layout.block_header + 512), "blocks in a row")
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
            content.append(self.data[end - block_size:end])
            if self.one_form:
                form = layout.block(chain_size if len(content) == 1 else 0, content[-1], following)
                self.need(block_size == 512 and head + content[-1] == form, f"form of the block at {address}")
            address = following
        blocks, content, size = len(content), b"".join(content), size or 0
        self.need(len(content) >= size, "a chain is shorter than its size")
        if self.one_form:
            self.need(blocks == (size + 511) // 512 and not any(content[size:]), "more than the chain's size needs")
        return content[:size]

    def files(self):
        layout = self.layout
        free, block_size = layout.words(self.data, 2)
        self.need(block_size == 512, "block size")
        first = layout.header + layout.block_header
        mark = self.data[first:first + 32]
        if mark == MARKS[2]:
            end = yield from self.tree_files(free, self.data[first:first + 512], first)
        else:
            end = yield from self.flat_files(free)
        # Every byte is in exactly one place.
        position = layout.header
        for begin, behind in sorted(self.used):
            self.need(begin == position, f"bytes {position} to {begin} are lost or used twice")
            position = behind
        self.need(position == end <= len(self.data), "the end")

    def entry(self, name, attributes, data, in_a_row=(False, False)):
        """A file, and the content of its attributes."""
        record = self.chain(attributes, in_a_row[1])
        self.need(len(record) >= 24, "attributes")
        self.need(record[20:-4].decode("utf-16-le", "surrogatepass") == name, "name in the attributes")
        return (name, *struct.unpack_from("<QQI", record), self.chain(data, in_a_row[0])), record

    # table layout 1

    def flat_files(self, free):
        layout = self.layout
        table = self.chain(layout.header)
        end = layout.header + layout.block_header + 512
        rows, names = [], b""
        first = layout.header + layout.block_header
        self.need(self.data[first:first + 512] == MARKS[1].ljust(512, b"\0"), "mark")
        if table:
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
            yield self.entry(name, attributes, data)[0]
        ranges = self.chain(free)
        step = 2 * layout.width
        for i in range(0, len(ranges), step):
            address, length = layout.words(ranges[i:], 2)
            self.used.append((address, address + length))
        return end

    # table layout 2

    def tree_files(self, free, head, position):
        layout, self.one_form = self.layout, True
        expected, count, end, files_sum, free_size, free_sum = struct.unpack_from("<6Q", head, 32)
        covered = self.data[:position + 32] + bytes(8) + self.data[position + 40:position + 512]
        self.need(checksum(covered) == expected and not any(head[80:]), "head record")
        self.counter = number(self.data, 2 * layout.width)
        found, previous = 0, None
        if count == 0:  # the one chain that has a block more than its size needs
            alone = self.data[layout.header:position + 512] == layout.block(0, head, layout.null)
            self.need(alone and files_sum == 0 and free == layout.null, "a container without files")
            self.used.append((layout.header, position + 512))
        else:
            root = self.chain(layout.header)[512:]
            blocks = self.used[1:]
            self.need(all(a[1] == b[0] for a, b in zip(blocks, blocks[1:])), "the root in a row")
            for name, row, at in self.leaves(root, b"file", files_sum, None):
                attributes, data, size = layout.words(row[:3 * layout.width], 3)
                flags, content_sum, attributes_sum = struct.unpack("<IQQ", row[at + 4:])
                self.need(previous is None or order(previous) < order(name), "order of the table")
                previous = name
                file, record = self.entry(name, attributes, data, (flags & 1, flags & 2))
                self.need(flags < 4 and len(file[-1]) == size, "flags and size")
                self.need(checksum(file[-1]) == content_sum and checksum(record) == attributes_sum, "checksums")
                found += 1
                yield file
        self.need(found == count, "number of files")
        behind = 0
        self.need((free == layout.null) == (free_size == 0) == (free_sum == 0), "free tree")
        if free != layout.null:
            root = self.chain(free, True)
            self.need(len(root) == free_size, "size of the free tree's root")
            for (address, length), _, _ in self.leaves(root, b"free", free_sum, None):
                self.need(address > behind and length > 0, "order of free ranges")
                behind = address + length
                self.used.append((address, behind))
        return end

    def leaves(self, content, kind, expected, level):
        """The rows of all leaves, each with its key and the place of the name's end, below the node with this content."""
        layout, width = self.layout, self.layout.width
        self.need(len(content) % 512 == 0 and number(content, 0) == expected == checksum(content[8:]), "node")
        found_kind, found_level, zero, counter, count, more = NODE.unpack_from(content, 8)
        self.need(found_kind == kind and (zero, more) == (0, 0), "head of a node")
        # The root of the free tree may be what took the last free space.
        self.need(count > 0 or (kind == b"free" and level is None and found_level == 0), "a node without rows")
        self.need(level in (None, found_level) and counter <= self.counter, "level and counter of a node")
        # Where the end of a name stands in a row, and how long a row is.
        at, length = ((3 * width, 3 * width + 24) if found_level == 0 else (width + 4, width + 16)) if kind == b"file" \
            else (0, 2 * width if found_level == 0 else 3 * width + 16)
        rows = [content[32 + i * length:32 + (i + 1) * length] for i in range(count)]
        names, begin = content[32 + count * length:], 0
        for row in rows:
            if kind == b"file":
                end = number(row, at, 4)
                key = names[2 * begin:2 * end].decode("utf-16-le", "surrogatepass")
                begin = end
            else:
                key = layout.words(row[-2 * width:], 2)
            if found_level == 0:
                yield key, row, at
                continue
            child = self.chain(number(row, 0, width), True)
            self.need(len(child) == number(row, width, 4), "size of a node")
            place = width + 8
            below = list(self.leaves(child, kind, number(row, place), found_level - 1))
            if kind == b"file":
                self.need(below[0][0] == key, "first name of a node")
            else:
                self.need((below[0][0][0], max(k[1] for k, _, _ in below)) == key, "what an inner row says of ranges")
                self.need(number(row, width + 4, 4) == 0, "zeros")
            yield from below
        self.need(not any(names[2 * begin:]), "zeros of a node")


class Writer:
    """Lays blocks out anywhere: other sizes, other orders and gaps than the library's own, and small nodes of trees."""

    def __init__(self, layout, table, seed):
        self.layout, self.table, self.random = layout, table, random.Random(seed)
        self.pieces = {}  # address: bytes
        self.end = layout.header + layout.block_header + 512
        self.free = []
        self.in_a_row = {layout.null: True}  # by the addresses of chains

    def put(self, content):
        """Lays a chain out; returns the address of its first block."""
        layout, sizes, rest, total = self.layout, [], len(content), len(content)
        if not content:
            return layout.null
        while rest > 0:
            sizes.append(self.random.choice([512, 512, 512, 0, 1, 100, 2000, 100000]) if self.table == 1 else 512)
            rest -= sizes[-1]
        scattered = self.random.random() < 0.5
        addresses = []
        for size in sizes:
            if scattered and self.random.random() < 0.1:
                gap = self.random.randrange(1, 2000)
                self.free.append((self.end, gap))
                self.end += gap
            addresses.append(self.end)
            self.end += layout.block_header + size
        # Blocks of one size may stand in any order.
        for size in set(sizes) if scattered else ():
            same = [i for i, s in enumerate(sizes) if s == size]
            mixed = [addresses[i] for i in same]
            self.random.shuffle(mixed)
            for i, address in zip(same, mixed):
                addresses[i] = address
        steps = {b - a for a, b in zip(addresses, addresses[1:])}
        self.in_a_row[addresses[0]] = steps <= {layout.block_header + 512}
        for i, size in enumerate(sizes):
            following = addresses[i + 1] if i + 1 < len(sizes) else layout.null
            data, content = content[:size].ljust(size, b"?" if self.table == 1 else b"\0"), content[size:]
            block = layout.block(total if i == 0 else 0, data, following)
            if self.table == 1 and self.random.random() < 0.5:
                block = block[:layout.block_header].upper() + data
            self.pieces[addresses[i]] = block
        return addresses[0]

    def row(self, content, chain_size, following):
        """Blocks of 512 bytes, side by side behind everything; returns the address of the first one."""
        layout, address = self.layout, self.end
        step = layout.block_header + 512
        for place in range(0, len(content), 512):
            last = place + 512 >= len(content)
            self.pieces[self.end] = layout.block(chain_size, content[place:place + 512],
                                                 following if last else self.end + step)
            chain_size, self.end = 0, self.end + step
        return address

    def write(self, files):
        layout = self.layout
        entries = []
        for name, created, modified, version, content in sorted(files, key=lambda f: order(f[0])):
            encoded = name.encode("utf-16-le", "surrogatepass")
            record = struct.pack("<QQI", created, modified, version) + encoded + bytes(4)
            entries.append((encoded, record, self.put(record), content, self.put(content)))
        free = self.write_tree(entries) if self.table == 2 and entries else self.write_flat(entries)
        data = bytearray(self.end)
        data[:layout.header] = layout.word(free) + layout.word(512) + COUNTER.to_bytes(8, "little")
        for address, block in self.pieces.items():
            data[address:address + len(block)] = block
        if self.table == 2:
            first = layout.header + layout.block_header
            data[first + 32:first + 40] = checksum(data[:first + 512]).to_bytes(8, "little")
        return bytes(data)

    def write_flat(self, entries):
        layout, rows, names = self.layout, b"", b""
        if not entries:
            head = MARKS[self.table] + (struct.pack("<3Q", 0, 0, self.end) if self.table == 2 else b"")
            self.pieces[layout.header] = layout.block(0, head.ljust(512, b"\0"), layout.null)
            return layout.null
        for name, _, attributes, _, data in entries:
            names += name
            rows += layout.word(attributes) + layout.word(data) + layout.word(len(names) // 2)
        # The table says where the container ends, and takes room itself; so does the list of free space.
        body_size = 2 * layout.width + len(rows) + len(names)
        table, tail = self.end, self.end + layout.block_header + body_size
        ranges = b"".join(layout.word(a) + layout.word(n) for a, n in self.free)
        free = tail if ranges else layout.null
        self.end = tail + layout.block_header + len(ranges) if ranges else tail
        body = layout.word(len(entries)) + layout.word(self.end) + rows + names
        self.pieces[layout.header] = layout.block(512 + body_size, MARKS[1].ljust(512, b"\0"), table)
        self.pieces[table] = layout.block(0, body, layout.null)
        if ranges:
            self.pieces[tail] = layout.block(len(ranges), ranges, layout.null)
        return free

    def write_tree(self, entries):
        layout, rows = self.layout, []
        for name, record, attributes, content, data in entries:
            flags = self.in_a_row[data] + 2 * self.in_a_row[attributes]
            rows.append((name, layout.word(attributes) + layout.word(data) + layout.word(len(content)),
                         struct.pack("<IQQ", flags, checksum(content), checksum(record))))
        root = self.tree(b"file", rows)
        following = self.row(root, 0, layout.null)
        free, free_root = layout.null, b""
        if self.free:
            free_root = self.tree(b"free", [((a, n), layout.word(a) + layout.word(n), b"") for a, n in self.free])
            free = self.row(free_root, len(free_root), layout.null)
        head = MARKS[2] + struct.pack("<6Q", 0, len(entries), self.end, number(root, 0), len(free_root), number(free_root, 0))
        self.pieces[layout.header] = layout.block(512 + len(root), head.ljust(512, b"\0"), following)
        return free

    def tree(self, kind, rows, level=0):
        """Writes a tree but for its root, whose content it returns. A row is its key, what stands before the end of the name
        and what stands behind."""
        layout, size = self.layout, self.random.randrange(2, 6)
        groups = [rows[i:i + size] for i in range(0, len(rows), size)]
        nodes, parents = [], []
        for group in groups:
            names, body = b"", b""
            for key, before, behind in group:
                names += key if kind == b"file" else b""
                body += before + (struct.pack("<I", len(names) // 2) if kind == b"file" else b"") + behind
            body = NODE.pack(kind, level, 0, COUNTER, len(group), 0) + body + names
            body += bytes(-(8 + len(body)) % 512)
            nodes.append(checksum(body).to_bytes(8, "little") + body)
        if len(nodes) == 1:
            return nodes[0]
        for group, node in zip(groups, nodes):
            before = layout.word(self.row(node, len(node), layout.null)) + struct.pack("<I", len(node))
            if kind == b"file":
                parents.append((group[0][0], before, node[:8]))
            else:
                key = group[0][0][0], max(row[0][1] for row in group)
                parents.append((key, before + bytes(4) + node[:8] + layout.word(key[0]) + layout.word(key[1]), b""))
        return self.tree(kind, parents, level + 1)


def hexadecimal(data):
    return data.hex() or "-"


def list_images(layout):
    while line := sys.stdin.buffer.readline():
        print()
        for name, *numbers, content in Reader(sys.stdin.buffer.read(int(line)), layout).files():
            print(hexadecimal(name.encode("utf-16-le", "surrogatepass")), *numbers, hexadecimal(content))


def make(layout, table, seed):
    files = []
    for line in sys.stdin:
        name, created, modified, version, content = line.split()
        name, content = (b"" if field == "-" else bytes.fromhex(field) for field in (name, content))
        files.append((name.decode("utf-16-le", "surrogatepass"), int(created), int(modified), int(version), content))
    sys.stdout.buffer.write(Writer(layout, int(table), int(seed)).write(files))


command, bits, *more = sys.argv[1:]
{"list": list_images, "make": make}[command](Layout(int(bits)), *more)
