# SPDX-License-Identifier: Apache-2.0
"""Tables in comma-separated values as Python's csv module reads and writes them.

csv_model.py write FOLDER   makes tables up: 0.csv, 1.csv, ... and all their rows, that of the names first, in written.json
csv_model.py read FOLDER    reads the files again: read.json
"""
import csv
import json
import random
import sys

COUNT = 30
DELIMITERS = ",;\t"
PIECES = ["a", "Z9", " ", ",", ";", "\t", '"', '""', "\n", "\r", "\r\n", "\n\n", "'", "\\", "ж", "漢", "e\u0301",
          "\U0001F600", "\ufeff", "\x01"]


def table(chance):
    columns = chance.randint(1, 5)
    yield [f"c{i}" for i in range(columns)]
    for _ in range(chance.randint(0, 40)):
        yield ["".join(chance.choices(PIECES, k=chance.choice([0, 0, 1, 3, 9]))) for _ in range(columns)]


def write(folder):
    tables = []
    for seed in range(COUNT):
        chance = random.Random(seed)
        tables.append(list(table(chance)))
        ends, quoting = chance.choice([("\r\n", csv.QUOTE_MINIMAL), ("\n", csv.QUOTE_ALL), ("\r", csv.QUOTE_ALL)])
        with open(f"{folder}/{seed}.csv", "w", encoding=chance.choice(["utf-8", "utf-8-sig"]), newline="") as out:
            writer = csv.writer(out, delimiter=DELIMITERS[seed % 3], lineterminator=ends, quoting=quoting)
            writer.writerows(tables[-1])
    with open(f"{folder}/written.json", "w", encoding="utf-8") as out:
        json.dump(tables, out)


def read(folder):
    tables = []
    for seed in range(COUNT):
        with open(f"{folder}/{seed}.csv", encoding="utf-8", newline="") as text:
            tables.append(list(csv.reader(text, delimiter=DELIMITERS[seed % 3], strict=True)))
    with open(f"{folder}/read.json", "w", encoding="utf-8") as out:
        json.dump(tables, out)


{"write": write, "read": read}[sys.argv[1]](sys.argv[2])
